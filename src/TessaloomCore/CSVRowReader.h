// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CSVColumn.h"
#include "CSVColumnMap.h"
#include "CSVValueFormat.h"
#include "Decimal.h"
#include "Vocabulary.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <limits>
#include <optional>

// One row of a collection CSV file read by column, through the positions its header gave
// the column names. A value is absent when the header lacks the column, the row is too
// short or the field is empty (after trimming); a field that does not read as the type
// asked for is absent too. The codec and the collection's import read rows alike this way.
class CSVRowReader
{
public:
    using Positions = std::array<std::optional<qsizetype>, csvCollectionColumnCount>;

    // Where each of `names` (the column names in CSVColumn order, 29 or 31 of them) stands
    // in `header`; columns beyond `names` are absent.
    static Positions positions(const CSVColumnMap &header, const QStringList &names);

    // Both are referred to, not copied: they must outlive the reader.
    CSVRowReader(const Positions &positions, const QList<QStringView> &fields)
        : m_positions(positions)
        , m_fields(fields)
    {
    }

    std::optional<QStringView> value(CSVColumn column) const
    {
        return CSVColumnMap::value(m_fields, m_positions[std::size_t(column)]);
    }
    std::optional<QString> text(CSVColumn column) const;
    std::optional<qint64> integer(CSVColumn column) const;
    std::optional<QDateTime> date(CSVColumn column) const;
    std::optional<Decimal> decimal(CSVColumn column) const;
    bool boolean(CSVColumn column) const;

    // The integer when it fits T; absent otherwise.
    template <typename T>
    std::optional<T> integerAs(CSVColumn column) const
    {
        const std::optional<qint64> number = integer(column);
        if (!number || *number < std::numeric_limits<T>::min() || *number > std::numeric_limits<T>::max())
            return std::nullopt;
        return T(*number);
    }

    // The case whose raw value the field holds; a text that names no case is absent.
    template <ClosedVocabulary E>
    std::optional<E> vocabulary(CSVColumn column) const
    {
        const std::optional<QStringView> field = value(column);
        return field ? Vocabulary::fromRawValue<E>(*field) : std::nullopt;
    }

private:
    const Positions &m_positions;
    const QList<QStringView> &m_fields;
};
