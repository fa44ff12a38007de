// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

// Writes the twelve dump files of a tiny catalog into a folder and builds the database
// from them with the real builder, so that catalog tests run against the real schema.
class CatalogFixture
{
public:
    // Every table starts with its header only; tests add the rows they need.
    CatalogFixture();

    void addRows(const QString &table, const QByteArray &rows);
    // Builds `directory`/rebrickable.sqlite from the files; returns its path.
    QString build(const QString &directory) const;

    // Unpacks the full-size dumps beside the checkout into `directory` (once) and builds
    // the database there; empty when the dumps are absent.
    static QString buildFullCatalog(const QString &directory);

private:
    QMap<QString, QByteArray> m_files;
};
