// SPDX-License-Identifier: GPL-3.0-or-later
#include "RebrickableDatabaseBuilder.h"

#include "CancellationError.h"
#include "CatalogSchema.h"
#include "SQLiteConnection.h"
#include "TableImporter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

// Step timings are debug messages, off unless asked for (QT_LOGGING_RULES). Tables that
// aren't clean are warnings.
Q_LOGGING_CATEGORY(lcCatalogBuild, "com.tessaloom.app.catalogDB", QtInfoMsg)

void throwIfCancelled(const std::stop_token &stopToken)
{
    if (stopToken.stop_requested())
        throw CancellationError();
}

void report(const RebrickableDatabaseBuilder::ProgressHandler &progress,
            const RebrickableDatabaseBuilder::BuildPhase &phase)
{
    if (progress)
        progress(phase);
}

} // namespace

RebrickableDatabaseBuilder::BuildPhase RebrickableDatabaseBuilder::BuildPhase::importing(const QString &tableName,
                                                                                         double progress)
{
    BuildPhase phase;
    phase.kind = Kind::importing;
    phase.tableName = tableName;
    phase.progress = progress;
    return phase;
}

RebrickableDatabaseBuilder::BuildPhase RebrickableDatabaseBuilder::BuildPhase::complete(qint64 fileSize, double duration)
{
    BuildPhase phase;
    phase.kind = Kind::complete;
    phase.fileSize = fileSize;
    phase.duration = duration;
    return phase;
}

RebrickableDatabaseBuilder::BuildPhase RebrickableDatabaseBuilder::BuildPhase::creatingIndexes()
{
    BuildPhase phase;
    phase.kind = Kind::creatingIndexes;
    return phase;
}

RebrickableDatabaseBuilder::BuildPhase RebrickableDatabaseBuilder::BuildPhase::vacuuming()
{
    BuildPhase phase;
    phase.kind = Kind::vacuuming;
    return phase;
}

BuildReport RebrickableDatabaseBuilder::build(const QString &csvDirectory, const QString &outputPath,
                                              const ProgressHandler &progress, std::stop_token stopToken)
{
    return run(csvDirectory, outputPath, progress, stopToken, true);
}

void RebrickableDatabaseBuilder::buildWithoutRowAccounting(const QString &csvDirectory, const QString &outputPath,
                                                           const ProgressHandler &progress, std::stop_token stopToken)
{
    run(csvDirectory, outputPath, progress, stopToken, false);
}

BuildReport RebrickableDatabaseBuilder::run(const QString &csvDirectory, const QString &outputPath,
                                            const ProgressHandler &progress, const std::stop_token &stopToken,
                                            bool countRows)
{
    QElapsedTimer buildTimer;
    buildTimer.start();
    QElapsedTimer stepTimer;

    QFile::remove(outputPath); // usually there is nothing to remove
    SQLiteConnection connection(outputPath, SQLiteConnection::OpenMode::create);

    // The file is a cache rebuilt from nothing: a crash mid-build leaves a file nobody
    // opens, so journal and sync are pure cost here.
    connection.execute(u"PRAGMA journal_mode=OFF"_s);
    connection.execute(u"PRAGMA synchronous=OFF"_s);
    connection.execute(u"PRAGMA cache_size=-64000"_s);
    connection.execute(u"PRAGMA temp_store=MEMORY"_s);
    connection.execute(CatalogSchema::schemaScript());

    BuildReport buildReport;
    const QDir directory(csvDirectory);
    const double total = CatalogSchema::totalExpectedRows();
    double done = 0;
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables()) {
        throwIfCancelled(stopToken);
        report(progress, BuildPhase::importing(table.tableName, done / total));
        stepTimer.start();
        const QString csvPath = directory.filePath(table.fileName());
        if (countRows) {
            const TableImportReport tableReport = TableImporter::importTable(connection, table, csvPath);
            if (!tableReport.isClean())
                qCWarning(lcCatalogBuild, "%s", qUtf8Printable(tableReport.summary()));
            buildReport.tables.append(tableReport);
        } else {
            TableImporter::importTableUncounted(connection, table, csvPath);
        }
        qCDebug(lcCatalogBuild, "Imported %s in %lld ms", qUtf8Printable(table.tableName), stepTimer.elapsed());
        done += table.expectedRows;
    }
    report(progress, BuildPhase::importing(QString(), 1.0));
    throwIfCancelled(stopToken);
    report(progress, BuildPhase::creatingIndexes());

    stepTimer.start();
    connection.execute(CatalogSchema::indexScript());
    qCDebug(lcCatalogBuild, "Created indexes in %lld ms", stepTimer.elapsed());
    stepTimer.start();
    connection.execute(CatalogSchema::fullTextScript());
    qCDebug(lcCatalogBuild, "Filled full-text index in %lld ms", stepTimer.elapsed());
    connection.execute(u"PRAGMA user_version = "_s + QString::number(CatalogSchema::userVersion));

    report(progress, BuildPhase::vacuuming());
    stepTimer.start();
    // VACUUM copies the whole database into a temporary one and back. With temporary
    // storage in memory that copy alone would be the size of the catalog (some 150 MB) on
    // top of the page cache; on disk it costs a little time and no memory. The setting
    // belongs to the connection, not to the file.
    connection.execute(u"PRAGMA temp_store=FILE"_s);
    connection.execute(u"VACUUM"_s);
    qCDebug(lcCatalogBuild, "Vacuumed in %lld ms", stepTimer.elapsed());

    const double duration = double(buildTimer.nsecsElapsed()) / 1e9;
    const QFileInfo output(outputPath);
    const qint64 fileSize = output.exists() ? output.size() : 0;
    report(progress, BuildPhase::complete(fileSize, duration));
    return buildReport;
}

} // namespace RebrickableKit
