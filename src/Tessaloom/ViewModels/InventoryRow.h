// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "Store/ObjectID.h"

#include <QCollatorSortKey>
#include <QDate>
#include <QString>

#include <array>
#include <limits>
#include <optional>

// One copy as the inventory sheet needs it, read once when the copy arrives or changes:
// the keys that choosing and sorting compare (so a keystroke or a header click never
// formats, folds or parses anything) and the values the footer, the copied text and the
// yearly totals add up. The cell texts are formatted on first display and kept.
struct InventoryRow
{
    // Stands for an absent date in the keys: before every real instant.
    static constexpr qint64 distantPast = std::numeric_limits<qint64>::min();

    ObjectID objectID;
    bool isDisposed = false;

    // Keys for choosing.
    QString setNumberLowered; // empty without a catalog set
    QString nameLowered;
    qint64 filterDateMsecs = distantPast; // acquisitionDate, else dateAdded

    // Keys for sorting.
    QString setNumber;
    QString name;
    int year = 0; // 0 without a catalog set
    QString conditionKey; // the raw value, "zzz" when absent
    QString builtKey;
    double paidKey = -1;
    double disposedKey = -1;
    qint64 acquiredMsecs = distantPast;
    qint64 disposedDateMsecs = distantPast;
    qint64 addedMsecs = distantPast;

    // Values for the footer, the copied text and the totals.
    bool hasCatalogSet = false;
    std::optional<Decimal> pricePaid;
    QString priceCurrency; // the stored code, empty when absent
    std::optional<Decimal> disposalPrice;
    QString disposalCurrency;
    QString conditionText; // display names through the stored-value fallback
    QString builtText;
    QString disposalWord; // for a disposed copy without a price: "Sold" … or the localised yes
    QDate acquiredDay; // days in the sheet's time zone, invalid when absent
    QDate disposedDay;
    QDate addedDay;
    QDate filterDay;

    // Filled on demand and kept with the row, which is replaced whenever its copy changes.
    mutable std::optional<QCollatorSortKey> nameSortKey;
    mutable std::optional<std::array<QString, 10>> cells;
};
