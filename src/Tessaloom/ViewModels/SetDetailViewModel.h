// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "Store/BrickSet.h"
#include "Store/CachedInstructionURL.h"
#include "Store/CatalogSet.h"
#include "Store/CatalogSetAccessors.h"
#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <optional>

class ManagedObjectContext;
struct StoreChanges;

// What the detail column of one owned copy shows, without widgets: the copy and its
// catalog set as the view context holds them now, the open tab, and the refresh of the
// set's catalog facts and prices from outside services.
//
// The copy is read again after every commit that touches it, its catalog set, the set's
// other copies, its price guides or its booklets, whichever context made the commit;
// contentChanged() then tells the screens to redraw. Main thread only.
class SetDetailViewModel : public QObject
{
    Q_OBJECT

public:
    // The tabs of the detail, in the order they stand.
    enum class DetailTab { overview, inventory, parts };
    static QList<DetailTab> allTabs() { return {DetailTab::overview, DetailTab::inventory, DetailTab::parts}; }
    // "Overview", "Inventory", "Parts": the stored spelling of a tab.
    static QString rawValue(DetailTab tab);
    // The tab's title in the user's language.
    static QString displayName(DetailTab tab);
    static QString iconName(DetailTab tab);

    // Copies the catalog's facts of a set number into the store and gives the
    // CatalogSet's identifier (CatalogSyncService::shared().syncSet in the program).
    using CatalogSyncStep = std::function<QCoro::Task<ObjectID>(QString setNumber)>;
    // Fetches the prices of a synced set from the pricing services and stores them.
    using PriceSyncStep = std::function<QCoro::Task<>(QString setNumber, ObjectID catalogSet)>;

    struct MarketValue
    {
        Decimal amount;
        QString currency; // empty when the guide names none
    };

    struct InventorySummary
    {
        qint64 inStock = 0;  // copies not disposed
        qint64 disposed = 0; // disposed copies
        bool isEmpty() const { return inStock == 0 && disposed == 0; }
    };

    SetDetailViewModel(const BrickSet &brickSet, ManagedObjectContext &viewContext, QObject *parent = nullptr);
    ~SetDetailViewModel() override;

    void setCatalogSyncStep(CatalogSyncStep step);
    void setPriceSyncStep(PriceSyncStep step);

    ManagedObjectContext &viewContext() const { return m_viewContext; }
    BrickSet brickSet() const { return m_brickSet; }
    std::optional<CatalogSet> catalogSet() const { return m_catalogSet; }

    DetailTab selectedTab() const { return m_selectedTab; }
    void setSelectedTab(DetailTab tab);
    // Kept for the screen; nothing reads it yet.
    bool isEditing() const { return m_isEditing; }
    void setEditing(bool editing) { m_isEditing = editing; }
    bool isSyncing() const { return m_isSyncing; }
    std::optional<QString> syncError() const { return m_syncError; }
    int refreshToken() const { return m_refreshToken; }
    // Raises refreshToken by one, so that the screens redraw.
    void increaseRefreshToken();

    // ---- What the overview shows ----
    // The catalog set's name, else the set number, else "Unknown Set".
    QString title() const;
    // The preferred price guide's average with its currency, or nothing.
    std::optional<MarketValue> marketValue() const;
    // The first growth rate of the latest "new" guide, in percent points, or nothing.
    std::optional<Decimal> growthPercent() const;
    // "+0.0%", "-3.5%": a growth figure as the overview prints it.
    static QString growthText(const Decimal &percent, const QLocale &locale = QLocale());
    QList<CatalogSetAccessors::ProviderGuides> priceGuidesByProvider() const;
    // Over the copies of the catalog set that are not in the trash.
    InventorySummary inventorySummary() const;
    // The stored booklets, without the "none" marker.
    QList<CachedInstructionURL> sortedInstructions() const;
    // Whether the set has any stored booklet row, the "none" marker included.
    bool hasStoredInstructionRows() const;

    // Flips the copy's favourite flag and saves; a failed save is dropped.
    void toggleFavorite();

    // Syncs the set's catalog facts and then its prices, one refresh at a time; a failure
    // lands in syncError and changes nothing else. Does nothing while a refresh runs or
    // when the copy has no catalog set. Only the refresh button starts it.
    QCoro::Task<> refresh();

    // Reads the copy and its catalog set again from the view context.
    void reload();

Q_SIGNALS:
    void selectedTabChanged(SetDetailViewModel::DetailTab tab);
    void syncingChanged(bool isSyncing);
    void syncErrorChanged();
    void refreshTokenChanged(int token);
    // The copy, its catalog set or something shown with them changed.
    void contentChanged();

private:
    static QCoro::Task<> runRefresh(QPointer<SetDetailViewModel> self, CatalogSyncStep catalogSync,
                                    PriceSyncStep priceSync, QString setNumber);
    void finishRefresh(const std::optional<ObjectID> &catalogSet, const std::optional<QString> &error);
    void objectsChanged(const StoreChanges &changes);
    QList<CachedPriceGuide> guides() const;

    ManagedObjectContext &m_viewContext;
    CatalogSyncStep m_catalogSync;
    PriceSyncStep m_priceSync;
    BrickSet m_brickSet;
    std::optional<CatalogSet> m_catalogSet;
    DetailTab m_selectedTab = DetailTab::overview;
    bool m_isEditing = false;
    bool m_isSyncing = false;
    std::optional<QString> m_syncError;
    int m_refreshToken = 0;
};
