// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListGroupModel.h"

#include "Logging.h"
#include "OverallCondition.h"
#include "Store/BrickSetListModel.h"
#include "Store/CatalogSetAccessors.h"
#include "Store/PersistentContainer.h"

#include <QLocale>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

SetListGroupModel::SetListGroupModel(PersistentContainer &container, BrickSetListModel &copies, QObject *parent)
    : SetListTableModel({std::nullopt, SetListColumnTitle::Kind::setNumber, SetListColumnTitle::Kind::name,
                         SetListColumnTitle::Kind::theme, SetListColumnTitle::Kind::year,
                         SetListColumnTitle::Kind::pieces, SetListColumnTitle::Kind::condition,
                         SetListColumnTitle::Kind::value, SetListColumnTitle::Kind::added},
                        &SetListGroupModel::comparatorsForColumn, parent)
    , m_container(container)
    , m_copies(copies)
{
    connect(&m_copies, &BrickSetListModel::refetched, this, &SetListGroupModel::rebuild);
    connect(&m_container, &PersistentContainer::objectsDidChange, this, &SetListGroupModel::onObjectsDidChange);
    rebuild();
}

void SetListGroupModel::setPriceSort(std::optional<bool> ascending)
{
    m_priceSortAscending = ascending;
}

QString SetListGroupModel::groupKey(const BrickSetWithCatalogSet &copy)
{
    if (copy.catalogSet && copy.catalogSet->setNumber)
        return *copy.catalogSet->setNumber;
    return copy.brickSet.objectID.uriRepresentation().toString();
}

int SetListGroupModel::rowOf(const ObjectID &id) const
{
    return m_rowOfCopy.value(id, -1);
}

void SetListGroupModel::onObjectsDidChange(const StoreChanges &changes)
{
    if (!changes.touches(EntityType::CachedPriceGuide))
        return;
    m_priceGuidesLoaded = false;
    m_priceGuides.clear();
    rebuild();
}

const QHash<qint64, CachedPriceGuide> &SetListGroupModel::priceGuides()
{
    if (m_priceGuidesLoaded)
        return m_priceGuides;
    m_priceGuidesLoaded = true;
    QList<CachedPriceGuide> all;
    try {
        all = m_container.viewContext().fetch(FetchRequest<CachedPriceGuide>());
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the price guides of the set list failed:" << error.description();
        return m_priceGuides;
    }
    QHash<qint64, QList<CachedPriceGuide>> bySet;
    for (CachedPriceGuide &guide : all) {
        if (guide.catalogSet)
            bySet[guide.catalogSet->primaryKey].append(std::move(guide));
    }
    for (auto it = bySet.cbegin(); it != bySet.cend(); ++it) {
        if (auto preferred = CatalogSetAccessors::preferredPriceGuide(it.value()))
            m_priceGuides.insert(it.key(), std::move(*preferred));
    }
    return m_priceGuides;
}

void SetListGroupModel::rebuild()
{
    // A shared copy of the guides, which the groups point into like the rows.
    const QHash<qint64, CachedPriceGuide> guides = priceGuides();
    auto guideOf = [&guides](const BrickSetWithCatalogSet &copy) -> const CachedPriceGuide * {
        if (!copy.brickSet.catalogSet)
            return nullptr;
        const auto found = guides.constFind(copy.brickSet.catalogSet->primaryKey);
        return found == guides.cend() ? nullptr : &*found;
    };

    // Groups point into this snapshot instead of copying their first copy's values.
    const QList<BrickSetWithCatalogSet> rows = m_copies.rows();
    QList<qsizetype> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    if (m_priceSortAscending) {
        const bool ascending = *m_priceSortAscending;
        QList<std::optional<Decimal>> prices;
        prices.reserve(rows.size());
        for (const BrickSetWithCatalogSet &row : rows) {
            const CachedPriceGuide *guide = guideOf(row);
            prices.append(guide ? guide->avgPrice : std::nullopt);
        }
        // Absent prices sort before any price, as absent values do in the store.
        std::stable_sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
            const std::optional<Decimal> &a = prices[left];
            const std::optional<Decimal> &b = prices[right];
            return ascending ? a < b : b < a;
        });
    }

    QList<Group> groups;
    QHash<QString, int> rowOfKey;
    // Most copies share their catalog set with others: its primary key finds their group
    // without hashing the set number again. Only sets with a number are found this way,
    // since without one each copy stands alone.
    QHash<qint64, int> rowOfCatalogSet;
    QHash<ObjectID, int> rowOfCopy;
    groups.reserve(rows.size());
    rowOfKey.reserve(rows.size());
    rowOfCatalogSet.reserve(rows.size());
    rowOfCopy.reserve(rows.size());
    for (const qsizetype index : std::as_const(order)) {
        const BrickSetWithCatalogSet &row = rows[index];
        const qint64 catalogSetKey = row.catalogSet && row.catalogSet->setNumber ? row.catalogSet->objectID.primaryKey : 0;
        int groupRow = catalogSetKey != 0 ? rowOfCatalogSet.value(catalogSetKey, -1) : -1;
        if (groupRow < 0) {
            const QString key = groupKey(row);
            groupRow = rowOfKey.value(key, -1);
            if (groupRow < 0) {
                groupRow = int(groups.size());
                rowOfKey.insert(key, groupRow);
                groups.append(Group{&row, 0, guideOf(row)});
            }
            if (catalogSetKey != 0)
                rowOfCatalogSet.insert(catalogSetKey, groupRow);
        }
        ++groups[groupRow].copyCount;
        rowOfCopy.insert(row.brickSet.objectID, groupRow);
    }

    // The same copies standing for the same rows: report changed rows only.
    bool sameRows = groups.size() == m_groups.size();
    for (qsizetype row = 0; sameRows && row < groups.size(); ++row)
        sameRows = groups[row].copy->brickSet.objectID == m_groups[row].copy->brickSet.objectID;
    if (sameRows) {
        for (qsizetype row = 0; row < groups.size(); ++row) {
            const Group &before = m_groups[row];
            const Group &after = groups[row];
            const bool sameGuide = before.priceGuide == after.priceGuide
                || (before.priceGuide && after.priceGuide && *before.priceGuide == *after.priceGuide);
            const bool changed = before.copyCount != after.copyCount || !sameGuide
                || before.copy->brickSet != after.copy->brickSet || before.copy->catalogSet != after.copy->catalogSet;
            m_groups[row] = std::move(groups[row]);
            if (changed)
                Q_EMIT dataChanged(index(int(row), 0), index(int(row), ColumnCount - 1));
        }
        // Only now may the old snapshots go: until here the rows not yet replaced used them.
        m_rows = rows;
        m_guidesOfGroups = guides;
    } else {
        beginResetModel();
        m_groups = std::move(groups);
        m_rows = rows;
        m_guidesOfGroups = guides;
        endResetModel();
    }
    m_rowOfCopy = std::move(rowOfCopy);
    Q_EMIT regrouped();
}

QList<SortDescriptor> SetListGroupModel::comparatorsForColumn(int column, Qt::SortOrder order)
{
    const bool ascending = order == Qt::AscendingOrder;
    switch (column) {
    case SetNumberColumn:
        return {{u"catalogSet.setNumber"_s, ascending}};
    case NameColumn:
    case ValueColumn:
        return {{u"catalogSet.name"_s, ascending}};
    case YearColumn:
        return {{u"catalogSet.year"_s, ascending}, {u"catalogSet.name"_s, true}};
    case PiecesColumn:
        return {{u"catalogSet.pieceCount"_s, ascending}};
    case ConditionColumn:
        return {{u"overallCondition"_s, ascending}};
    case AddedColumn:
        return {{u"dateAdded"_s, ascending}};
    default:
        return {};
    }
}

int SetListGroupModel::columnOfSortOrder(const QList<SortDescriptor> &comparators)
{
    if (comparators.isEmpty())
        return -1;
    const QString &keyPath = comparators.first().keyPath;
    if (keyPath == u"catalogSet.setNumber")
        return SetNumberColumn;
    if (keyPath == u"catalogSet.name")
        return NameColumn;
    if (keyPath == u"catalogSet.year")
        return YearColumn;
    if (keyPath == u"catalogSet.pieceCount")
        return PiecesColumn;
    if (keyPath == u"overallCondition")
        return ConditionColumn;
    if (keyPath == u"dateAdded")
        return AddedColumn;
    return -1;
}

int SetListGroupModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

int SetListGroupModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString SetListGroupModel::nameText(const BrickSetWithCatalogSet &copy)
{
    if (!copy.catalogSet)
        return u"Unknown Set"_s;
    if (copy.catalogSet->name && !copy.catalogSet->name->isEmpty())
        return *copy.catalogSet->name;
    return copy.catalogSet->setNumber.value_or(QString());
}

namespace {

// The set's picture: the small one first for a thumbnail, the large one first otherwise,
// each falling back on the other.
QString pictureURL(const std::optional<CatalogSet> &catalogSet, bool small)
{
    if (!catalogSet)
        return {};
    const std::optional<QString> &first = small ? catalogSet->thumbnailURL : catalogSet->imageURL;
    const std::optional<QString> &second = small ? catalogSet->imageURL : catalogSet->thumbnailURL;
    if (first && !first->isEmpty())
        return *first;
    return second.value_or(QString());
}

} // namespace

QVariant SetListGroupModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Group &group = m_groups[index.row()];
    const BrickSet &brickSet = group.copy->brickSet;
    const std::optional<CatalogSet> &catalogSet = group.copy->catalogSet;
    const QString setNumber = catalogSet ? catalogSet->setNumber.value_or(QString()) : QString();
    const std::optional<Decimal> price = group.priceGuide ? group.priceGuide->avgPrice : std::nullopt;
    const QString currency = group.priceGuide ? group.priceGuide->currency.value_or(QString()) : QString();
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case ThumbnailColumn:
            return pictureURL(catalogSet, true);
        case SetNumberColumn:
            return setNumber;
        case NameColumn:
            return nameText(*group.copy);
        case ThemeColumn:
            return catalogSet ? catalogSet->themeName.value_or(QString()) : QString();
        // A count in the user's number format; a year is never grouped.
        case YearColumn:
            return catalogSet ? QVariant(QString::number(catalogSet->year)) : QVariant();
        case PiecesColumn:
            return catalogSet ? QVariant(QLocale().toString(int(catalogSet->pieceCount))) : QVariant();
        case ConditionColumn:
            return Vocabulary::displayNameOfStored<OverallCondition>(brickSet.overallCondition.value_or(QString()));
        case ValueColumn:
            return price ? QString(price->toString() + (currency.isEmpty() ? QString() : u" "_s + currency))
                         : QString();
        case AddedColumn:
            return brickSet.dateAdded ? QLocale().toString(brickSet.dateAdded->toLocalTime().date(), QLocale::ShortFormat)
                                      : QString();
        default:
            return {};
        }
    case ObjectIDRole:
        return QVariant::fromValue(brickSet.objectID);
    case SetNumberRole:
        return setNumber;
    case NameRole:
        return nameText(*group.copy);
    case ThemeNameRole:
        return catalogSet ? catalogSet->themeName.value_or(QString()) : QString();
    case YearRole:
        return catalogSet ? int(catalogSet->year) : 0;
    case PieceCountRole:
        return catalogSet ? int(catalogSet->pieceCount) : 0;
    case IsFavoriteRole:
        return brickSet.isFavorite;
    case Qt::AccessibleTextRole:
        // What a screen reader says for a cell: the name, and the star a favourite shows.
        if (index.column() != NameColumn)
            return {};
        return brickSet.isFavorite ? QString(nameText(*group.copy) + u", "_s + qtTrId("accessibility.favorited"))
                                   : nameText(*group.copy);
    case CopyCountRole:
        return group.copyCount;
    case ConditionRole:
        return brickSet.overallCondition.value_or(QString());
    case PriceRole:
        return price ? QVariant::fromValue(*price) : QVariant();
    case CurrencyRole:
        return currency;
    case DateAddedRole:
        return brickSet.dateAdded ? QVariant(*brickSet.dateAdded) : QVariant();
    case ImageURLRole:
        return pictureURL(catalogSet, false);
    case ThumbnailURLRole:
        return catalogSet ? catalogSet->thumbnailURL.value_or(QString()) : QString();
    default:
        return {};
    }
}


QHash<int, QByteArray> SetListGroupModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(ObjectIDRole, "objectID");
    names.insert(SetNumberRole, "setNumber");
    names.insert(NameRole, "name");
    names.insert(ThemeNameRole, "themeName");
    names.insert(YearRole, "year");
    names.insert(PieceCountRole, "pieceCount");
    names.insert(IsFavoriteRole, "isFavorite");
    names.insert(CopyCountRole, "copyCount");
    names.insert(ConditionRole, "condition");
    names.insert(PriceRole, "price");
    names.insert(CurrencyRole, "currency");
    names.insert(DateAddedRole, "dateAdded");
    names.insert(ImageURLRole, "imageURL");
    names.insert(ThumbnailURLRole, "thumbnailURL");
    return names;
}
