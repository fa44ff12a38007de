// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/PersistentContainer.h"

#include "Logging.h"
#include "Store/ContextLending.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreConnection.h"
#include "Store/StoreError.h"
#include "Store/StoreFileInspector.h"
#include "Store/StoreSchema.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QThread>
#include <QThreadPool>

#include <algorithm>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

// Contexts that run at the same time rarely number more than this; more idle ones would
// only hold file handles and page caches.
constexpr size_t maximumIdleConnections = 4;
constexpr size_t maximumIdleWorkers = 4;

// The open containers, each with a number never used again, and which container opened each
// lent connection: a context that ends after its container, or after another container took
// its address, must not give its connection to a store it does not belong to.
struct OpenContainers
{
    QMutex mutex;
    QHash<const PersistentContainer *, quint64> serials;
    QHash<const sqlite3 *, quint64> lentBy;
    quint64 lastSerial = 0;
};

OpenContainers &openContainers()
{
    static OpenContainers containers;
    return containers;
}

// Whether the connection is as a fresh one leaves it: no open transaction (whose end also
// ends a deferred foreign key check) and nothing in its temporary schema.
bool isClean(StoreConnection &connection)
{
    if (connection.inTransaction())
        return false;
    try {
        auto temporary = connection.prepare(u"SELECT count(*) FROM temp.sqlite_schema"_s);
        return temporary.step() && temporary.integer(0) == 0;
    } catch (const StoreError &) {
        return false;
    }
}

QString describePath(const QString &path, const QString &message)
{
    return StoreError::detailFor(path, message);
}

// Checks that the file is a database this process may write, before anything writes to
// it: a foreign file must stay exactly as it was.
void checkWritableDatabase(StoreConnection &connection, const QString &path)
{
    sqlite3 *database = connection.handle();
    bool readable = false;
    try {
        readable = connection.sqliteConnection().prepare(u"SELECT count(*) FROM sqlite_schema"_s).step();
    } catch (const RebrickableKit::SQLiteError &) {
        // Judged below from the connection's error, like a step that fails.
    }
    if (!readable) {
        const int code = sqlite3_extended_errcode(database);
        const auto kind = (code & 0xff) == SQLITE_NOTADB ? StoreError::Kind::notADatabase : StoreError::Kind::openFailed;
        throw StoreError(kind, describePath(path, QString::fromUtf8(sqlite3_errmsg(database))), code);
    }
    if (sqlite3_db_readonly(database, "main") == 1)
        throw StoreError(StoreError::Kind::readOnly, describePath(path, u"The file is read-only."_s), SQLITE_READONLY);
}

} // namespace

PersistentContainer::PersistentContainer(QString path, bool inMemory, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_inMemory(inMemory)
{
    OpenContainers &containers = openContainers();
    QMutexLocker locker(&containers.mutex);
    containers.serials.insert(this, ++containers.lastSerial);
}

PersistentContainer::~PersistentContainer()
{
    {
        // From here on no context gives anything back to this container.
        OpenContainers &containers = openContainers();
        QMutexLocker locker(&containers.mutex);
        const quint64 serial = containers.serials.take(this);
        containers.lentBy.removeIf([serial](const auto &entry) { return entry.value() == serial; });
    }
    // A save still waiting for its turn is written before the store closes: on the way
    // out the main thread may wait, and the user's last change must not be lost.
    if (m_viewContext && m_viewContext->hasQueuedSave())
        m_viewContext->saveWaitingForTurn();
    m_viewContext.reset();
    m_idleWorkers.clear();
    m_idleConnections.clear();
}

std::unique_ptr<PersistentContainer> PersistentContainer::open(const QString &path, bool inMemory, QObject *parent)
{
    qRegisterMetaType<StoreChanges>();
    qRegisterMetaType<ObjectID>();
    std::unique_ptr<PersistentContainer> container(new PersistentContainer(path, inMemory, parent));
    if (!inMemory) {
        const QString folder = QFileInfo(path).absolutePath();
        if (!QDir().mkpath(folder)) {
            throw StoreError(StoreError::Kind::directoryNotCreatable,
                             describePath(path, u"The folder %1 could not be created."_s.arg(folder)));
        }
        // Before anything can write: a file that is not ours is refused as it is.
        StoreFileInspector::inspect(path);
        const QFileInfo file(path);
        if (file.exists() && !file.isWritable())
            throw StoreError(StoreError::Kind::readOnly, describePath(path, u"The file is read-only."_s), SQLITE_READONLY);
    }
    try {
        container->m_anchor = std::make_unique<StoreConnection>(path, inMemory, true);
    } catch (const StoreError &error) {
        auto kind = StoreError::Kind::openFailed;
        if ((error.sqliteCode() & 0xff) == SQLITE_NOTADB)
            kind = StoreError::Kind::notADatabase;
        else if ((error.sqliteCode() & 0xff) == SQLITE_READONLY)
            kind = StoreError::Kind::readOnly;
        throw StoreError(kind, describePath(path, error.detail()), error.sqliteCode());
    }
    StoreConnection &anchor = *container->m_anchor;
    if (!inMemory) {
        checkWritableDatabase(anchor, path);
        // Without a WAL beside it the read-only look saw the main file alone; this
        // connection sees everything a WAL or journal holds. Judged again, still before
        // the first write.
        StoreFileInspector::identify(anchor.sqliteConnection(), path);
        try {
            // WAL: readers never wait for a writer, and a commit is one append, so a crash
            // leaves the last commit either whole or absent.
            anchor.execute("PRAGMA journal_mode = WAL");
        } catch (const StoreError &error) {
            throw StoreError(StoreError::Kind::openFailed, describePath(path, error.detail()), error.sqliteCode());
        }
    }
    try {
        StoreSchema::migrate(anchor.sqliteConnection());
    } catch (const StoreError &error) {
        throw StoreError(error.kind(), describePath(path, error.detail()), error.sqliteCode());
    }
    for (EntityType entity : allEntityTypes) {
        auto statement = anchor.prepare(u"SELECT coalesce(max(pk), 0) FROM "_s + entityName(entity));
        if (statement.step())
            container->m_lastKeys[size_t(entity)] = statement.integer(0);
    }
    container->m_viewContext.reset(new ManagedObjectContext(*container, ManagedObjectContext::ConcurrencyType::mainQueue,
                                                            container->openConnection()));
    container->m_viewContext->setName(u"viewContext"_s);
    container->m_viewContext->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    return container;
}

std::unique_ptr<StoreConnection> PersistentContainer::openConnection() const
{
    return std::make_unique<StoreConnection>(m_path, m_inMemory, false);
}

std::unique_ptr<StoreConnection> PersistentContainer::lendConnection()
{
    {
        QMutexLocker locker(&m_poolMutex);
        if (!m_idleConnections.empty()) {
            std::unique_ptr<StoreConnection> connection = std::move(m_idleConnections.back());
            m_idleConnections.pop_back();
            return connection;
        }
    }
    std::unique_ptr<StoreConnection> connection = openConnection();
    OpenContainers &containers = openContainers();
    QMutexLocker locker(&containers.mutex);
    containers.lentBy.insert(connection->handle(), containers.serials.value(this));
    return connection;
}

void PersistentContainer::takeBackConnection(std::unique_ptr<StoreConnection> connection)
{
    // The next context must find the connection as a fresh one: outside any transaction
    // (which also ends a deferred foreign key check) and without temporary tables or
    // views. One that is not is closed, which ends whatever it held.
    if (!connection || !isClean(*connection))
        return;
    QMutexLocker locker(&m_poolMutex);
    if (m_idleConnections.size() < maximumIdleConnections)
        m_idleConnections.push_back(std::move(connection));
    // Otherwise it closes here, as it did before there were pools.
}

std::unique_ptr<QThreadPool> PersistentContainer::lendWorker()
{
    {
        QMutexLocker locker(&m_poolMutex);
        if (!m_idleWorkers.empty()) {
            std::unique_ptr<QThreadPool> worker = std::move(m_idleWorkers.back());
            m_idleWorkers.pop_back();
            return worker;
        }
    }
    // One thread: the context's blocks run one at a time, in the order given.
    auto worker = std::make_unique<QThreadPool>();
    worker->setMaxThreadCount(1);
    return worker;
}

void PersistentContainer::takeBackWorker(std::unique_ptr<QThreadPool> worker)
{
    // It comes back idle, its thread waiting for work: that thread is what the next
    // context is spared from starting. One not kept ends its thread as it goes.
    if (!worker)
        return;
    QMutexLocker locker(&m_poolMutex);
    if (m_idleWorkers.size() < maximumIdleWorkers)
        m_idleWorkers.push_back(std::move(worker));
}

void giveBackToContainer(const PersistentContainer *container, std::unique_ptr<StoreConnection> connection,
                         std::unique_ptr<QThreadPool> worker)
{
    OpenContainers &containers = openContainers();
    QMutexLocker locker(&containers.mutex);
    const auto serial = containers.serials.constFind(container);
    if (serial == containers.serials.cend())
        return; // closed: the connection and the worker end here
    // Held until both are back, so the container cannot close meanwhile.
    auto *open = const_cast<PersistentContainer *>(container);
    open->takeBackWorker(std::move(worker));
    if (connection && containers.lentBy.value(connection->handle()) == *serial)
        open->takeBackConnection(std::move(connection));
}

std::shared_ptr<ManagedObjectContext> PersistentContainer::newBackgroundContext()
{
    std::shared_ptr<ManagedObjectContext> context(
        new ManagedObjectContext(*this, ManagedObjectContext::ConcurrencyType::privateQueue, lendConnection()));
    context->setName(u"backgroundContext"_s);
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    return context;
}

qint64 PersistentContainer::allocatePrimaryKey(EntityType entity)
{
    QMutexLocker locker(&m_keyMutex);
    return ++m_lastKeys[size_t(entity)];
}

void PersistentContainer::reserveKeysUpTo(EntityType entity, qint64 largestKey)
{
    QMutexLocker locker(&m_keyMutex);
    qint64 &last = m_lastKeys[size_t(entity)];
    last = std::max(last, largestKey);
}

void PersistentContainer::postChanges(const StoreChanges &changes)
{
    if (changes.isEmpty())
        return;
    if (QThread::currentThread() == thread()) {
        Q_EMIT objectsDidChange(changes);
        return;
    }
    QMetaObject::invokeMethod(this, [this, changes] { Q_EMIT objectsDidChange(changes); }, Qt::QueuedConnection);
}

void PersistentContainer::acquireWriteTurn()
{
    QMutexLocker locker(&m_turnMutex);
    const quint64 turn = m_nextTurn++;
    while (turn != m_servingTurn)
        m_turnChanged.wait(&m_turnMutex);
}

bool PersistentContainer::tryAcquireWriteTurn()
{
    QMutexLocker locker(&m_turnMutex);
    // Free only when nobody holds the turn and nobody waits for it: jumping the queue
    // would starve the waiting contexts.
    if (m_nextTurn != m_servingTurn)
        return false;
    ++m_nextTurn;
    return true;
}

void PersistentContainer::releaseWriteTurn()
{
    QMutexLocker locker(&m_turnMutex);
    ++m_servingTurn;
    m_turnChanged.wakeAll();
    offerFreeTurnToViewContext();
}

void PersistentContainer::requestWriteTurnForViewContext()
{
    QMutexLocker locker(&m_turnMutex);
    m_viewContextWantsTurn = true;
    // The turn may have come free between the failed try and this request.
    offerFreeTurnToViewContext();
}

void PersistentContainer::offerFreeTurnToViewContext()
{
    // The view context does not reserve a place in the line: a place held for the main
    // thread would stall every background writer behind it while the main thread is busy,
    // and deadlock one that the main thread waits for. It gets the turn at the first
    // moment nobody wants it; until then its changes stay pending and visible to its reads.
    if (!m_viewContextWantsTurn || m_nextTurn != m_servingTurn)
        return;
    m_viewContextWantsTurn = false;
    QMetaObject::invokeMethod(this, &PersistentContainer::runQueuedViewContextSave, Qt::QueuedConnection);
}

void PersistentContainer::runQueuedViewContextSave()
{
    if (m_viewContext)
        m_viewContext->runQueuedSave();
}
