// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "Store/ObjectID.h"

#include "AcquisitionType.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// One physical copy of a set that the user owns. Several copies of one set are several
// objects with the same catalogSet. Enumerated attributes hold raw values; read them
// through StoredVocabulary, which applies each attribute's fallback.
struct BrickSet
{
    ObjectID objectID{EntityType::BrickSet, 0};

    QUuid id;
    std::optional<QDateTime> dateAdded;
    bool isFavorite = false;
    std::optional<QString> notes;
    qint16 rating = 0;
    std::optional<QString> acquisitionType;
    std::optional<Decimal> pricePaid;
    std::optional<QString> priceCurrency;
    std::optional<QDateTime> acquisitionDate;
    std::optional<QString> acquisitionSource;
    std::optional<QString> overallCondition;
    std::optional<QString> boxCondition;
    std::optional<QString> instructionsCondition;
    std::optional<QString> builtStatus;
    std::optional<QString> stickerStatus;
    std::optional<QString> completeness;
    bool isDisposed = false;
    std::optional<QString> disposalType;
    bool isTrashed = false;
    std::optional<QDateTime> trashedDate;
    std::optional<QDateTime> disposalDate;
    std::optional<Decimal> disposalPrice;
    std::optional<QString> disposalCurrency;
    std::optional<QString> disposalNotes;

    std::optional<ObjectID> catalogSet; // to-one CatalogSet, inverse CatalogSet.brickSets

    // Writes the raw value of `type`.
    void setAcquisitionType(AcquisitionType type);

    friend bool operator==(const BrickSet &, const BrickSet &) = default;
};
