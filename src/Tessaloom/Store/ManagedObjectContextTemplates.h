// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The template members of ManagedObjectContext; included at the end of its header.

template <StoreEntity T>
QString ManagedObjectContext::columnList(const QString &alias)
{
    QString columns = alias + QStringLiteral(".pk");
    for (const auto &field : EntityTraits<T>::fields())
        columns += QStringLiteral(", ") + alias + QLatin1Char('.') + field.name;
    return columns;
}

template <StoreEntity T>
void ManagedObjectContext::readRow(T &object, const RebrickableKit::SQLiteStatement &statement, int firstColumn)
{
    object.objectID = ObjectID{EntityTraits<T>::type, statement.integer(firstColumn)};
    int column = firstColumn + 1;
    for (const auto &field : EntityTraits<T>::fields())
        field.read(object, statement, column++);
}

template <StoreEntity T>
QList<T> ManagedObjectContext::runFetch(const QString &where, const QList<SqlValue> &bindings, const QString &order,
                                        int limit)
{
    const QString sql = QStringLiteral("SELECT ") + columnList<T>(QStringLiteral("t0")) + QStringLiteral(" FROM ") + entityName(EntityTraits<T>::type)
        + QStringLiteral(" t0 WHERE ") + where + order + limitClause(limit);
    QList<T> objects;
    beginRead();
    try {
        auto statement = m_connection->prepare(sql);
        bindAll(statement, bindings);
        while (statement.step()) {
            T object;
            readRow(object, statement, 0);
            if (!m_pending.contains(object.objectID))
                remember(object);
            objects.append(std::move(object));
        }
    } catch (...) {
        endRead();
        throw;
    }
    endRead();
    return objects;
}

template <StoreEntity T>
QList<T> ManagedObjectContext::fetch(const FetchRequest<T> &request)
{
    QueryCompiler compiler(EntityTraits<T>::type, QStringLiteral("t0"));
    QList<SqlValue> bindings;
    const QString where = request.predicate.toSql(compiler, bindings);
    const QString order = orderBy(compiler, request.sortDescriptors);
    return runFetch<T>(where, bindings, order, request.fetchLimit);
}

template <StoreEntity T>
std::optional<T> ManagedObjectContext::fetchFirst(FetchRequest<T> request)
{
    request.fetchLimit = 1;
    const QList<T> objects = fetch(request);
    if (objects.isEmpty())
        return std::nullopt;
    return objects.first();
}

template <StoreEntity T>
qint64 ManagedObjectContext::count(const FetchRequest<T> &request)
{
    QueryCompiler compiler(EntityTraits<T>::type, QStringLiteral("t0"));
    QList<SqlValue> bindings;
    const QString where = request.predicate.toSql(compiler, bindings);
    QString sql = QStringLiteral("SELECT count(*) FROM ") + entityName(EntityTraits<T>::type) + QStringLiteral(" t0 WHERE ") + where;
    if (request.fetchLimit > 0)
        sql = QStringLiteral("SELECT min(count(*), ") + QString::number(request.fetchLimit) + QStringLiteral(") FROM ") + entityName(EntityTraits<T>::type)
            + QStringLiteral(" t0 WHERE ") + where;
    qint64 result = 0;
    beginRead();
    try {
        auto statement = m_connection->prepare(sql);
        bindAll(statement, bindings);
        if (statement.step())
            result = statement.integer(0);
    } catch (...) {
        endRead();
        throw;
    }
    endRead();
    return result;
}

template <StoreEntity T>
QHash<qint64, quint64> ManagedObjectContext::matchesEach(const QList<Predicate> &predicates, const Predicate &among)
{
    Q_ASSERT(predicates.size() <= 64);
    QueryCompiler compiler(EntityTraits<T>::type, QStringLiteral("t0"));
    QList<SqlValue> bindings;
    QStringList columns{QStringLiteral("t0.pk")};
    // Compiled in the order they appear in the text, so the bindings follow that order.
    for (const Predicate &predicate : predicates)
        columns.append(QStringLiteral("CASE WHEN ") + predicate.toSql(compiler, bindings) + QStringLiteral(" THEN 1 ELSE 0 END"));
    const QString where = among.toSql(compiler, bindings);
    const QString sql = QStringLiteral("SELECT ") + columns.join(QStringLiteral(", ")) + QStringLiteral(" FROM ")
        + entityName(EntityTraits<T>::type) + QStringLiteral(" t0 WHERE ") + where;
    QHash<qint64, quint64> matches;
    beginRead();
    try {
        auto statement = m_connection->prepare(sql);
        bindAll(statement, bindings);
        while (statement.step()) {
            quint64 bits = 0;
            for (int column = 0; column < predicates.size(); ++column) {
                if (statement.integer(column + 1) != 0)
                    bits |= quint64(1) << column;
            }
            matches.insert(statement.integer(0), bits);
        }
    } catch (...) {
        endRead();
        throw;
    }
    endRead();
    return matches;
}

template <StoreEntity T>
QList<ObjectID> ManagedObjectContext::fetchObjectIDs(const FetchRequest<T> &request)
{
    QueryCompiler compiler(EntityTraits<T>::type, QStringLiteral("t0"));
    QList<SqlValue> bindings;
    const QString where = request.predicate.toSql(compiler, bindings);
    const QString sql = QStringLiteral("SELECT t0.pk FROM ") + entityName(EntityTraits<T>::type) + QStringLiteral(" t0 WHERE ")
        + where + orderBy(compiler, request.sortDescriptors) + limitClause(request.fetchLimit);
    QList<ObjectID> ids;
    beginRead();
    try {
        auto statement = m_connection->prepare(sql);
        bindAll(statement, bindings);
        while (statement.step())
            ids.append(ObjectID{EntityTraits<T>::type, statement.integer(0)});
    } catch (...) {
        endRead();
        throw;
    }
    endRead();
    return ids;
}

template <StoreEntity T>
std::optional<T> ManagedObjectContext::existingObject(const ObjectID &id)
{
    if (id.entity != EntityTraits<T>::type || !id.isValid())
        return std::nullopt;
    const auto pending = m_pending.constFind(id);
    if (pending != m_pending.cend()) {
        if (pending->kind == Pending::Kind::deleted)
            return std::nullopt;
        if (pending->kind == Pending::Kind::inserted)
            return std::get<T>(pending->value);
    }
    const QList<T> objects = runFetch<T>(QStringLiteral("t0.pk = ?"), {SqlValue(id.primaryKey)}, QString(), 1);
    if (objects.isEmpty())
        return std::nullopt;
    return objects.first();
}

template <StoreEntity T>
QList<T> ManagedObjectContext::related(const ObjectID &owner, const QString &relationship)
{
    const auto toMany = StoreSchema::entity(owner.entity).toManyRelationship(relationship);
    if (!toMany || toMany->target != EntityTraits<T>::type) {
        throw StoreError(StoreError::Kind::queryFailed,
                         QStringLiteral("Unknown relationship \"%1\" of %2.").arg(relationship, entityName(owner.entity)));
    }
    return fetch(FetchRequest<T>(Predicate::equal(toMany->inverseColumn, QVariant::fromValue(owner))));
}

template <StoreEntity T>
T ManagedObjectContext::insert(T object)
{
    const ObjectID id{EntityTraits<T>::type, allocateKey(EntityTraits<T>::type)};
    object.objectID = id;
    m_pending.insert(id, Pending{Pending::Kind::inserted, AnyEntity(object), ~quint64(0), false, ++m_sequence});
    return object;
}

template <StoreEntity T>
void ManagedObjectContext::update(const T &object)
{
    const ObjectID id = object.objectID;
    if (!id.isValid() || id.entity != EntityTraits<T>::type)
        return;
    const auto &fields = EntityTraits<T>::fields();
    auto changedAgainst = [&fields, &object](const T &base) {
        quint64 changed = 0;
        for (qsizetype index = 0; index < fields.size(); ++index) {
            if (!fields[index].equal(base, object))
                changed |= quint64(1) << index;
        }
        return changed;
    };
    auto pending = m_pending.find(id);
    if (pending != m_pending.end()) {
        if (pending->kind == Pending::Kind::deleted)
            return;
        const quint64 changed = changedAgainst(std::get<T>(pending->value));
        if (changed == 0)
            return;
        pending->value = object;
        pending->changedFields |= changed;
        pending->applied = false;
        return;
    }
    auto snapshot = snapshots<T>().constFind(id.primaryKey);
    if (snapshot == snapshots<T>().cend()) {
        // Nothing read here before: compare with the stored object, which the fetch
        // remembers. A read failure or a missing object writes every property.
        try {
            runFetch<T>(QStringLiteral("t0.pk = ?"), {SqlValue(id.primaryKey)}, QString(), 1);
        } catch (const StoreError &) {
        }
        snapshot = snapshots<T>().constFind(id.primaryKey);
    }
    const quint64 changed = snapshot == snapshots<T>().cend() ? ~quint64(0) : changedAgainst(*snapshot);
    if (changed != 0)
        recordUpdate(id, AnyEntity(object), changed);
}

template <typename Work>
auto ManagedObjectContext::perform(Work work) -> QFuture<std::invoke_result_t<Work, ManagedObjectContext &>>
{
    using Result = std::invoke_result_t<Work, ManagedObjectContext &>;
    auto block = [this, work = std::move(work)]() mutable -> Result {
        ++m_performDepth;
        struct Leave
        {
            ManagedObjectContext *context;
            ~Leave()
            {
                if (--context->m_performDepth == 0)
                    context->closeScratch();
            }
        } leave{this};
        return work(*this);
    };
    if (m_concurrencyType == ConcurrencyType::privateQueue)
        return QtConcurrent::run(m_pool.get(), std::move(block));

    QFutureInterface<Result> promise;
    promise.reportStarted();
    try {
        if constexpr (std::is_void_v<Result>) {
            block();
        } else {
            promise.reportResult(block());
        }
    } catch (const QException &error) {
        promise.reportException(error);
    } catch (...) {
        promise.reportException(QUnhandledException(std::current_exception()));
    }
    promise.reportFinished();
    return promise.future();
}

template <typename Work>
auto ManagedObjectContext::performAndWait(Work work) -> std::invoke_result_t<Work, ManagedObjectContext &>
{
    using Result = std::invoke_result_t<Work, ManagedObjectContext &>;
    QFuture<Result> future = perform(std::move(work));
    if constexpr (std::is_void_v<Result>)
        future.waitForFinished();
    else
        return future.result();
}
