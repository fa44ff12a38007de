// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

// The twelve dumps as the download host publishes them, small enough to make in a test:
// NAME.csv.gz with the dump's own header line, a known number of made-up data rows and the
// CRLF line ends of the published files. The fields are random, so gzip hardly shrinks
// them and the larger files (sets, parts, inventory_parts) take a throttled server many
// chunks to send.
class SmallDumpFiles
{
public:
    // Writes the twelve files into `folder`, which must exist.
    explicit SmallDumpFiles(const QString &folder);

    // False when a file could not be packed or written.
    bool isValid() const { return m_valid; }
    QString folder() const { return m_folder; }
    // folder/NAME.csv.gz
    QString path(const QString &name) const;
    // Data rows, the header line not counted.
    qint64 rows(const QString &name) const { return m_rows.value(name, -1); }
    // What the gzip file unpacks to, byte for byte.
    QByteArray csv(const QString &name) const { return m_csv.value(name); }

private:
    QString m_folder;
    QHash<QString, qint64> m_rows;
    QHash<QString, QByteArray> m_csv;
    bool m_valid = true;
};
