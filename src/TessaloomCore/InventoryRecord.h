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

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// One owned copy as a flat row of the collection CSV file, independent of the store. The
// fields stand in the order of the file's columns (CSVCodec::columnNames()). Absent and
// empty are one thing in the file: an empty text is written as an empty field and reads
// back as absent. Dates are instants; the file keeps them to the whole second.
struct InventoryRecord
{
    QUuid id;
    QString setNumber;
    std::optional<QString> setName;
    std::optional<qint64> year;
    std::optional<QString> theme;
    std::optional<qint64> pieceCount;
    QDateTime dateAdded;
    bool isFavorite = false;
    qint64 rating = 0;
    std::optional<QString> notes;
    std::optional<AcquisitionType> acquisitionType;
    std::optional<QDateTime> acquisitionDate;
    std::optional<QString> acquisitionSource;
    std::optional<Decimal> pricePaid;
    std::optional<QString> priceCurrency;
    std::optional<OverallCondition> overallCondition;
    std::optional<BoxCondition> boxCondition;
    std::optional<InstructionsCondition> instructionsCondition;
    std::optional<BuiltStatus> builtStatus;
    std::optional<StickerStatus> stickerStatus;
    std::optional<SetCompleteness> completeness;
    bool isDisposed = false;
    std::optional<DisposalType> disposalType;
    std::optional<QDateTime> disposalDate;
    std::optional<Decimal> disposalPrice;
    std::optional<QString> disposalCurrency;
    std::optional<QString> disposalNotes;
    bool isTrashed = false;
    std::optional<QDateTime> trashedDate;

    friend bool operator==(const InventoryRecord &, const InventoryRecord &) = default;
};
