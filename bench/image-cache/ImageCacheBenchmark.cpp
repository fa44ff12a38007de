// SPDX-License-Identifier: GPL-3.0-or-later
// Image cache benchmark: 500 set pictures served from 127.0.0.1 with a fixed latency,
// asked for as a scrolling grid asks for them, cold, from disk and from memory. Baselines
// in the same run: the bare transfers of the same files (eight at once, no decoding, no
// disk), and decoding plus scaling each picture on the main thread, which is what the
// cache keeps off it. One JSON object per line; see bench/README.md.
#include "BenchmarkPictures.h"
#include "EventLoopMeter.h"
#include "LoopbackHttpServer.h"
#include "ScrollingGrid.h"

#include "Endpoints.h"
#include "Services/AsyncSemaphore.h"
#include "Services/ImageCacheService.h"
#include "Services/ImageDownloader.h"
#include "Services/ThumbnailScaler.h"

#include <QCommandLineParser>
#include <QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr double stallLimitMs = 30;

void print(QJsonObject object)
{
    object.insert(u"benchmark"_s, u"image-cache"_s);
    std::printf("%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

// One of eight workers of the transfer baseline: takes the next URL until none is left.
QCoro::Task<void> transferWorker(ImageDownloader &downloader, const QStringList &urls, qsizetype &next,
                                 int &finished, qint64 &bytes)
{
    while (next < urls.size()) {
        const QUrl url(urls.at(next++));
        QCoro::Task<ImageDownloader::Result> request = downloader.get(url);
        const ImageDownloader::Result result = co_await request;
        bytes += result.body.size();
        ++finished;
    }
}

QJsonObject transferBaseline(const QStringList &urls, LoopbackHttpServer &server)
{
    server.resetCounters();
    ImageDownloader downloader;
    qsizetype next = 0;
    int finished = 0;
    qint64 bytes = 0;
    QElapsedTimer clock;
    clock.start();
    for (int worker = 0; worker < ImageCacheService::maximumConcurrentFetches; ++worker)
        transferWorker(downloader, urls, next, finished, bytes);
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (finished == urls.size())
            loop.quit();
    });
    check.start(1);
    loop.exec();
    return QJsonObject{{u"step"_s, u"baseline.transfer"_s},
                       {u"pictures"_s, int(urls.size())},
                       {u"ms"_s, double(clock.nsecsElapsed()) / 1e6},
                       {u"bytes"_s, double(bytes)},
                       {u"maxConcurrentTransfers"_s, server.maximumInFlightRequests()}};
}

QJsonObject mainThreadDecodeBaseline(const QString &directory, const QStringList &names)
{
    double totalMs = 0;
    double longestMs = 0;
    for (const QString &name : names) {
        QFile file(QDir(directory).filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        QElapsedTimer clock;
        clock.start();
        const QImage thumbnail = ThumbnailScaler::thumbnail(QImage::fromData(bytes));
        const double ms = double(clock.nsecsElapsed()) / 1e6;
        totalMs += ms;
        longestMs = std::max(longestMs, ms);
        Q_UNUSED(thumbnail);
    }
    return QJsonObject{{u"step"_s, u"baseline.mainThreadDecode"_s},
                       {u"pictures"_s, int(names.size())},
                       {u"totalMs"_s, totalMs},
                       {u"longestMs"_s, longestMs}};
}

struct PhaseResult
{
    QJsonObject json;
    bool passed = true;
};

PhaseResult runPhase(const QString &step, ImageCacheService &cache, const QStringList &urls,
                     LoopbackHttpServer &server, double transferMs)
{
    server.resetCounters();
    EventLoopMeter meter;
    const double residentBefore = EventLoopMeter::residentMiB();
    meter.start();
    ScrollingGrid grid(cache, urls);
    const double ms = grid.run();
    meter.stop();
    PhaseResult result;
    result.json = QJsonObject{{u"step"_s, step},
                              {u"pictures"_s, int(urls.size())},
                              {u"ms"_s, ms},
                              {u"meanCellMs"_s, grid.meanCellMilliseconds()},
                              {u"longestCellMs"_s, grid.longestCellMilliseconds()},
                              {u"thumbnails"_s, grid.thumbnails()},
                              {u"oversizedThumbnails"_s, grid.oversized()},
                              {u"requests"_s, server.requestCount()},
                              {u"maxConcurrentTransfers"_s, server.maximumInFlightRequests()},
                              {u"longestStallMs"_s, meter.longestStallMilliseconds()},
                              {u"longestBusyStallMs"_s, meter.longestBusyMilliseconds()},
                              {u"residentBeforeMiB"_s, residentBefore},
                              {u"peakResidentMiB"_s, meter.peakResidentMiB()},
                              {u"memoryCacheMiB"_s, double(cache.memoryCache().totalCost()) / (1024.0 * 1024.0)},
                              {u"thumbnailCacheMiB"_s, double(cache.thumbnailCache().totalCost()) / (1024.0 * 1024.0)},
                              {u"ratioToTransferBaseline"_s, transferMs > 0 ? ms / transferMs : 0}};
    result.passed = grid.thumbnails() == urls.size() && grid.oversized() == 0
        && server.maximumInFlightRequests() <= ImageCacheService::maximumConcurrentFetches
        && meter.longestBusyMilliseconds() <= stallLimitMs;
    result.json.insert(u"pass"_s, result.passed);
    return result;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    // Thousands of per-picture lines would be measured along with the cache.
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.cache.debug=false\ncom.tessaloom.app.cache.info=false"_s);

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption picturesOption(u"pictures"_s, u"Number of distinct pictures."_s, u"count"_s, u"500"_s);
    const QCommandLineOption latencyOption(u"latency"_s, u"Server latency per request, ms."_s, u"ms"_s, u"20"_s);
    parser.addOptions({picturesOption, latencyOption});
    parser.process(application);
    const int pictureCount = parser.value(picturesOption).toInt();
    const int latency = parser.value(latencyOption).toInt();

    QTemporaryDir work;
    const QString pictureDirectory = work.filePath(u"pictures"_s);
    BenchmarkPictures::Summary summary;
    const QStringList names = BenchmarkPictures::generate(pictureDirectory, pictureCount, &summary);
    print(QJsonObject{{u"step"_s, u"pictures"_s},
                      {u"count"_s, summary.count},
                      {u"smallestKB"_s, double(summary.smallestBytes) / 1024.0},
                      {u"largestKB"_s, double(summary.largestBytes) / 1024.0},
                      {u"meanKB"_s, summary.count ? double(summary.totalBytes) / summary.count / 1024.0 : 0.0},
                      {u"latencyMs"_s, latency}});

    LoopbackHttpServer server;
    if (!server.listen()) {
        std::fprintf(stderr, "No loopback port\n");
        return 2;
    }
    for (const QString &name : names) {
        LoopbackHttpServer::Response response;
        response.filePath = QDir(pictureDirectory).filePath(name);
        response.delayMilliseconds = latency;
        server.setResponse(u"/media/sets/"_s + name, response);
    }
    const QString base = server.baseUrl().toString();
    qputenv(Endpoints::overrideVariable, (u"rebrickable="_s + base + u";bricklinkImages="_s + base + u"/bl"_s).toUtf8());
    QStringList urls;
    for (const QString &name : names)
        urls.append(Endpoints::url(Endpoints::Service::rebrickable, u"/media/sets/"_s + name).toString());

    const QJsonObject transfer = transferBaseline(urls, server);
    print(transfer);
    const double transferMs = transfer.value(u"ms"_s).toDouble();
    print(mainThreadDecodeBaseline(pictureDirectory, names));

    const QString caches = work.filePath(u"caches"_s);
    bool passed = true;
    {
        ImageCacheService cold(caches);
        const PhaseResult result = runPhase(u"cold"_s, cold, urls, server, transferMs);
        print(result.json);
        passed = passed && result.passed;
    }
    {
        ImageCacheService restarted(caches);
        const PhaseResult fromDisk = runPhase(u"disk.thumbnails"_s, restarted, urls, server, transferMs);
        print(fromDisk.json);
        const PhaseResult fromMemory = runPhase(u"memory"_s, restarted, urls, server, transferMs);
        print(fromMemory.json);
        passed = passed && fromDisk.passed && fromMemory.passed;
    }
    {
        // Without thumbnail files every thumbnail is made again from the full picture.
        ImageCacheService restarted(caches);
        QDir(restarted.thumbnailDiskDirectory()).removeRecursively();
        QDir().mkpath(restarted.thumbnailDiskDirectory());
        const PhaseResult result = runPhase(u"disk.fullPictures"_s, restarted, urls, server, transferMs);
        print(result.json);
        passed = passed && result.passed;
    }
    print(QJsonObject{{u"step"_s, u"summary"_s}, {u"pass"_s, passed}, {u"stallLimitMs"_s, stallLimitMs}});
    return passed ? 0 : 1;
}
