// SPDX-License-Identifier: GPL-3.0-or-later
// Disk space in the application folder while the catalog service builds the full catalog
// from dumps served over 127.0.0.1: once with no catalog in service (nothing to keep), then
// a rebuild that keeps the catalog in service as the previous one. Each sample counts the
// folder twice: everything, and everything but a previous catalog that is a file of its own
// (not a hard link of the live one), which is what the folder would hold without keeping it.
#include "BenchmarkOutput.h"
#include "LoopbackHttpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonObject>
#include <QSet>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QStringList dumpNames = {
    u"themes"_s, u"colors"_s, u"part_categories"_s, u"parts"_s, u"part_relationships"_s, u"elements"_s,
    u"minifigs"_s, u"sets"_s, u"inventories"_s, u"inventory_parts"_s, u"inventory_sets"_s, u"inventory_minifigs"_s,
};

struct Usage
{
    qint64 all = 0;
    qint64 withoutKeptPrevious = 0;
};

// Allocated bytes of every file below `folder`, each inode counted once: a hard link of
// the live catalog takes no space of its own.
Usage diskUsage(const QString &folder, const QString &previousPath)
{
    Usage usage;
    QSet<QPair<quint64, quint64>> seen;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        struct stat status {};
        if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
            continue;
        const QPair<quint64, quint64> inode(quint64(status.st_dev), quint64(status.st_ino));
        if (seen.contains(inode))
            continue;
        seen.insert(inode);
        const qint64 bytes = qint64(status.st_blocks) * 512;
        usage.all += bytes;
        const bool keptPreviousOfItsOwn = path == previousPath && status.st_nlink == 1;
        if (!keptPreviousOfItsOwn)
            usage.withoutKeptPrevious += bytes;
    }
    return usage;
}

double megabytes(qint64 bytes)
{
    return double(bytes) / 1e6;
}

QJsonObject measureBuild(const QString &label, CatalogDatabaseService &service)
{
    Usage peak;
    const auto sample = [&] {
        const Usage now = diskUsage(service.applicationDirectory(), service.previousDatabasePath());
        peak.all = std::max(peak.all, now.all);
        peak.withoutKeptPrevious = std::max(peak.withoutKeptPrevious, now.withoutKeptPrevious);
    };
    QTimer sampler;
    QObject::connect(&sampler, &QTimer::timeout, sample);
    sampler.start(20);
    QElapsedTimer clock;
    clock.start();
    service.startBuild();
    const bool ended =
        QTest::qWaitFor([&] { return service.state().kind == CatalogDatabaseService::State::Kind::working; }, 10'000)
        && QTest::qWaitFor([&] { return service.state().kind != CatalogDatabaseService::State::Kind::working; },
                           1'800'000);
    sampler.stop();
    sample();
    const double seconds = double(clock.elapsed()) / 1000;
    // Removal of the dumps runs on a worker; the settled folder is what stays afterwards.
    QThreadPool::globalInstance()->waitForDone();
    const Usage after = diskUsage(service.applicationDirectory(), service.previousDatabasePath());
    return {
        {u"bench"_s, u"catalog-disk"_s},
        {u"build"_s, label},
        {u"outcome"_s, !ended ? u"did not end in time"_s
                       : service.state().kind == CatalogDatabaseService::State::Kind::completed ? u"completed"_s
                                                                                                : service.state().errorText},
        {u"seconds"_s, seconds},
        {u"peakMB"_s, megabytes(peak.all)},
        {u"peakWithoutKeepingPreviousMB"_s, megabytes(peak.withoutKeptPrevious)},
        {u"afterMB"_s, megabytes(after.all)},
        {u"afterWithoutKeepingPreviousMB"_s, megabytes(after.withoutKeptPrevious)},
        {u"liveCatalogMB"_s, megabytes(QFileInfo(service.liveDatabasePath()).size())},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    TestEnvironment::isolate();

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"dumps"_s, u"Folder of the twelve NAME.csv.gz dumps."_s, u"dir"_s,
                      TestEnvironment::sharedDumpDirectory()});
    parser.process(application);
    const QString dumps = parser.value(u"dumps"_s);
    if (dumps.isEmpty() || !QFileInfo(dumps + u"/sets.csv.gz"_s).isFile()) {
        qCritical("No full-size dumps found; pass --dumps DIR.");
        return 1;
    }

    LoopbackHttpServer server;
    if (!server.listen())
        return 1;
    const auto serve = [&](const QByteArray &lastModified) {
        for (const QString &name : dumpNames)
            server.serveFile(u"/media/downloads/"_s + name + u".csv.gz"_s, dumps + u'/' + name + u".csv.gz"_s,
                             {{"Last-Modified", lastModified}});
    };

    const QString applicationDirectory = QFileInfo(RebrickableCatalog::defaultDatabasePath()).path();
    CatalogDatabaseService service(applicationDirectory, server.baseUrl());
    serve("Wed, 02 Apr 2026 06:00:00 GMT");
    BenchmarkOutput::print(measureBuild(u"first (nothing to keep)"_s, service));
    serve("Thu, 03 Apr 2026 06:00:00 GMT");
    BenchmarkOutput::print(measureBuild(u"rebuild (previous kept)"_s, service));
    return 0;
}
