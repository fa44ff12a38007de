// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVColumnMap.h"

#include <QSet>

namespace {

bool isSpaceOrTab(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit > u' ' && unit < 0x80)
        return false; // printable ASCII: the common case, without the category lookup
    return unit == u'\t' || character.category() == QChar::Separator_Space;
}

} // namespace

CSVColumnMap::CSVColumnMap(const QList<QStringView> &names)
{
    m_positions.reserve(names.size());
    for (qsizetype position = 0; position < names.size(); ++position)
        insert(names.at(position).toString(), position);
}

CSVColumnMap::CSVColumnMap(const QStringList &names)
{
    m_positions.reserve(names.size());
    for (qsizetype position = 0; position < names.size(); ++position)
        insert(names.at(position), position);
}

void CSVColumnMap::insert(const QString &name, qsizetype position)
{
    if (m_positions.contains(name))
        qFatal("CSV header names the column \"%s\" twice", qUtf8Printable(name));
    m_positions.insert(name, position);
}

bool CSVColumnMap::hasDuplicateNames(const QList<QStringView> &names)
{
    QSet<QStringView> seen;
    seen.reserve(names.size());
    for (const QStringView name : names) {
        if (seen.contains(name))
            return true;
        seen.insert(name);
    }
    return false;
}

std::optional<qsizetype> CSVColumnMap::position(const QString &name) const
{
    const auto found = m_positions.constFind(name);
    if (found == m_positions.cend())
        return std::nullopt;
    return *found;
}

std::optional<QStringView> CSVColumnMap::value(const QList<QStringView> &fields, std::optional<qsizetype> position)
{
    if (!position || *position >= fields.size())
        return std::nullopt;
    const QStringView field = trimmed(fields.at(*position));
    if (field.isEmpty())
        return std::nullopt;
    return field;
}

QStringView CSVColumnMap::trimmed(QStringView text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isSpaceOrTab(text[start]))
        ++start;
    while (end > start && isSpaceOrTab(text[end - 1]))
        --end;
    return text.sliced(start, end - start);
}
