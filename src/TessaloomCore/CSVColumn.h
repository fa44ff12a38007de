// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The columns of the collection CSV file in file order: the 29 of one copy's record
// (CSVCodec), then the two that the collection's export adds behind them, the set's
// retired date and whether the row is an owned copy or a wishlist item. A value indexes
// the list of column names of either form.
enum class CSVColumn {
    id,
    setNumber,
    setName,
    year,
    theme,
    pieceCount,
    dateAdded,
    isFavorite,
    rating,
    notes,
    acquisitionType,
    acquisitionDate,
    acquisitionSource,
    pricePaid,
    priceCurrency,
    overallCondition,
    boxCondition,
    instructionsCondition,
    builtStatus,
    stickerStatus,
    completeness,
    isDisposed,
    disposalType,
    disposalDate,
    disposalPrice,
    disposalCurrency,
    disposalNotes,
    isTrashed,
    trashedDate,
    retiredDate,
    entryType,
};

// The record's columns, CSVCodec's file.
inline constexpr int csvRecordColumnCount = int(CSVColumn::trashedDate) + 1;
// The record's and the export's two, the collection's file.
inline constexpr int csvCollectionColumnCount = int(CSVColumn::entryType) + 1;
