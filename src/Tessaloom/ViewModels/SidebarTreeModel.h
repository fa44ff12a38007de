// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SidebarItem.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>

#include <functional>
#include <memory>
#include <vector>

class SidebarViewModel;
struct ThemeNode;

// The sidebar as a tree for a QTreeView, over a SidebarViewModel: two section rows, "My
// Collection" with the smart lists that are shown and their badges, and "Catalog" with
// the whole catalog, the theme browser and the outline of themes, sub-themes under their
// parent. Section rows are not selectable. Rows come and go with the visibility settings
// and the outline is replaced after each new catalog, by row removals and insertions, so a
// view keeps the selection of rows that stay.
//
// The model holds no selection: SidebarSelectionBinder keeps a view's selection and the
// view model's selectedItem() in step, through itemAt() and indexOf().
class SidebarTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role {
        SidebarItemRole = Qt::UserRole + 1, // SidebarItem; invalid for section rows
        ItemIDRole,                         // QString, SidebarItem::id(); empty for section rows
        SymbolNameRole,                     // QString, the icon's symbol name; empty for section rows
        BadgeCountRole,                     // qint64, the badge; invalid for rows without one
        IsSectionRole,                      // bool
        TitleRole,                          // QString, SidebarItem::title() (plain English)
    };
    Q_ENUM(Role)

    enum class Section { myCollection, catalog };

    explicit SidebarTreeModel(SidebarViewModel &viewModel, QObject *parent = nullptr);
    ~SidebarTreeModel() override;

    SidebarViewModel &viewModel() const { return m_viewModel; }

    // Turns symbol names into icons for Qt::DecorationRole; without it rows have no icon.
    void setIconProvider(std::function<QIcon(const QString &symbolName)> provider);

    // The title of the whole list, and of each section.
    static QString listTitle();
    static QString sectionTitle(Section section);

    QModelIndex sectionIndex(Section section) const;
    // The row that shows `item`, or an invalid index when no row does (hidden, unknown
    // theme, a theme whose name changed).
    QModelIndex indexOf(const SidebarItem &item) const;
    // The item of a row; nothing for section rows and invalid indexes.
    std::optional<SidebarItem> itemAt(const QModelIndex &index) const;

    // True while rows are being inserted or removed; a selection model moving its current
    // row away from a removed one is then no choice of the user's.
    bool isChangingRows() const { return m_changingRows; }

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    // After rows were inserted or removed (a visibility setting, a new outline).
    void rowsChanged();

private:
    struct Node
    {
        std::optional<SidebarItem> item; // nothing for the root and section rows
        Node *parent = nullptr;
        int row = 0;
        std::vector<std::unique_ptr<Node>> children;
    };

    Node *nodeAt(const QModelIndex &index) const;
    QModelIndex indexOfNode(const Node *node) const;
    Node *sectionNode(Section section) const;
    static std::unique_ptr<Node> makeNode(const SidebarItem &item, Node *parent);
    std::unique_ptr<Node> makeThemeNode(const ThemeNode &theme, Node *parent);
    static void renumber(Node *parent);

    void syncCollectionRows();
    void reloadThemes();
    void updateBadge(SidebarItem::Kind kind);

    SidebarViewModel &m_viewModel;
    std::function<QIcon(const QString &)> m_iconProvider;
    Node m_root;
    int m_fixedCatalogRows = 0;
    QHash<SidebarItem, Node *> m_themeNodes;
    bool m_changingRows = false;
};
