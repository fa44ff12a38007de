// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "Views/TranslationLoader.h"

#include <QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using State = CatalogDatabaseService::State;
using Kind = CatalogDatabaseService::State::Kind;

namespace {
constexpr int buildTimeout = 120'000;

QString sampleCatalogDirectory()
{
    return QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR);
}
} // namespace

// The catalog build service end to end: dumps served over loopback HTTP, the real
// downloader and builder, the swap, validation and the shared catalog.
class CatalogDatabaseServiceTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;
    std::unique_ptr<CatalogDatabaseService> m_service;
    QList<State> m_states;

    QString applicationDirectory() const { return QFileInfo(RebrickableCatalog::defaultDatabasePath()).path(); }

    bool waitForOutcome()
    {
        // A build starts from idle and ends in completed, failed, or idle after a cancel.
        return QTest::qWaitFor([this] {
            return !m_states.isEmpty() && m_states.last().kind != Kind::working;
        }, buildTimeout);
    }

    bool buildOnce()
    {
        m_service->startBuild();
        return waitForOutcome() && m_service->state().kind == Kind::completed;
    }

    int indexOfRequest(const QByteArray &method, const QString &path)
    {
        const auto requests = m_dumps.server().requests();
        for (qsizetype i = 0; i < requests.size(); ++i) {
            if (requests[i].method == method && requests[i].path == path.toUtf8())
                return int(i);
        }
        return -1;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // The build's status texts are translated like every other text.
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        QVERIFY(m_dumps.serveCsvDirectory(sampleCatalogDirectory(), TestEnvironment::temporaryRoot() + u"/dumps"_s));
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(nullptr);
        QDir(applicationDirectory()).removeRecursively();
        m_dumps.serveCsvDirectory(sampleCatalogDirectory(), TestEnvironment::temporaryRoot() + u"/dumps"_s);
        m_dumps.setLastModified("Wed, 02 Apr 2026 06:00:00 GMT");
        m_dumps.server().resetCounters();
        m_service = std::make_unique<CatalogDatabaseService>(applicationDirectory(), m_dumps.baseUrl());
        m_states.clear();
        connect(m_service.get(), &CatalogDatabaseService::stateChanged, this,
                [this](const State &state) { m_states.append(state); });
    }

    void cleanup()
    {
        m_service.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void firstBuildSkipsTheHeadRequestAndMakesItAfterTheSwap()
    {
        QSignalSpy updated(m_service.get(), &CatalogDatabaseService::catalogDatabaseDidUpdate);
        QVERIFY(buildOnce());
        QCOMPARE(m_dumps.server().requests().first().method, QByteArray("GET"));
        const int lastDownload = indexOfRequest("GET", DumpServer::path(u"inventory_minifigs"_s));
        const int head = indexOfRequest("HEAD", DumpServer::path(u"sets"_s));
        QVERIFY(lastDownload >= 0);
        QVERIFY(head > lastDownload);
        QCOMPARE(QSettings().value(u"catalog.lastModifiedHeader"_s).toString(), u"Wed, 02 Apr 2026 06:00:00 GMT"_s);
        QVERIFY(m_service->lastBuildDate());
        QCOMPARE(updated.count(), 1);
    }

    void successfulBuildSwapsInValidatesAndCleansUp()
    {
        QVERIFY(buildOnce());
        QVERIFY(QFileInfo::exists(m_service->liveDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_service->buildingDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
        const auto catalog = RebrickableCatalog::shared();
        QVERIFY(catalog);
        QCOMPARE(catalog->path(), m_service->liveDatabasePath());
        QCOMPARE(catalog->setCount(), 477);
        QCOMPARE(m_service->databaseFileSize(), QFileInfo(m_service->liveDatabasePath()).size());
    }

    void progressMovesThroughDownloadBuildAndFinish()
    {
        QVERIFY(buildOnce());
        QStringList statuses;
        for (const State &state : std::as_const(m_states)) {
            if (state.kind == Kind::working)
                statuses << state.status;
        }
        QCOMPARE(m_states.first(), State::working(u"Downloading themes.csv..."_s, 0));
        QVERIFY(m_states.contains(State::working(u"Downloading inventory_minifigs.csv..."_s, 0.5)));
        QVERIFY(statuses.contains(u"Importing sets..."_s));
        QVERIFY(m_states.contains(State::working(u"Importing data..."_s, 0.9)));
        QVERIFY(m_states.contains(State::working(u"Creating indexes..."_s, 0.9)));
        QVERIFY(m_states.contains(State::working(u"Optimizing..."_s, 0.95)));
        QVERIFY(m_states.contains(State::working(u"Finalizing..."_s, 0.95)));
        QCOMPARE(m_states.value(m_states.size() - 2), State::working(u"Done"_s, 1.0));
        QCOMPARE(m_states.last(), State::completed());
    }

    void startBuildWhileWorkingDoesNothing()
    {
        m_service->startBuild();
        QTRY_COMPARE(m_service->state().kind, Kind::working);
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state().kind, Kind::completed);
        QCOMPARE(m_dumps.server().requestCount("GET", DumpServer::path(u"themes"_s)), 1);
    }

    void storedHeaderMakesTheBuildCheckFirst()
    {
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Tue, 01 Apr 2026 06:00:00 GMT"_s);
        QVERIFY(buildOnce());
        QCOMPARE(m_dumps.server().requests().first().method, QByteArray("HEAD"));
        QCOMPARE(m_states.first(), State::working(u"Checking for updates..."_s, 0));
        QCOMPARE(m_dumps.server().requestCount("HEAD", DumpServer::path(u"sets"_s)), 1);
        QCOMPARE(QSettings().value(u"catalog.lastModifiedHeader"_s).toString(), u"Wed, 02 Apr 2026 06:00:00 GMT"_s);
    }

    void checkAfterABuildReportsAnUpdateOnlyWhenTheHeaderChanged()
    {
        QVERIFY(buildOnce());
        QCOMPARE(QCoro::waitFor(m_service->checkForUpdates()), false);
        QCOMPARE(m_service->state(), State::idle());
        m_dumps.setLastModified("Thu, 03 Apr 2026 06:00:00 GMT");
        QCOMPARE(QCoro::waitFor(m_service->checkForUpdates()), true);
        QCOMPARE(m_service->state(), State::idle());
    }

    void failedCheckAnswersFalseAndShowsNothing()
    {
        LoopbackHttpServer::Response broken;
        broken.status = 500;
        m_dumps.setResponse(u"sets"_s, broken);
        QCOMPARE(QCoro::waitFor(m_service->checkForUpdates()), false);
        QCOMPARE(m_service->state(), State::idle());
    }

    void rebuildSwapsTheFileWhileReadersOfTheOldCatalogKeepWorking()
    {
        QVERIFY(buildOnce());
        const std::shared_ptr<RebrickableCatalog> old = RebrickableCatalog::shared();
        m_dumps.setLastModified("Thu, 03 Apr 2026 06:00:00 GMT");
        QVERIFY(buildOnce());
        QVERIFY(RebrickableCatalog::shared() != old);
        QCOMPARE(old->setCount(), 477);
        QCOMPARE(old->searchSets(u"falcon"_s, 10).isEmpty(), false);
        QCOMPARE(QSettings().value(u"catalog.lastModifiedHeader"_s).toString(), u"Thu, 03 Apr 2026 06:00:00 GMT"_s);
    }

    void cancellingDuringDownloadLeavesNoDumpsAndGoesIdle()
    {
        LoopbackHttpServer::Response slow;
        slow.body = DumpServer::gzip("inventory_id,part_num,color_id,quantity,is_spare,img_url\n");
        slow.delayMilliseconds = 3000;
        m_dumps.setResponse(u"inventory_parts"_s, slow);
        m_service->startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state().status, u"Downloading inventory_parts.csv..."_s, 20'000);
        m_service->cancelCurrentTask();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state(), State::idle(), 20'000);
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
        QVERIFY(!QFileInfo::exists(m_service->buildingDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_service->liveDatabasePath()));
    }

    void cancellingDuringTheFirstHeadRequestTakesEffectAtOnce()
    {
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Tue, 01 Apr 2026 06:00:00 GMT"_s);
        LoopbackHttpServer::Response slowHead;
        slowHead.headers = {{"Last-Modified", "Wed, 02 Apr 2026 06:00:00 GMT"}};
        slowHead.delayMilliseconds = 30'000;
        m_dumps.setResponse(u"sets"_s, slowHead);
        m_service->startBuild();
        QTRY_COMPARE(m_service->state(), State::working(u"Checking for updates..."_s, 0));
        QElapsedTimer clock;
        clock.start();
        m_service->cancelCurrentTask();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state(), State::idle(), 5'000);
        QVERIFY2(clock.elapsed() < 5'000, "the cancel waited for the HEAD request to end");
        QCOMPARE(m_dumps.server().requestCount("GET", DumpServer::path(u"themes"_s)), 0);
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
    }

    void checkForUpdatesDuringABuildSetsIdleAtItsEndWhileTheBuildGoesOn()
    {
        // Callers do not check during a build: the check has no guard, and when it ends it
        // sets idle over the build's working state. The build still ends as usual.
        LoopbackHttpServer::Response slow;
        slow.body = DumpServer::gzip("id,name,rgb,is_trans\n");
        slow.delayMilliseconds = 1500;
        m_dumps.setResponse(u"colors"_s, slow);
        m_service->startBuild();
        QTRY_COMPARE(m_service->state().status, u"Downloading colors.csv..."_s);
        QCOMPARE(QCoro::waitFor(m_service->checkForUpdates()), true);
        QVERIFY(m_states.contains(State::idle()));
        QVERIFY(waitForOutcome());
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state(), State::completed(), buildTimeout);
    }

    void cancellingAFinishedBuildChangesNothing()
    {
        QVERIFY(buildOnce());
        m_service->cancelCurrentTask();
        QCOMPARE(m_service->state(), State::completed());
    }

    void setsWithOnlyAHeaderFailAsEmptyAndTheEmptyFileStaysLive()
    {
        m_dumps.setGzipBytes(u"sets"_s, DumpServer::gzip("set_num,name,year,theme_id,num_parts,img_url\n"));
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state(),
                 State::failed(CatalogDatabaseService::description(CatalogDatabaseService::BuildError::emptyDatabase)));
        QVERIFY(QFileInfo::exists(m_service->liveDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
        QVERIFY(m_service->lastBuildDate());
    }

    void serverDyingMidDownloadFailsAndLeavesTheLiveCatalogUntouched()
    {
        QVERIFY(buildOnce());
        const QFileInfo before(m_service->liveDatabasePath());
        const QDateTime modified = before.lastModified();
        LoopbackHttpServer::Response cut;
        cut.filePath = TestEnvironment::temporaryRoot() + u"/dumps/inventory_parts.csv.gz"_s;
        cut.cutAfterBodyBytes = 2000;
        m_dumps.setResponse(u"inventory_parts"_s, cut);
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state().kind, Kind::failed);
        QCOMPARE(QFileInfo(m_service->liveDatabasePath()).lastModified(), modified);
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
        QVERIFY(!QFileInfo::exists(m_service->buildingDatabasePath()));
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 477);
    }

    void missingDumpFailsWithTheHttpStatus()
    {
        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"minifigs"_s, missing);
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state(), State::failed(u"Failed to download minifigs.csv.gz: HTTP 404"_s));
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
    }

    void headAnswersOtherThanOkEndTheBuild_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("304") << 304;
        QTest::newRow("404") << 404;
        QTest::newRow("500") << 500;
    }

    void headAnswersOtherThanOkEndTheBuild()
    {
        QFETCH(int, status);
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Tue, 01 Apr 2026 06:00:00 GMT"_s);
        LoopbackHttpServer::Response answer;
        answer.status = status;
        m_dumps.setResponse(u"sets"_s, answer);
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state(), State::failed(u"Failed to download sets.csv.gz: HTTP "_s + QString::number(status)));
        QCOMPARE(m_dumps.server().requestCount("GET", DumpServer::path(u"themes"_s)), 0);
    }

    void truncatedGzipFailsToDecompress()
    {
        const QByteArray whole = DumpServer::gzip(QByteArray("id,name,rgb,is_trans\n") + QByteArray(200'000, 'x'));
        m_dumps.setGzipBytes(u"colors"_s, whole.left(whole.size() / 2));
        m_service->startBuild();
        QVERIFY(waitForOutcome());
        QCOMPARE(m_service->state().kind, Kind::failed);
        QVERIFY(m_service->state().errorText.startsWith(u"Failed to decompress colors"_s));
        QVERIFY(!QFileInfo::exists(m_service->csvDirectory()));
    }

    void staleBuildingFileFromACrashIsReplaced()
    {
        QDir().mkpath(applicationDirectory());
        QFile stale(m_service->buildingDatabasePath());
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.write(QByteArray(10'000, 'z'));
        stale.close();
        QVERIFY(buildOnce());
        QVERIFY(!QFileInfo::exists(m_service->buildingDatabasePath()));
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 477);
    }
};

QTEST_GUILESS_MAIN(CatalogDatabaseServiceTest)
#include "CatalogDatabaseServiceTest.moc"
