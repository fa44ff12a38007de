// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "ViewModels/SidebarItem.h"

#include <QDateTime>
#include <QMap>
#include <QSet>
#include <QList>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class CopyMatchCounter;
class CatalogDatabaseService;
class ManagedObjectContext;
class StoreObserver;
struct StoreChanges;
enum class EntityType;

// The sidebar's state, on the main thread: the selection (stored under
// "sidebar.lastSelectedItem" and restored at creation), the collection section with the
// rows the user chose to show and their counts, and the catalog section with the outline
// of themes, reloaded after every catalog build.
//
// The outline is read on QtConcurrent's global pool and handed back to the main thread:
// the catalog answers one statement at a time under its lock, which a long search on
// another thread may hold, and the main thread must not wait for it. Until the first
// outline lands, themeTree() is empty.
//
// The counts follow every save in the store, from any context. They are the badges'
// counts, which are not always the lists' own: "unknown condition" counts the stored
// value "unknown" as well as no value, while its list shows only copies without one.
class SidebarViewModel : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *lastSelectedItemKey = "sidebar.lastSelectedItem";

    // Reads the outline of the shared catalog, off the main thread; nothing when there is
    // no catalog. Tests put in one they can hold.
    using ThemeTreeQuery = std::function<std::optional<QList<ThemeNode>>()>;
    static std::optional<QList<ThemeNode>> sharedCatalogThemeTree();

    // `catalogService` announces new catalogs; the outline is reloaded on each.
    SidebarViewModel(ManagedObjectContext &viewContext, CatalogDatabaseService &catalogService,
                     QObject *parent = nullptr);
    SidebarViewModel(ManagedObjectContext &viewContext, CatalogDatabaseService &catalogService,
                     ThemeTreeQuery themeTreeQuery, QObject *parent = nullptr);
    ~SidebarViewModel() override;

    ManagedObjectContext &viewContext() const { return m_viewContext; }

    std::optional<SidebarItem> selectedItem() const { return m_selectedItem; }
    // Every present value is stored, even an unchanged one; clearing the selection
    // leaves the stored value as it was, so a deselection is not remembered.
    void setSelectedItem(const std::optional<SidebarItem> &item);

    const QList<ThemeNode> &themeTree() const { return m_themeTree; }
    // Whether an outline is being read.
    bool isLoadingThemeTree() const { return m_themeTreeLoads > 0; }

    // The collection section's rows, in order: all of them, and those shown now.
    static const QList<SidebarItem> &allCollectionItems();
    QList<SidebarItem> visibleCollectionItems() const;
    // The catalog section's fixed rows, before the themes.
    static const QList<SidebarItem> &catalogItems();
    // Whether the row of `kind` is shown (the six settings; every other row is).
    bool isVisible(SidebarItem::Kind kind) const;

    // The badge of `item`: its count, or nothing for rows without a badge.
    std::optional<qint64> badgeCount(const SidebarItem &item) const;
    static bool hasBadge(SidebarItem::Kind kind);
    // The day the retired badge compares with: when this model was made.
    QDateTime retiredCutoff() const { return m_createdAt; }

Q_SIGNALS:
    void selectedItemChanged(const std::optional<SidebarItem> &item);
    // After the outline was replaced (it landed, or a new catalog); the selection stays
    // as it was.
    void themeTreeChanged();
    void visibilityChanged(SidebarItem::Kind kind, bool visible);
    void badgeCountChanged(SidebarItem::Kind kind, qint64 count);

private:
    void loadThemeTree();
    void recount(const StoreChanges *changes);
    void setCount(SidebarItem::Kind kind, qint64 count, bool announce);
    qint64 wishlistCount() const;

    ManagedObjectContext &m_viewContext;
    ThemeTreeQuery m_themeTreeQuery;
    std::optional<SidebarItem> m_selectedItem;
    QList<ThemeNode> m_themeTree;
    // Outlines are read one after the other as catalogs come; only the latest one counts.
    quint64 m_themeTreeGeneration = 0;
    int m_themeTreeLoads = 0;
    QDateTime m_createdAt;
    StoreObserver *m_storeObserver = nullptr;
    QMap<SidebarItem::Kind, qint64> m_counts;
    QList<SidebarItem::Kind> m_copyKinds;           // the badges that count copies, in the counter's order
    std::unique_ptr<CopyMatchCounter> m_copyCounter;
};
