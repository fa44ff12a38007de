// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SidebarTreeModel.h"

#include "Services/CatalogResults.h"
#include "ViewModels/SidebarViewModel.h"

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;

SidebarTreeModel::SidebarTreeModel(SidebarViewModel &viewModel, QObject *parent)
    : QAbstractItemModel(parent)
    , m_viewModel(viewModel)
{
    for (int section = 0; section < 2; ++section) {
        auto node = std::make_unique<Node>();
        node->parent = &m_root;
        m_root.children.push_back(std::move(node));
    }
    renumber(&m_root);

    Node *collection = sectionNode(Section::myCollection);
    for (const SidebarItem &item : m_viewModel.visibleCollectionItems())
        collection->children.push_back(makeNode(item, collection));
    renumber(collection);

    Node *catalog = sectionNode(Section::catalog);
    for (const SidebarItem &item : SidebarViewModel::catalogItems())
        catalog->children.push_back(makeNode(item, catalog));
    m_fixedCatalogRows = int(catalog->children.size());
    for (const ThemeNode &theme : m_viewModel.themeTree())
        catalog->children.push_back(makeThemeNode(theme, catalog));
    renumber(catalog);

    connect(&m_viewModel, &SidebarViewModel::visibilityChanged, this, &SidebarTreeModel::syncCollectionRows);
    connect(&m_viewModel, &SidebarViewModel::themeTreeChanged, this, &SidebarTreeModel::reloadThemes);
    connect(&m_viewModel, &SidebarViewModel::badgeCountChanged, this,
            [this](SidebarItem::Kind kind) { updateBadge(kind); });
}

SidebarTreeModel::~SidebarTreeModel() = default;

void SidebarTreeModel::setIconProvider(std::function<QIcon(const QString &)> provider)
{
    m_iconProvider = std::move(provider);
    // Every row but the sections has an icon.
    for (Node *section : {sectionNode(Section::myCollection), sectionNode(Section::catalog)}) {
        if (!section->children.empty())
            Q_EMIT dataChanged(index(0, 0, indexOfNode(section)),
                               index(int(section->children.size()) - 1, 0, indexOfNode(section)),
                               {Qt::DecorationRole});
    }
}

QString SidebarTreeModel::listTitle()
{
    //% "Library"
    return qtTrId("sidebar.title");
}

QString SidebarTreeModel::sectionTitle(Section section)
{
    if (section == Section::myCollection) {
        //% "My Collection"
        return qtTrId("sidebar.myCollection");
    }
    //% "Catalog"
    return qtTrId("sidebar.catalog");
}

QModelIndex SidebarTreeModel::sectionIndex(Section section) const
{
    return indexOfNode(sectionNode(section));
}

QModelIndex SidebarTreeModel::indexOf(const SidebarItem &item) const
{
    if (item.isCatalogTheme())
        return indexOfNode(m_themeNodes.value(item));
    for (const Node *section : {sectionNode(Section::myCollection), sectionNode(Section::catalog)}) {
        for (const auto &child : section->children) {
            if (child->item == item)
                return indexOfNode(child.get());
        }
    }
    return {};
}

std::optional<SidebarItem> SidebarTreeModel::itemAt(const QModelIndex &index) const
{
    const Node *node = nodeAt(index);
    return node ? node->item : std::nullopt;
}

QModelIndex SidebarTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0 || (parent.isValid() && parent.column() != 0))
        return {};
    const Node *parentNode = parent.isValid() ? nodeAt(parent) : &m_root;
    if (!parentNode || row >= int(parentNode->children.size()))
        return {};
    return createIndex(row, 0, parentNode->children.at(size_t(row)).get());
}

QModelIndex SidebarTreeModel::parent(const QModelIndex &index) const
{
    const Node *node = nodeAt(index);
    if (!node || node->parent == &m_root)
        return {};
    return indexOfNode(node->parent);
}

int SidebarTreeModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid() && parent.column() != 0)
        return 0;
    const Node *node = parent.isValid() ? nodeAt(parent) : &m_root;
    return node ? int(node->children.size()) : 0;
}

int SidebarTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant SidebarTreeModel::data(const QModelIndex &index, int role) const
{
    const Node *node = nodeAt(index);
    if (!node)
        return {};
    if (!node->item) {
        const Section section = node->row == 0 ? Section::myCollection : Section::catalog;
        switch (role) {
        case Qt::DisplayRole:
            return sectionTitle(section);
        case IsSectionRole:
            return true;
        default:
            return {};
        }
    }
    const SidebarItem &item = *node->item;
    switch (role) {
    case Qt::DisplayRole:
        return item.rowText();
    case Qt::ToolTipRole:
        // The row may be cut short ("Unknown Acqui…") in a narrow sidebar.
        return item.rowText();
    case Qt::DecorationRole:
        return m_iconProvider ? QVariant(m_iconProvider(item.iconName())) : QVariant();
    case SidebarItemRole:
        return QVariant::fromValue(item);
    case ItemIDRole:
        return item.id();
    case SymbolNameRole:
        return item.iconName();
    case BadgeCountRole: {
        const std::optional<qint64> count = m_viewModel.badgeCount(item);
        return count ? QVariant(*count) : QVariant();
    }
    case IsSectionRole:
        return false;
    case TitleRole:
        return item.title();
    default:
        return {};
    }
}

Qt::ItemFlags SidebarTreeModel::flags(const QModelIndex &index) const
{
    const Node *node = nodeAt(index);
    if (!node)
        return Qt::NoItemFlags;
    if (!node->item)
        return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (node->children.empty())
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

QHash<int, QByteArray> SidebarTreeModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert(SidebarItemRole, "sidebarItem");
    names.insert(ItemIDRole, "itemID");
    names.insert(SymbolNameRole, "symbolName");
    names.insert(BadgeCountRole, "badgeCount");
    names.insert(IsSectionRole, "isSection");
    names.insert(TitleRole, "title");
    return names;
}

SidebarTreeModel::Node *SidebarTreeModel::nodeAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != this)
        return nullptr;
    return static_cast<Node *>(index.internalPointer());
}

QModelIndex SidebarTreeModel::indexOfNode(const Node *node) const
{
    if (!node || node == &m_root)
        return {};
    return createIndex(node->row, 0, const_cast<Node *>(node));
}

SidebarTreeModel::Node *SidebarTreeModel::sectionNode(Section section) const
{
    return m_root.children.at(section == Section::myCollection ? 0 : 1).get();
}

std::unique_ptr<SidebarTreeModel::Node> SidebarTreeModel::makeNode(const SidebarItem &item, Node *parent)
{
    auto node = std::make_unique<Node>();
    node->item = item;
    node->parent = parent;
    return node;
}

std::unique_ptr<SidebarTreeModel::Node> SidebarTreeModel::makeThemeNode(const ThemeNode &theme, Node *parent)
{
    const SidebarItem item = SidebarItem::catalogTheme(theme.id, theme.name);
    std::unique_ptr<Node> node = makeNode(item, parent);
    m_themeNodes.insert(item, node.get());
    for (const ThemeNode &child : theme.children)
        node->children.push_back(makeThemeNode(child, node.get()));
    renumber(node.get());
    return node;
}

void SidebarTreeModel::renumber(Node *parent)
{
    for (size_t row = 0; row < parent->children.size(); ++row)
        parent->children[row]->row = int(row);
}

void SidebarTreeModel::syncCollectionRows()
{
    // Shown rows keep the order of the full list, so one walk along both finds each row
    // to insert or remove, one at a time, and views keep the selection of the others.
    Node *collection = sectionNode(Section::myCollection);
    const QModelIndex parentIndex = indexOfNode(collection);
    m_changingRows = true;
    int row = 0;
    for (const SidebarItem &item : SidebarViewModel::allCollectionItems()) {
        const bool present = row < int(collection->children.size()) && collection->children[size_t(row)]->item == item;
        const bool wanted = m_viewModel.isVisible(item.kind());
        if (wanted && !present) {
            beginInsertRows(parentIndex, row, row);
            collection->children.insert(collection->children.begin() + row, makeNode(item, collection));
            renumber(collection);
            endInsertRows();
        } else if (!wanted && present) {
            beginRemoveRows(parentIndex, row, row);
            collection->children.erase(collection->children.begin() + row);
            renumber(collection);
            endRemoveRows();
            continue;
        }
        if (wanted)
            ++row;
    }
    m_changingRows = false;
    Q_EMIT rowsChanged();
}

void SidebarTreeModel::reloadThemes()
{
    Node *catalog = sectionNode(Section::catalog);
    const QModelIndex parentIndex = indexOfNode(catalog);
    const int oldCount = int(catalog->children.size());
    m_changingRows = true;
    if (oldCount > m_fixedCatalogRows) {
        beginRemoveRows(parentIndex, m_fixedCatalogRows, oldCount - 1);
        catalog->children.erase(catalog->children.begin() + m_fixedCatalogRows, catalog->children.end());
        m_themeNodes.clear();
        endRemoveRows();
    }
    const QList<ThemeNode> &themes = m_viewModel.themeTree();
    if (!themes.isEmpty()) {
        beginInsertRows(parentIndex, m_fixedCatalogRows, m_fixedCatalogRows + int(themes.size()) - 1);
        for (const ThemeNode &theme : themes)
            catalog->children.push_back(makeThemeNode(theme, catalog));
        renumber(catalog);
        endInsertRows();
    }
    m_changingRows = false;
    Q_EMIT rowsChanged();
}

void SidebarTreeModel::updateBadge(SidebarItem::Kind kind)
{
    const QModelIndex row = indexOf(SidebarItem(kind));
    if (row.isValid())
        Q_EMIT dataChanged(row, row, {BadgeCountRole});
}
