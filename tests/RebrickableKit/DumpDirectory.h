// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// A folder of the twelve dumps for one test: each starts as its real header line alone,
// and a test overwrites the files it cares about.
class DumpDirectory
{
public:
    DumpDirectory();

    QString path() const { return m_directory.path(); }
    QString filePath(const QString &fileName) const { return m_directory.filePath(fileName); }

    // Replaces a dump ("sets" for sets.csv) with exactly these bytes.
    void write(const QString &name, const QByteArray &bytes);
    // Replaces a dump with its header and these lines, each ended by LF.
    void writeRows(const QString &name, const QList<QByteArray> &lines);
    // A little of everything: enough rows in each file for the read interface's queries.
    void writeSmallCatalog();

    static QByteArray header(const QString &name);

private:
    QTemporaryDir m_directory;
};
