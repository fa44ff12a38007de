// SPDX-License-Identifier: GPL-3.0-or-later
#include "ShellBaseline.h"

#include <RebrickableKit/CatalogSchema.h>

#include <QDir>
#include <QFile>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

void ShellBaseline::writeScript(const QString &scriptPath, const QString &csvDirectory)
{
    QFile file(scriptPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("Cannot write %s", qUtf8Printable(scriptPath));
    QTextStream script(&file);
    script << "PRAGMA journal_mode=OFF;\n"
              "PRAGMA synchronous=OFF;\n"
              "PRAGMA cache_size=-64000;\n"
              "PRAGMA temp_store=MEMORY;\n";
    script << CatalogSchema::schemaScript();
    const QDir directory(csvDirectory);
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
        script << ".import --csv --skip 1 '" << directory.filePath(table.fileName()) << "' " << table.tableName << "\n";
    script << CatalogSchema::indexScript();
    script << CatalogSchema::fullTextScript();
    script << "PRAGMA user_version = " << CatalogSchema::userVersion << ";\n";
    script << "VACUUM;\n";
}
