// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVRowReader.h"

CSVRowReader::Positions CSVRowReader::positions(const CSVColumnMap &header, const QStringList &names)
{
    Q_ASSERT(names.size() <= csvCollectionColumnCount);
    Positions positions;
    for (qsizetype column = 0; column < names.size(); ++column)
        positions[std::size_t(column)] = header.position(names.at(column));
    return positions;
}

std::optional<QString> CSVRowReader::text(CSVColumn column) const
{
    const std::optional<QStringView> field = value(column);
    return field ? std::optional<QString>(field->toString()) : std::nullopt;
}

std::optional<qint64> CSVRowReader::integer(CSVColumn column) const
{
    const std::optional<QStringView> field = value(column);
    return field ? CSVValueFormat::integer(*field) : std::nullopt;
}

std::optional<QDateTime> CSVRowReader::date(CSVColumn column) const
{
    const std::optional<QStringView> field = value(column);
    return field ? CSVValueFormat::date(*field) : std::nullopt;
}

std::optional<Decimal> CSVRowReader::decimal(CSVColumn column) const
{
    const std::optional<QStringView> field = value(column);
    return field ? CSVValueFormat::decimal(*field) : std::nullopt;
}

bool CSVRowReader::boolean(CSVColumn column) const
{
    const std::optional<QStringView> field = value(column);
    return field && CSVValueFormat::boolean(*field);
}
