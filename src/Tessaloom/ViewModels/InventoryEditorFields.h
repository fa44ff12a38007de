// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AcquisitionType.h"
#include "BoxCondition.h"
#include "BuiltStatus.h"
#include "Decimal.h"
#include "DisposalType.h"
#include "InstructionsCondition.h"
#include "OverallCondition.h"
#include "SetCompleteness.h"
#include "StickerStatus.h"
#include "Store/BrickSet.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

// What the copy editor's form holds: one field per control, as the user sees it. Prices
// are the text typed, not numbers, so an unreadable price stays in its field as typed;
// the store only ever receives what that text reads as.
struct InventoryEditorFields
{
    QString pricePaidText;
    QString priceCurrency;
    QString disposalPriceText;
    QString disposalCurrency;
    AcquisitionType acquisitionType = AcquisitionType::unknown;
    std::optional<QDateTime> acquisitionDate;
    QString source;
    OverallCondition overallCondition = OverallCondition::used;
    SetCompleteness completeness = SetCompleteness::unknown;
    BoxCondition boxCondition = BoxCondition::good;
    InstructionsCondition instructionsCondition = InstructionsCondition::good;
    BuiltStatus builtStatus = BuiltStatus::built;
    StickerStatus stickerStatus = StickerStatus::noStickers;
    bool isDisposed = false;
    DisposalType disposalType = DisposalType::sold;
    std::optional<QDateTime> disposalDate;
    QString disposalNotes;
    QString notes;

    // The form filled from `copy`: enumerated attributes through their reading fallbacks,
    // a price as its plain text ("" when absent), an absent currency as `defaultCurrency`,
    // absent texts as "", dates as they are.
    static InventoryEditorFields fromCopy(const BrickSet &copy, const QString &defaultCurrency);

    // Writes the form into `copy`. The acquisition type and the six conditions are always
    // written, so the first edit of any field also stores the fallbacks the form showed.
    // Empty texts and unreadable prices become absent. A copy that is not disposed loses
    // its five disposal attributes, while the form keeps them until it is filled again.
    void writeTo(BrickSet &copy) const;

    // The values a save waits for, in a fixed order: when this list changes, the copy
    // needs writing. Dates are in ISO form, "" when absent.
    QStringList watchedValues() const;

    // A price as the form reads it: optional blanks, then the longest leading plain
    // number ("12.50 EUR" reads 12.50, ".5" reads 0.5), always with "." as the decimal
    // point whatever the user's locale. Text that does not start with a number, the empty
    // text included, reads as no price.
    static std::optional<Decimal> readPrice(QStringView text);

    friend bool operator==(const InventoryEditorFields &, const InventoryEditorFields &) = default;
};
