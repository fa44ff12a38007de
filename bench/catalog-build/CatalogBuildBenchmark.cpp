// SPDX-License-Identifier: GPL-3.0-or-later
// catalog-build-bench: builds the catalog database from the full dumps with
// RebrickableDatabaseBuilder and, in the same run, with the sqlite3 shell as a baseline.
// Prints one JSON object per line: one per phase of each builder run, one per run of
// each side, and a summary with the ratios against the targets.
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

void printJson(const QJsonObject &object)
{
    std::fputs(QJsonDocument(object).toJson(QJsonDocument::Compact).constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
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
    printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, u"builder"_s}, {u"phase"_s, phase},
               {u"seconds"_s, match.captured(2).toDouble() / 1000.0}, {u"peak_rss_mb_so_far"_s, peakRssMegabytes()}});
}

int runBuilder(const QString &csvDirectory, const QString &outputPath)
{
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.catalogDB.debug=true"_s);
    qInstallMessageHandler(captureStepLog);

    QElapsedTimer timer;
    timer.start();
    QString currentPhase;
    qint64 phaseStart = 0;
    auto endPhase = [&](const QString &next) {
        const qint64 now = timer.nsecsElapsed();
        if (!currentPhase.isEmpty())
            printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, u"builder"_s}, {u"phase"_s, currentPhase},
                       {u"seconds"_s, double(now - phaseStart) / 1e9}, {u"peak_rss_mb_so_far"_s, peakRssMegabytes()}});
        currentPhase = next;
        phaseStart = now;
    };
    using Kind = RebrickableDatabaseBuilder::BuildPhase::Kind;
    RebrickableDatabaseBuilder::build(csvDirectory, outputPath, [&](const RebrickableDatabaseBuilder::BuildPhase &phase) {
        switch (phase.kind) {
        case Kind::importing:
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
    });
    return 0;
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

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Catalog build benchmark against the sqlite3 shell"_s);
    parser.addHelpOption();
    const QCommandLineOption dumpsOption(u"dumps"_s, u"Folder of the .csv.gz dumps"_s, u"dir"_s,
                                         QStringLiteral(TESSALOOM_SHARED_DATA_DIR "/rebrickable-2026-04-02"));
    const QCommandLineOption csvOption(u"csv-dir"_s, u"Folder of already unpacked .csv dumps (skips unpacking)"_s, u"dir"_s);
    const QCommandLineOption runsOption(u"runs"_s, u"Runs of each side, alternating"_s, u"n"_s, u"3"_s);
    const QCommandLineOption shellOption(u"sqlite3"_s, u"The sqlite3 shell to use"_s, u"path"_s, u"sqlite3"_s);
    const QCommandLineOption builderOption(u"run-builder"_s, u"(internal) build CSV_DIR into OUTPUT and exit"_s);
    parser.addOptions({dumpsOption, csvOption, runsOption, shellOption, builderOption});
    parser.process(application);

    if (parser.isSet(builderOption)) {
        const QStringList arguments = parser.positionalArguments();
        if (arguments.size() != 2)
            return 2;
        return runBuilder(arguments.at(0), arguments.at(1));
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

    const int runs = std::max(1, parser.value(runsOption).toInt());
    QList<double> builderSeconds, builderRss, baselineSeconds, baselineRss;
    qint64 builderBytes = 0, baselineBytes = 0;
    for (int run = 1; run <= runs; ++run) {
        const QString baselinePath = work.filePath(u"baseline.sqlite"_s);
        QFile::remove(baselinePath);
        const ChildProcess::Result baseline = ChildProcess::run(parser.value(shellOption), {baselinePath}, scriptPath, true);
        baselineBytes = QFileInfo(baselinePath).size();
        QFile::remove(baselinePath);
        printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, u"sqlite3-shell"_s}, {u"run"_s, run},
                   {u"exit"_s, baseline.exitCode}, {u"wall_s"_s, baseline.wallSeconds},
                   {u"peak_rss_mb"_s, baseline.peakRssMegabytes}, {u"file_bytes"_s, baselineBytes}});
        baselineSeconds.append(baseline.wallSeconds);
        baselineRss.append(baseline.peakRssMegabytes);

        const QString builderPath = work.filePath(u"builder.sqlite"_s);
        const ChildProcess::Result builder = ChildProcess::run(
            QCoreApplication::applicationFilePath(), {u"--run-builder"_s, csvDirectory, builderPath});
        builderBytes = QFileInfo(builderPath).size();
        QFile::remove(builderPath);
        printJson({{u"bench"_s, u"catalog-build"_s}, {u"variant"_s, u"builder"_s}, {u"run"_s, run},
                   {u"exit"_s, builder.exitCode}, {u"wall_s"_s, builder.wallSeconds},
                   {u"peak_rss_mb"_s, builder.peakRssMegabytes}, {u"file_bytes"_s, builderBytes}});
        builderSeconds.append(builder.wallSeconds);
        builderRss.append(builder.peakRssMegabytes);
    }

    const double timeRatio = median(builderSeconds) / median(baselineSeconds);
    const double peakRss = *std::max_element(builderRss.cbegin(), builderRss.cend());
    printJson({{u"bench"_s, u"catalog-build"_s}, {u"summary"_s, true}, {u"runs"_s, runs},
               {u"builder_wall_s_median"_s, median(builderSeconds)},
               {u"baseline_wall_s_median"_s, median(baselineSeconds)},
               {u"wall_ratio"_s, timeRatio}, {u"wall_ratio_target"_s, 0.8},
               {u"builder_peak_rss_mb_max"_s, peakRss}, {u"baseline_peak_rss_mb_median"_s, median(baselineRss)},
               {u"peak_rss_target_mb"_s, 160},
               {u"builder_file_bytes"_s, builderBytes}, {u"baseline_file_bytes"_s, baselineBytes},
               {u"targets_met"_s, timeRatio <= 0.8 && peakRss <= 160 && builderBytes < baselineBytes}});
    return 0;
}
