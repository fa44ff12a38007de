// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

// The header line of a collection CSV file as a map from column name to position, and the
// one way a row's field is read through it. Names are taken exactly as they stand: no
// trimming and no case folding, so a byte-order mark before "id" makes that column
// "\uFEFFid" and the file has no "id" column.
class CSVColumnMap
{
public:
    // A header naming one column twice is a fault that stops the process: which of the two
    // columns a row's value came from would be a guess. hasDuplicateNames() lets a caller
    // that must not stop find out first.
    explicit CSVColumnMap(const QList<QStringView> &names);
    explicit CSVColumnMap(const QStringList &names);

    static bool hasDuplicateNames(const QList<QStringView> &names);

    bool contains(const QString &name) const { return m_positions.contains(name); }
    // The position of the column `name`, or nothing when the header does not have it.
    std::optional<qsizetype> position(const QString &name) const;

    // The value of the column at `position` in a row's `fields`: absent when the header has
    // no such column or the row is too short for it; otherwise the field trimmed of spaces
    // and tabs, and absent when that leaves nothing.
    static std::optional<QStringView> value(const QList<QStringView> &fields, std::optional<qsizetype> position);
    // The same by name: one map access.
    std::optional<QStringView> value(const QList<QStringView> &fields, const QString &name) const
    {
        return value(fields, position(name));
    }

    // `text` without the spaces and tabs at either end. Spaces are every Unicode space
    // separator (U+0020, the no-break space U+00A0, U+3000 and the others), as a
    // spreadsheet may leave any of them around a value.
    static QStringView trimmed(QStringView text);

private:
    void insert(const QString &name, qsizetype position);

    QHash<QString, qsizetype> m_positions;
};
