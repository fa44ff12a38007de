// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/WishlistListModel.h"

#include "Logging.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreError.h"
#include "Store/StoreObserver.h"
#include "ViewModels/CatalogSetListModel.h"

#include <QFutureWatcher>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {
QList<SortDescriptor> noComparators(int, Qt::SortOrder)
{
    return {}; // the wishlist keeps its order: newest first
}
} // namespace

// What one look-up on the pool brings back.
struct WishlistListModel::LookUp
{
    std::shared_ptr<RebrickableCatalog> catalog; // null: there is no catalog
    bool replacesAnswers = false;                // a catalog other than the one answers came from
    WishlistSetResolver::Answers answers;
};

WishlistListModel::WishlistListModel(ManagedObjectContext &viewContext, QObject *parent)
    : SetListTableModel({SetListColumnTitle::Kind::setNumber, SetListColumnTitle::Kind::name,
                         SetListColumnTitle::Kind::theme, SetListColumnTitle::Kind::year,
                         SetListColumnTitle::Kind::pieces},
                        &noComparators, parent)
    , m_viewContext(viewContext)
    , m_observer(new StoreObserver(viewContext.container(), {EntityType::WishlistItem}, this))
{
    connect(m_observer, &StoreObserver::changed, this, &WishlistListModel::onObjectsDidChange);
    refetch();
}

WishlistListModel::~WishlistListModel() = default;

QList<CatalogSetResult> WishlistListModel::results() const
{
    QList<CatalogSetResult> results;
    results.reserve(m_rows.size());
    for (const Row &row : m_rows)
        results.append(row.set);
    return results;
}

int WishlistListModel::rowOf(const QString &setNumber) const
{
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].set.setNum == setNumber)
            return int(row);
    }
    return -1;
}

int WishlistListModel::rowOf(const ObjectID &item) const
{
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        if (m_items[row].objectID == item)
            return int(row);
    }
    return -1;
}

void WishlistListModel::onObjectsDidChange(const StoreChanges &)
{
    refetch();
}

void WishlistListModel::refetch()
{
    QList<WishlistItem> items;
    try {
        items = m_viewContext.fetch(FetchRequest<WishlistItem>(Predicate(), {{u"dateAdded"_s, false}}));
    } catch (const StoreError &error) {
        // A failed fetch shows an empty list; the next change notice tries again.
        qCWarning(lcPersistence) << "Fetching the wishlist failed:" << error.description();
    }
    const int oldCount = count();
    if (!removeRowsLeaving(items)) {
        beginResetModel();
        m_items = std::move(items);
        m_rows.clear();
        m_rows.reserve(m_items.size());
        for (const WishlistItem &item : std::as_const(m_items))
            m_rows.append(rowFor(item));
        endResetModel();
    }
    if (count() != oldCount)
        Q_EMIT countChanged();
    Q_EMIT refetched();
    lookUpMissingNumbers();
}

bool WishlistListModel::removeRowsLeaving(const QList<WishlistItem> &items)
{
    // Only removals, the commonest change, are reported row by row, so the views keep
    // their scroll position and selection; anything else resets the list.
    if (items.size() > m_items.size())
        return false;
    if (items.size() == m_items.size())
        return items == m_items;
    // Entries are unique, so walking both lists once tells whether `items` is the current
    // list with some entries left out, in the same order.
    QList<bool> stays(m_items.size(), false);
    qsizetype next = 0;
    for (qsizetype row = 0; row < m_items.size() && next < items.size(); ++row) {
        if (m_items[row] == items[next]) {
            stays[row] = true;
            ++next;
        }
    }
    if (next != items.size())
        return false;
    for (qsizetype row = m_items.size() - 1; row >= 0; --row) {
        if (stays[row])
            continue;
        beginRemoveRows(QModelIndex(), int(row), int(row));
        m_items.remove(row);
        m_rows.remove(row);
        endRemoveRows();
    }
    return true;
}

WishlistListModel::Row WishlistListModel::rowFor(const WishlistItem &item) const
{
    const auto answer = item.setNumber ? m_answers.constFind(*item.setNumber) : m_answers.cend();
    const std::optional<WishlistSetResolver::CatalogFacts> facts =
        answer == m_answers.cend() ? std::nullopt : *answer;
    return {WishlistSetResolver::resolve(item, facts), WishlistSetResolver::themeName(item, facts)};
}

void WishlistListModel::lookUpMissingNumbers()
{
    QStringList missing;
    QStringList all;
    for (const WishlistItem &item : std::as_const(m_items)) {
        if (!item.setNumber || item.setNumber->isEmpty())
            continue;
        all.append(*item.setNumber);
        if (!m_answers.contains(*item.setNumber))
            missing.append(*item.setNumber);
    }
    // With every number answered, a catalog swapped in since is still worth asking: the
    // check is cheap (one pointer), the look-ups only run when it differs.
    if (all.isEmpty())
        return;
    const std::weak_ptr<RebrickableCatalog> known = m_answeringCatalog;
    const bool nothingMissing = missing.isEmpty();
    auto *watcher = new QFutureWatcher<LookUp>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        --m_lookUpsRunning;
        lookUpLanded(watcher->result());
    });
    ++m_lookUpsRunning;
    watcher->setFuture(QtConcurrent::run([known, missing, all, nothingMissing] {
        LookUp lookUp;
        lookUp.catalog = RebrickableCatalog::shared();
        if (!lookUp.catalog)
            return lookUp;
        const std::shared_ptr<RebrickableCatalog> previous = known.lock();
        lookUp.replacesAnswers = previous != lookUp.catalog;
        if (lookUp.replacesAnswers)
            lookUp.answers = WishlistSetResolver::lookUp(*lookUp.catalog, all);
        else if (!nothingMissing)
            lookUp.answers = WishlistSetResolver::lookUp(*lookUp.catalog, missing);
        return lookUp;
    }));
}

void WishlistListModel::lookUpLanded(const LookUp &answer)
{
    if (!answer.catalog) {
        // No catalog (any more): every entry shows its own facts.
        if (m_answers.isEmpty())
            return;
        m_answers.clear();
        m_answeringCatalog.reset();
    } else {
        if (answer.replacesAnswers) {
            // An answer from a catalog that was replaced again meanwhile is stale.
            if (answer.catalog != RebrickableCatalog::shared())
                return;
            m_answers = answer.answers;
            m_answeringCatalog = answer.catalog;
        } else {
            if (answer.catalog != m_answeringCatalog.lock())
                return;
            if (answer.answers.isEmpty())
                return;
            m_answers.insert(answer.answers);
        }
    }
    bool changed = false;
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        Row fresh = rowFor(m_items[row]);
        if (fresh.set == m_rows[row].set && fresh.themeName == m_rows[row].themeName)
            continue;
        m_rows[row] = std::move(fresh);
        changed = true;
    }
    if (changed && !m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
    Q_EMIT catalogFactsArrived();
}

void WishlistListModel::removeItem(const ObjectID &item)
{
    try {
        m_viewContext.deleteObject(item);
        m_viewContext.save();
    } catch (const StoreError &error) {
        // Dropped without a message: the deletion stays pending and goes out with the next save.
        qCWarning(lcPersistence) << "Removing a wishlist entry failed:" << error.description();
    }
}

int WishlistListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int WishlistListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant WishlistListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows[index.row()];
    const CatalogSetResult &set = row.set;
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case SetNumberColumn:
            return set.setNum;
        case NameColumn:
            return set.name;
        case ThemeColumn:
            return row.themeName;
        case YearColumn:
            return set.year > 0 ? QVariant(set.year) : QVariant();
        case PiecesColumn:
            return set.numParts;
        default:
            return {};
        }
    case Qt::ToolTipRole:
        return index.column() == NameColumn ? QVariant(set.name) : QVariant();
    case Qt::TextAlignmentRole:
        if (index.column() == YearColumn || index.column() == PiecesColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case CatalogSetListModel::SetNumberRole:
        return set.setNum;
    case CatalogSetListModel::NameRole:
        return set.name;
    case CatalogSetListModel::YearRole:
        return set.year;
    case CatalogSetListModel::ThemeIDRole:
        return set.themeID;
    case CatalogSetListModel::ThemeNameRole:
        return row.themeName;
    case CatalogSetListModel::PieceCountRole:
        return set.numParts;
    case CatalogSetListModel::ImageURLRole:
        return set.imgURL.value_or(QString());
    case CatalogSetListModel::IsOwnedRole:
        return false;
    case ItemIDRole:
        return QVariant::fromValue(m_items[index.row()].objectID);
    default:
        return {};
    }
}

QHash<int, QByteArray> WishlistListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(CatalogSetListModel::SetNumberRole, "setNumber");
    names.insert(CatalogSetListModel::NameRole, "name");
    names.insert(CatalogSetListModel::YearRole, "year");
    names.insert(CatalogSetListModel::ThemeIDRole, "themeID");
    names.insert(CatalogSetListModel::ThemeNameRole, "themeName");
    names.insert(CatalogSetListModel::PieceCountRole, "pieceCount");
    names.insert(CatalogSetListModel::ImageURLRole, "imageURL");
    names.insert(ItemIDRole, "itemID");
    return names;
}
