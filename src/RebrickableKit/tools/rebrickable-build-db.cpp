// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-build-db [--lenient] CSV_DIR OUTPUT: builds the catalog database from the
// twelve unpacked dumps in CSV_DIR. The build runs at OUTPUT.building and is moved onto
// OUTPUT only when complete, so a failed or interrupted run never leaves a broken OUTPUT.
//
// It prints how many rows of each dump were read, stored and refused. A build in which a
// table isn't clean (rows refused, a header lacking expected columns, the signs of a broken
// quote; see TableImportReport) counts as failed (exit 3, OUTPUT left as it was), since it
// most likely comes from a damaged dump; --lenient accepts it, as the application does.

#include <RebrickableKit/BuildReport.h>
#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/CSVFileError.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>
#include <RebrickableKit/SQLiteError.h>

#include "ToolConsole.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;
using namespace ToolConsole;

namespace {

// Failure lines of this tool start with its name.
int fail(const QString &message)
{
    return ToolConsole::fail(u"rebrickable-build-db"_s, message);
}

void printPhase(const RebrickableDatabaseBuilder::BuildPhase &phase)
{
    using Kind = RebrickableDatabaseBuilder::BuildPhase::Kind;
    switch (phase.kind) {
    case Kind::importing:
        if (phase.tableName.isEmpty())
            out() << "Imported all tables" << Qt::endl;
        else
            out() << "Importing " << phase.tableName << " (" << qRound(phase.progress * 100) << "%)" << Qt::endl;
        break;
    case Kind::creatingIndexes:
        out() << "Creating indexes and full-text search" << Qt::endl;
        break;
    case Kind::vacuuming:
        out() << "Vacuuming" << Qt::endl;
        break;
    case Kind::complete:
        out() << "Built " << QString::number(double(phase.fileSize) / 1e6, 'f', 1) << " MB ("
              << phase.fileSize << " bytes) in " << QString::number(phase.duration, 'f', 2) << " s" << Qt::endl;
        break;
    }
}

// One line per table: its counts, then what is wrong with it, if anything.
void printCounts(const BuildReport &report)
{
    out() << "Rows per table:" << Qt::endl;
    out() << "  " << qSetFieldWidth(20) << Qt::left << "table" << qSetFieldWidth(10) << Qt::right << "read"
          << "stored" << "refused" << qSetFieldWidth(0) << Qt::endl;
    for (const TableImportReport &table : report.tables) {
        out() << "  " << qSetFieldWidth(20) << Qt::left << table.tableName << qSetFieldWidth(10) << Qt::right
              << table.rowsRead << table.rowsStored << table.rowsRefused() << qSetFieldWidth(0);
        if (const QStringList problems = table.problems(); !problems.isEmpty())
            out() << "  " << problems.join(u"; "_s);
        out() << Qt::endl;
    }
}

// Checks what can be checked before a build starts, so that the common mistakes get a
// plain message instead of an error from the middle of the build.
QString problemWithInputs(const QString &csvDirectory, const QString &outputPath)
{
    const QFileInfo directory(csvDirectory);
    if (!directory.exists())
        return u"CSV directory not found: "_s + csvDirectory;
    if (!directory.isDir())
        return u"Not a directory: "_s + csvDirectory;
    QStringList missing;
    const QDir dir(csvDirectory);
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
        if (!QFileInfo(dir.filePath(table.fileName())).isFile())
            missing.append(table.fileName());
    if (!missing.isEmpty())
        return u"Missing CSV file(s) in "_s + csvDirectory + u": "_s + missing.join(u", "_s);
    const QFileInfo output(outputPath);
    const QFileInfo outputDirectory(output.absolutePath());
    if (!outputDirectory.isDir())
        return u"Output directory does not exist: "_s + output.absolutePath();
    if (!outputDirectory.isWritable() || (output.exists() && (output.isDir() || !output.isWritable())))
        return u"Output is not writable: "_s + outputPath;
    return QString();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"rebrickable-build-db"_s);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Builds the catalog database from the twelve unpacked Rebrickable dumps and prints how many rows of each "
        "were read, stored and refused.\n"
        "Exit status: 0 built, 1 failed, 2 wrong arguments, 3 built but rows were refused, a header differs "
        "from the expected columns or a dump shows signs of a broken quote (OUTPUT left as it was; see --lenient)."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"CSV_DIR"_s, u"Folder holding themes.csv, colors.csv, … inventory_minifigs.csv"_s);
    parser.addPositionalArgument(u"OUTPUT"_s, u"The database file to write, such as rebrickable.sqlite"_s);
    const QCommandLineOption lenientOption(
        u"lenient"_s,
        u"Accept a build in which rows were refused, a dump's header differs from the expected columns or a dump "
        "shows signs of a broken quote, and write OUTPUT anyway. Without it such a build fails with exit status 3 "
        "and OUTPUT is left as it was."_s);
    parser.addOption(lenientOption);
    parser.process(application);

    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 2) {
        err() << parser.helpText();
        return exitUsage;
    }
    const QString csvDirectory = arguments.at(0);
    const QString outputPath = QFileInfo(arguments.at(1)).absoluteFilePath();
    if (const QString problem = problemWithInputs(csvDirectory, outputPath); !problem.isEmpty())
        return fail(problem);

    const QString buildingPath = outputPath + u".building"_s;
    BuildReport report;
    try {
        report = RebrickableDatabaseBuilder::build(csvDirectory, buildingPath, printPhase);
    } catch (const SQLiteError &error) {
        QFile::remove(buildingPath);
        return fail(error.description());
    } catch (const CSVFileError &error) {
        QFile::remove(buildingPath);
        return fail(error.description());
    } catch (const CancellationError &error) {
        QFile::remove(buildingPath);
        return fail(error.description());
    }

    printCounts(report);
    if (!report.isClean() && !parser.isSet(lenientOption)) {
        QFile::remove(buildingPath);
        ToolConsole::fail(u"rebrickable-build-db"_s,
                          u"Rows were refused, a header differs from the expected columns or a dump shows signs of "
                          "a broken quote (see above); most likely a dump is damaged. "_s
                          + outputPath + u" was left as it was; --lenient writes it anyway."_s);
        return exitDumpProblems;
    }

    std::error_code renameError;
    std::filesystem::rename(QFile::encodeName(buildingPath).toStdString(),
                            QFile::encodeName(outputPath).toStdString(), renameError);
    if (renameError) {
        QFile::remove(buildingPath);
        return fail(u"Failed to move the database into place at "_s + outputPath + u": "_s
                    + QString::fromStdString(renameError.message()));
    }
    out() << "Wrote " << outputPath << Qt::endl;
    return exitSuccess;
}
