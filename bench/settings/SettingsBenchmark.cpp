// SPDX-License-Identifier: GPL-3.0-or-later
// The settings window offscreen with a large picture cache on disk: how long the user
// waits for the window, and when the cache tab's disk-usage figure arrives.
//
// The cache holds `--files` pictures (10,000) of `--megabytes` (500) in all, written as
// sparse files: the figure counts their sizes, as it does for real pictures, and the
// benchmark does not need half a gigabyte of free disk.
//
// - `open`: a new SettingsView with the cache tab current, shown, laid out and painted.
//   The figure is counted on the thread pool meanwhile. Baseline in the same run,
//   `emptyDialog`: a QDialog holding a QTabWidget with five empty tabs, shown and painted.
// - `figure`: from the start of `open` until the disk-usage label shows the figure;
//   `longestStallMs` is the longest gap between the ticks of a 1 ms timer on the main
//   thread over that time (how long the window could not answer). Baseline `walk`: the
//   same count of the folder run directly on the main thread.
//
// One JSON object per line, one per run and step, and a summary line last.
//
//   QT_QPA_PLATFORM=offscreen settings-bench [--files N] [--megabytes N] [--runs N]

#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"

#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/ImageCacheService.h"
#include "Services/ImageFileStore.h"
#include "Store/PersistenceController.h"
#include "ViewModels/SettingsViewModel.h"
#include "Views/CacheSettingsTab.h"
#include "Views/SettingsView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double openTargetMs = 100;

QJsonObject figure(const QString &step, const BenchmarkSamples &samples, double target = 0)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"settings"_s}, {u"step"_s, step},
                       {u"medianMs"_s, samples.median()}, {u"worstMs"_s, samples.worst()},
                       {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

// Sparse files of the given total size: their sizes count, their blocks are not written.
bool fillCache(const QString &directory, int files, qint64 totalBytes)
{
    if (!QDir().mkpath(directory))
        return false;
    const qint64 each = totalBytes / files;
    for (int index = 0; index < files; ++index) {
        QFile file(directory + u"/%1.jpg"_s.arg(index, 8, 16, QChar(u'0')));
        if (!file.open(QIODevice::WriteOnly) || !file.resize(each))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.*.debug=false"_s);
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"files"_s, u"Pictures in the cache."_s, u"n"_s, u"10000"_s});
    parser.addOption({u"megabytes"_s, u"Their size in all, in MB."_s, u"n"_s, u"500"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"10"_s});
    parser.process(application);
    const int files = std::max(1, parser.value(u"files"_s).toInt());
    const qint64 totalBytes = std::max(1LL, parser.value(u"megabytes"_s).toLongLong()) * 1000 * 1000;
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());

    QTemporaryDir work;
    ImageCacheService imageCache(work.path() + u"/caches"_s);
    if (!fillCache(imageCache.diskCacheDirectory(), files, totalBytes)) {
        BenchmarkOutput::print({{u"benchmark"_s, u"settings"_s}, {u"skipped"_s, true},
                                {u"reason"_s, u"The picture cache could not be written."_s}});
        return 1;
    }
    const std::unique_ptr<PersistenceController> store = PersistenceController::open(QString(), true);
    CatalogDatabaseService catalogService(work.path() + u"/app"_s, QUrl(u"http://127.0.0.1:9"_s));
    AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
    const QString expected = QLocale().formattedDataSize(ImageFileStore::directorySize(imageCache.diskCacheDirectory()));
    BenchmarkOutput::print({{u"benchmark"_s, u"settings"_s}, {u"files"_s, files},
                            {u"bytes"_s, double(totalBytes)}, {u"figure"_s, expected}, {u"runs"_s, runs}});

    BenchmarkSamples open, emptyDialog, figureArrives, stalls, walk;
    for (int run = 0; run < runs; ++run) {
        // The baseline first: the least a tabbed dialog costs to show.
        {
            QDialog dialog;
            auto *tabs = new QTabWidget(&dialog);
            for (const QString &title : {u"General"_s, u"API Keys"_s, u"Sidebar"_s, u"Cache"_s, u"About"_s})
                tabs->addTab(new QWidget(), title);
            (new QVBoxLayout(&dialog))->addWidget(tabs);
            dialog.resize(560, 620);
            emptyDialog.values << BenchmarkOutput::milliseconds([&] {
                dialog.show();
                BenchmarkWidgets::paintNow(dialog);
            });
        }

        QElapsedTimer clock;
        clock.start();
        auto view = std::make_unique<SettingsView>(store->container(), catalogService, updates, imageCache);
        view->tabs()->setCurrentWidget(view->tabs()->widget(3));
        view->show();
        BenchmarkWidgets::paintNow(*view);
        const double openMs = clock.nsecsElapsed() / 1e6;

        // The main thread's answers while the figure is counted elsewhere.
        QElapsedTimer sinceTick;
        sinceTick.start();
        double longestGap = 0;
        QTimer ticker;
        ticker.setTimerType(Qt::PreciseTimer);
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            longestGap = std::max(longestGap, sinceTick.nsecsElapsed() / 1e6);
            sinceTick.restart();
        });
        ticker.start(1);
        QLabel *label = view->cacheTab()->imageCacheSizeLabel();
        const bool arrived = BenchmarkWidgets::processUntil([&] { return label->text() == expected; });
        const double figureMs = clock.nsecsElapsed() / 1e6;
        ticker.stop();
        longestGap = std::max(longestGap, sinceTick.nsecsElapsed() / 1e6);
        view.reset();
        QCoreApplication::processEvents();

        const double walkMs = BenchmarkOutput::milliseconds(
            [&] { (void)ImageFileStore::directorySize(imageCache.diskCacheDirectory()); });
        open.values << openMs;
        figureArrives.values << figureMs;
        stalls.values << longestGap;
        walk.values << walkMs;
        BenchmarkOutput::print({{u"benchmark"_s, u"settings"_s}, {u"run"_s, run}, {u"openMs"_s, openMs},
                                {u"emptyDialogMs"_s, emptyDialog.values.last()}, {u"figureMs"_s, figureMs},
                                {u"figureArrived"_s, arrived}, {u"longestStallMs"_s, longestGap},
                                {u"walkMs"_s, walkMs}});
    }

    BenchmarkOutput::print(figure(u"open"_s, open, openTargetMs));
    BenchmarkOutput::print(figure(u"emptyDialog"_s, emptyDialog));
    BenchmarkOutput::print(figure(u"figure"_s, figureArrives));
    BenchmarkOutput::print(figure(u"longestStall"_s, stalls));
    BenchmarkOutput::print(figure(u"walk"_s, walk));
    BenchmarkOutput::print({{u"benchmark"_s, u"settings"_s}, {u"summary"_s, true},
                            {u"openMedianMs"_s, open.median()}, {u"emptyDialogMedianMs"_s, emptyDialog.median()},
                            {u"openRatioToEmptyDialog"_s, open.median() / std::max(0.001, emptyDialog.median())},
                            {u"figureMedianMs"_s, figureArrives.median()}, {u"walkMedianMs"_s, walk.median()},
                            {u"longestStallWorstMs"_s, stalls.worst()},
                            {u"openWithinTarget"_s, open.median() <= openTargetMs}});
    return 0;
}
