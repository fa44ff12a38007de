// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/WishlistItem.h"
#include "ViewModels/SetListTableModel.h"
#include "ViewModels/WishlistSetResolver.h"

#include <QHash>

#include <memory>
#include <optional>

class ManagedObjectContext;
class RebrickableCatalog;
class StoreObserver;
struct StoreChanges;

// The wishlist as rows for its grid and table: every entry, newest first, each as the
// catalog set it stands for. The list is live: it is read again after every commit that
// touches a wishlist entry, whichever context made it.
//
// The rows show at once from the entries' own facts, which were copied from the catalog
// when they were added. The catalog is asked on the pool for the numbers it has not been
// asked yet, and its answers replace those facts as they land; they are kept, so a later
// change of the list asks only for new numbers. A set the catalog does not know keeps the
// entry's facts. A new shared catalog (after a build) is asked for every number again.
//
// It answers the roles of CatalogSetListModel, so the catalog's grid cells draw it.
class WishlistListModel : public SetListTableModel
{
    Q_OBJECT

public:
    enum Column { SetNumberColumn, NameColumn, ThemeColumn, YearColumn, PiecesColumn, ColumnCount };
    Q_ENUM(Column)

    // Beyond CatalogSetListModel's roles.
    enum Role {
        ItemIDRole = Qt::UserRole + 64, // ObjectID of the WishlistItem
    };
    Q_ENUM(Role)

    explicit WishlistListModel(ManagedObjectContext &viewContext, QObject *parent = nullptr);
    ~WishlistListModel() override;

    int count() const { return int(m_items.size()); }
    const QList<WishlistItem> &items() const { return m_items; }
    const WishlistItem &itemAt(int row) const { return m_items.at(row); }
    const CatalogSetResult &resultAt(int row) const { return m_rows.at(row).set; }
    QList<CatalogSetResult> results() const;
    QString themeNameAt(int row) const { return m_rows.at(row).themeName; }
    // The first row of set number `setNumber`, or -1.
    int rowOf(const QString &setNumber) const;
    // The row of the entry `item`, or -1.
    int rowOf(const ObjectID &item) const;

    // Whether the catalog is being asked for numbers of the list.
    bool isLookingUp() const { return m_lookUpsRunning > 0; }

    // Reads the entries again and asks the catalog for the numbers it has not answered.
    void refetch();
    // Deletes the entry and saves; a failed save is dropped (and logged).
    void removeItem(const ObjectID &item);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    // After every refetch.
    void refetched();
    // The catalog's answers landed and the rows show them.
    void catalogFactsArrived();

private:
    struct Row
    {
        CatalogSetResult set;
        QString themeName;
    };
    struct LookUp;

    void onObjectsDidChange(const StoreChanges &changes);
    Row rowFor(const WishlistItem &item) const;
    // When `items` is the current list with some entries taken out, removes their rows
    // and answers true; else changes nothing.
    bool removeRowsLeaving(const QList<WishlistItem> &items);
    void lookUpMissingNumbers();
    void lookUpLanded(const LookUp &answer);

    ManagedObjectContext &m_viewContext;
    StoreObserver *m_observer;
    QList<WishlistItem> m_items;
    QList<Row> m_rows;
    // The catalog that the answers come from; they are dropped when another one is shared.
    std::weak_ptr<RebrickableCatalog> m_answeringCatalog;
    WishlistSetResolver::Answers m_answers;
    int m_lookUpsRunning = 0;
};
