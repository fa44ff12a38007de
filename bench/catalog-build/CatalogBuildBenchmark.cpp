// SPDX-License-Identifier: GPL-3.0-or-later
// catalog-build-bench: builds the catalog database from the full dumps with
// RebrickableDatabaseBuilder and, in the same run, with the sqlite3 shell as a baseline,
// and with the builder once more without its row accounting, to tell what the accounting
// costs. Prints one JSON object per line: one per phase of each builder run, one per run
// of each side, and a summary with the ratios against the targets.
//
// Each build runs in a fresh child process (this program again, with --run-builder), so
// that its peak memory is its own and not the benchmark's.

#include "ChildProcess.h"
#include "ShellBaseline.h"

#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

namespace {

// "builder", or "builder-uncounted" for the build without row accounting.
QString &builderVariant()
{
    static QString variant = u"builder"_s;
    return variant;
}

void printJson(const QJsonObject &object)
{
    std::fputs(QJsonDocument(object).toJson(QJsonDocument::Compact).constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

double cpuSecondsSoFar()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double peakRssMegabytes()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// The split of the step that runs the index and full-text scripts comes from the
// builder's debug log, which times each script on its own.
void captureStepLog(QtMsgType, const QMessageLogContext &, const QString &message)
{
    static const QRegularExpression step(u"^(Created indexes|Filled full-text index) in (\\d+) ms$"_s);
    const QRegularExpressionMatch match = step.match(message);
    if (!match.hasMatch())
        return;
    const QString phase = match.captured(1).startsWith(u"Created"_s) ? u"indexes"_s : u"full_text"_s;
    printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, builderVariant()}, {u"phase"_s, phase},
               {u"seconds"_s, match.captured(2).toDouble() / 1000.0}, {u"peak_rss_mb_so_far"_s, peakRssMegabytes()}});
}

// Builds in this process and writes the wall and processor seconds of the import phase (all
// twelve tables, where the row accounting does its work) to resultPath, for the parent.
int runBuilder(const QString &csvDirectory, const QString &outputPath, bool countRows, const QString &resultPath)
{
    builderVariant() = countRows ? u"builder"_s : u"builder-uncounted"_s;
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.catalogDB.debug=true"_s);
    qInstallMessageHandler(captureStepLog);

    QElapsedTimer timer;
    timer.start();
    QString currentPhase;
    qint64 phaseStart = 0;
    qint64 importStart = 0;
    double importSeconds = 0;
    double importCpuStart = 0;
    double importCpuSeconds = 0;
    auto endPhase = [&](const QString &next) {
        const qint64 now = timer.nsecsElapsed();
        if (!currentPhase.isEmpty())
            printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, builderVariant()}, {u"phase"_s, currentPhase},
                       {u"seconds"_s, double(now - phaseStart) / 1e9}, {u"peak_rss_mb_so_far"_s, peakRssMegabytes()}});
        currentPhase = next;
        phaseStart = now;
    };
    using Kind = RebrickableDatabaseBuilder::BuildPhase::Kind;
    const auto onPhase = [&](const RebrickableDatabaseBuilder::BuildPhase &phase) {
        switch (phase.kind) {
        case Kind::importing:
            if (phase.tableName.isEmpty()) {
                importSeconds = double(timer.nsecsElapsed() - importStart) / 1e9;
                importCpuSeconds = cpuSecondsSoFar() - importCpuStart;
            } else if (phase.progress == 0) {
                importStart = timer.nsecsElapsed();
                importCpuStart = cpuSecondsSoFar();
            }
            endPhase(phase.tableName.isEmpty() ? QString() : u"import:"_s + phase.tableName);
            break;
        case Kind::creatingIndexes:
            endPhase(u"indexes+full_text"_s);
            break;
        case Kind::vacuuming:
            endPhase(u"vacuum"_s);
            break;
        case Kind::complete:
            endPhase(QString());
            break;
        }
    };
    if (countRows)
        RebrickableDatabaseBuilder::build(csvDirectory, outputPath, onPhase);
    else
        RebrickableDatabaseBuilder::buildWithoutRowAccounting(csvDirectory, outputPath, onPhase);
    printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, builderVariant()}, {u"phase"_s, u"import_total"_s},
               {u"seconds"_s, importSeconds}, {u"cpu_seconds"_s, importCpuSeconds}});
    QFile result(resultPath);
    const QByteArray seconds = QByteArray::number(importSeconds, 'f', 6) + ' ' + QByteArray::number(importCpuSeconds, 'f', 6);
    if (!resultPath.isEmpty() && (!result.open(QIODevice::WriteOnly) || result.write(seconds) < 0))
        return 1;
    return 0;
}

// One build in a child process of its own; the import seconds come back through a file.
struct BuilderRun {
    ChildProcess::Result process;
    double importSeconds = 0;
    double importCpuSeconds = 0;
    qint64 fileBytes = 0;
};

BuilderRun runBuilderChild(const QString &csvDirectory, const QString &workDirectory, bool countRows)
{
    const QString outputPath = QDir(workDirectory).filePath(u"builder.sqlite"_s);
    const QString resultPath = QDir(workDirectory).filePath(u"builder-import-seconds.txt"_s);
    QFile::remove(resultPath);
    QStringList arguments{u"--run-builder"_s, csvDirectory, outputPath, resultPath};
    if (!countRows)
        arguments.prepend(u"--without-row-accounting"_s);
    BuilderRun run;
    run.process = ChildProcess::run(QCoreApplication::applicationFilePath(), arguments);
    run.fileBytes = QFileInfo(outputPath).size();
    QFile::remove(outputPath);
    QFile result(resultPath);
    if (result.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> seconds = result.readAll().split(' ');
        run.importSeconds = seconds.value(0).toDouble();
        run.importCpuSeconds = seconds.value(1).toDouble();
    }
    return run;
}

// Unpacks the .csv.gz dumps once, outside any measurement.
bool unpackDumps(const QString &sourceDirectory, const QString &targetDirectory)
{
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables()) {
        const QString source = QDir(sourceDirectory).filePath(table.fileName() + u".gz"_s);
        gzFile input = gzopen(QFile::encodeName(source).constData(), "rb");
        if (!input)
            return false;
        QFile output(QDir(targetDirectory).filePath(table.fileName()));
        if (!output.open(QIODevice::WriteOnly)) {
            gzclose(input);
            return false;
        }
        QByteArray buffer(1 << 18, Qt::Uninitialized);
        int count = 0;
        while ((count = gzread(input, buffer.data(), unsigned(buffer.size()))) > 0)
            output.write(buffer.constData(), count);
        gzclose(input);
        if (count < 0)
            return false;
    }
    return true;
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

double minimum(const QList<double> &values)
{
    return values.isEmpty() ? 0 : *std::min_element(values.cbegin(), values.cend());
}

// The figures of the builder runs of one variant.
struct BuilderSeries {
    QList<double> wall, cpu, importWall, importCpu, rss;
    qint64 fileBytes = 0;

    void add(const BuilderRun &run)
    {
        wall.append(run.process.wallSeconds);
        cpu.append(run.process.cpuSeconds);
        importWall.append(run.importSeconds);
        importCpu.append(run.importCpuSeconds);
        rss.append(run.process.peakRssMegabytes);
        fileBytes = run.fileBytes;
    }
};

// What the row accounting adds, as shares of the build without it. On a shared machine one
// build's time swings by far more than the 2 % looked for, so besides the medians there
// are the ratios of each back-to-back pair (whose load is much alike) and of the fastest
// run of each side. The import phase's extra processor seconds, against the whole build's,
// is where all of the accounting runs, without the noise of the index and VACUUM steps.
void printAccountingSummary(int runs, const BuilderSeries &counted, const BuilderSeries &uncounted)
{
    QList<double> pairedWall, pairedCpu, pairedImportCpu;
    for (qsizetype index = 0; index < counted.wall.size() && index < uncounted.wall.size(); ++index) {
        pairedWall.append(counted.wall.at(index) / uncounted.wall.at(index) - 1);
        pairedCpu.append(counted.cpu.at(index) / uncounted.cpu.at(index) - 1);
        pairedImportCpu.append((counted.importCpu.at(index) - uncounted.importCpu.at(index)) / uncounted.cpu.at(index));
    }
    const double pairedCpuCost = median(pairedCpu);
    const double pairedImportCpuCost = median(pairedImportCpu);
    printJson({{u"bench"_s, u"catalog-build"_s}, {u"summary"_s, true}, {u"measure"_s, u"row-accounting"_s},
               {u"runs"_s, runs},
               {u"builder_wall_s_median"_s, median(counted.wall)}, {u"uncounted_wall_s_median"_s, median(uncounted.wall)},
               {u"builder_cpu_s_median"_s, median(counted.cpu)}, {u"uncounted_cpu_s_median"_s, median(uncounted.cpu)},
               {u"builder_import_cpu_s_median"_s, median(counted.importCpu)},
               {u"uncounted_import_cpu_s_median"_s, median(uncounted.importCpu)},
               {u"builder_wall_s_min"_s, minimum(counted.wall)}, {u"uncounted_wall_s_min"_s, minimum(uncounted.wall)},
               {u"builder_cpu_s_min"_s, minimum(counted.cpu)}, {u"uncounted_cpu_s_min"_s, minimum(uncounted.cpu)},
               {u"cost_wall_median_of_pairs"_s, median(pairedWall)},
               {u"cost_cpu_median_of_pairs"_s, pairedCpuCost},
               {u"cost_import_cpu_median_of_pairs"_s, pairedImportCpuCost},
               {u"cost_wall_of_minima"_s, minimum(counted.wall) / minimum(uncounted.wall) - 1},
               {u"cost_cpu_of_minima"_s, minimum(counted.cpu) / minimum(uncounted.cpu) - 1},
               {u"same_file_bytes"_s, counted.fileBytes == uncounted.fileBytes},
               {u"cost_target"_s, 0.02},
               {u"target_met"_s, pairedCpuCost < 0.02 && pairedImportCpuCost < 0.02}});
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Catalog build benchmark against the sqlite3 shell, and of the row accounting"_s);
    parser.addHelpOption();
    const QCommandLineOption dumpsOption(u"dumps"_s, u"Folder of the .csv.gz dumps"_s, u"dir"_s,
                                         QStringLiteral(TESSALOOM_SHARED_DATA_DIR "/rebrickable-2026-04-02"));
    const QCommandLineOption csvOption(u"csv-dir"_s, u"Folder of already unpacked .csv dumps (skips unpacking)"_s, u"dir"_s);
    const QCommandLineOption runsOption(u"runs"_s, u"Runs of each side, alternating"_s, u"n"_s, u"3"_s);
    const QCommandLineOption shellOption(u"sqlite3"_s, u"The sqlite3 shell to use"_s, u"path"_s, u"sqlite3"_s);
    const QCommandLineOption accountingOnlyOption(
        u"accounting-only"_s, u"Only the builder with and without row accounting; no sqlite3 shell runs"_s);
    const QCommandLineOption builderOption(u"run-builder"_s,
                                           u"(internal) build CSV_DIR into OUTPUT, write the import seconds to RESULT"_s);
    const QCommandLineOption uncountedOption(u"without-row-accounting"_s,
                                             u"(internal) with --run-builder: build without the row accounting"_s);
    parser.addOptions({dumpsOption, csvOption, runsOption, shellOption, accountingOnlyOption, builderOption,
                       uncountedOption});
    parser.process(application);

    if (parser.isSet(builderOption)) {
        const QStringList arguments = parser.positionalArguments();
        if (arguments.size() != 3)
            return 2;
        return runBuilder(arguments.at(0), arguments.at(1), !parser.isSet(uncountedOption), arguments.at(2));
    }

    QTemporaryDir work;
    QString csvDirectory = parser.value(csvOption);
    if (csvDirectory.isEmpty()) {
        csvDirectory = work.filePath(u"csv"_s);
        QDir().mkpath(csvDirectory);
        if (!unpackDumps(parser.value(dumpsOption), csvDirectory)) {
            std::fprintf(stderr, "Cannot unpack the dumps from %s\n", qUtf8Printable(parser.value(dumpsOption)));
            return 1;
        }
    }
    const QString scriptPath = work.filePath(u"baseline.sql"_s);
    ShellBaseline::writeScript(scriptPath, csvDirectory);

    const bool withShell = !parser.isSet(accountingOnlyOption);
    const int runs = std::max(1, parser.value(runsOption).toInt());
    QList<double> baselineSeconds, baselineRss;
    qint64 baselineBytes = 0;
    BuilderSeries counted, uncounted;
    for (int run = 1; run <= runs; ++run) {
        if (withShell) {
            const QString baselinePath = work.filePath(u"baseline.sqlite"_s);
            QFile::remove(baselinePath);
            const ChildProcess::Result baseline =
                ChildProcess::run(parser.value(shellOption), {baselinePath}, scriptPath, true);
            baselineBytes = QFileInfo(baselinePath).size();
            QFile::remove(baselinePath);
            printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, u"sqlite3-shell"_s}, {u"run"_s, run},
                       {u"exit"_s, baseline.exitCode}, {u"wall_s"_s, baseline.wallSeconds},
                       {u"peak_rss_mb"_s, baseline.peakRssMegabytes}, {u"file_bytes"_s, baselineBytes}});
            baselineSeconds.append(baseline.wallSeconds);
            baselineRss.append(baseline.peakRssMegabytes);
        }

        // The builder with and without row accounting, back to back, taking turns at going
        // first so that neither always finds the machine in the same state.
        for (const bool countRows : run % 2 ? QList<bool>{true, false} : QList<bool>{false, true}) {
            const BuilderRun builder = runBuilderChild(csvDirectory, work.path(), countRows);
            printJson({{u"bench"_s, u"catalog-build"_s},
                       {u"variant"_s, countRows ? u"builder"_s : u"builder-uncounted"_s}, {u"run"_s, run},
                       {u"exit"_s, builder.process.exitCode}, {u"wall_s"_s, builder.process.wallSeconds},
                       {u"cpu_s"_s, builder.process.cpuSeconds}, {u"import_s"_s, builder.importSeconds},
                       {u"import_cpu_s"_s, builder.importCpuSeconds}, {u"peak_rss_mb"_s, builder.process.peakRssMegabytes},
                       {u"file_bytes"_s, builder.fileBytes}});
            (countRows ? counted : uncounted).add(builder);
        }
    }

    if (withShell) {
        const double timeRatio = median(counted.wall) / median(baselineSeconds);
        const double peakRss = *std::max_element(counted.rss.cbegin(), counted.rss.cend());
        printJson({{u"bench"_s, u"catalog-build"_s}, {u"summary"_s, true}, {u"runs"_s, runs},
                   {u"builder_wall_s_median"_s, median(counted.wall)},
                   {u"baseline_wall_s_median"_s, median(baselineSeconds)},
                   {u"wall_ratio"_s, timeRatio}, {u"wall_ratio_target"_s, 0.8},
                   {u"builder_peak_rss_mb_max"_s, peakRss}, {u"baseline_peak_rss_mb_median"_s, median(baselineRss)},
                   {u"peak_rss_target_mb"_s, 160},
                   {u"builder_file_bytes"_s, counted.fileBytes}, {u"baseline_file_bytes"_s, baselineBytes},
                   {u"targets_met"_s, timeRatio <= 0.8 && peakRss <= 160 && counted.fileBytes < baselineBytes}});
    }
    printAccountingSummary(runs, counted, uncounted);
    return 0;
}
