// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSetListModel.h"

#include <QLocale>

using namespace Qt::StringLiterals;

CatalogSetListModel::CatalogSetListModel(QObject *parent)
    : SetListTableModel({SetListColumnTitle::Kind::setNumber, SetListColumnTitle::Kind::name,
                         SetListColumnTitle::Kind::theme, SetListColumnTitle::Kind::year,
                         SetListColumnTitle::Kind::pieces, std::nullopt},
                        &CatalogSetListModel::comparatorsForColumn, parent)
{
}

int CatalogSetListModel::rowOf(const QString &setNum) const
{
    for (qsizetype row = 0; row < m_results.size(); ++row) {
        if (m_results[row].setNum == setNum)
            return int(row);
    }
    return -1;
}

void CatalogSetListModel::setResults(const QList<CatalogSetResult> &results)
{
    beginResetModel();
    m_results = results;
    endResetModel();
}

void CatalogSetListModel::setThemeNames(const QHash<int, QString> &themeNames)
{
    m_themeNames = themeNames;
    if (!m_results.isEmpty())
        Q_EMIT dataChanged(index(0, ThemeColumn), index(rowCount() - 1, ThemeColumn));
}

void CatalogSetListModel::setOwnedSetNumbers(const QSet<QString> &ownedSetNumbers)
{
    m_ownedSetNumbers = ownedSetNumbers;
    if (!m_results.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

QList<SortDescriptor> CatalogSetListModel::comparatorsForColumn(int column, Qt::SortOrder order)
{
    const bool ascending = order == Qt::AscendingOrder;
    switch (column) {
    case SetNumberColumn:
        return {{u"setNum"_s, ascending}};
    case NameColumn:
        return {{u"name"_s, ascending}};
    case YearColumn:
        return {{u"year"_s, ascending}, {u"name"_s, true}};
    case PiecesColumn:
        return {{u"numParts"_s, ascending}};
    default:
        return {};
    }
}

int CatalogSetListModel::columnOfSortOrder(const QList<SortDescriptor> &comparators)
{
    if (comparators.isEmpty())
        return -1;
    const QString &keyPath = comparators.first().keyPath;
    if (keyPath == u"setNum")
        return SetNumberColumn;
    if (keyPath == u"name")
        return NameColumn;
    if (keyPath == u"year")
        return YearColumn;
    if (keyPath == u"numParts")
        return PiecesColumn;
    return -1;
}

int CatalogSetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_results.size());
}

int CatalogSetListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CatalogSetListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const CatalogSetResult &result = m_results[index.row()];
    const bool isOwned = m_ownedSetNumbers.contains(result.setNum);
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case SetNumberColumn:
            return result.setNum;
        case NameColumn:
            return result.name;
        case ThemeColumn:
            return m_themeNames.value(result.themeID);
        // Counts through the user's number format, as the grid and the detail show them;
        // a year is a name rather than an amount and is never grouped.
        case YearColumn:
            return QString::number(result.year);
        case PiecesColumn:
            return QLocale().toString(result.numParts);
        default:
            return {};
        }
    case Qt::ToolTipRole:
        return index.column() == NameColumn ? QVariant(result.name) : QVariant();
    case Qt::TextAlignmentRole:
        if (index.column() == YearColumn || index.column() == PiecesColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        if (index.column() == OwnedColumn)
            return QVariant::fromValue(Qt::AlignCenter);
        return {};
    case SetNumberRole:
        return result.setNum;
    case NameRole:
        return result.name;
    case YearRole:
        return result.year;
    case ThemeIDRole:
        return result.themeID;
    case ThemeNameRole:
        return m_themeNames.value(result.themeID);
    case PieceCountRole:
        return result.numParts;
    case ImageURLRole:
        return result.imgURL.value_or(QString());
    case IsOwnedRole:
        return isOwned;
    default:
        return {};
    }
}


QHash<int, QByteArray> CatalogSetListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(SetNumberRole, "setNumber");
    names.insert(NameRole, "name");
    names.insert(YearRole, "year");
    names.insert(ThemeIDRole, "themeID");
    names.insert(ThemeNameRole, "themeName");
    names.insert(PieceCountRole, "pieceCount");
    names.insert(ImageURLRole, "imageURL");
    names.insert(IsOwnedRole, "isOwned");
    return names;
}
