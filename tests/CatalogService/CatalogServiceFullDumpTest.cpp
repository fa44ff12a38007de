// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "FileDigest.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using State = CatalogDatabaseService::State;
using Kind = CatalogDatabaseService::State::Kind;

namespace {

constexpr int buildTimeout = 360'000;
const QByteArray htmlPage = "<!DOCTYPE html><html><body><p>We will be back soon.</p></body></html>\n";

} // namespace

// The catalog build service over the twelve full-size dumps, served from 127.0.0.1. The
// whole executable is skipped where the dumps are not beside the checkout.
class CatalogServiceFullDumpTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;

    QString applicationDirectory() const { return QFileInfo(RebrickableCatalog::defaultDatabasePath()).path(); }

    static bool runBuild(CatalogDatabaseService &service)
    {
        service.startBuild();
        return QTest::qWaitFor([&] { return service.state().kind == Kind::working; }, 10'000)
            && QTest::qWaitFor([&] { return service.state().kind != Kind::working; }, buildTimeout);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QString dumps = TestEnvironment::sharedDumpDirectory();
        if (dumps.isEmpty())
            QSKIP("the full-size dumps are not beside this checkout");
        QVERIFY(m_dumps.serveGzipDirectory(dumps));
    }

    void init()
    {
        QThreadPool::globalInstance()->waitForDone();
        QSettings().clear();
        RebrickableCatalog::replaceShared(nullptr);
        QDir(applicationDirectory()).removeRecursively();
        m_dumps.setLastModified("Wed, 02 Apr 2026 06:00:00 GMT");
    }

    void fullSizeDumpsBuildTheWholeCatalog()
    {
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QVERIFY(runBuild(service));
        QCOMPARE(service.state(), State::completed());
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 26'452);
        QVERIFY(!QFileInfo::exists(service.csvDirectory()));
    }

    void fullCatalogSurvivesAnHtmlPageInsteadOfTheSetsDump()
    {
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QVERIFY(runBuild(service));
        QCOMPARE(service.state(), State::completed());
        const QByteArray before = FileDigest::of(service.liveDatabasePath());

        // The date first: setting it serves every dump afresh.
        m_dumps.setLastModified("Thu, 03 Apr 2026 06:00:00 GMT");
        m_dumps.setGzipBytes(u"sets"_s, htmlPage);
        QVERIFY(runBuild(service));
        QCOMPARE(service.state(), State::failed(u"Failed to decompress sets.csv.gz"_s));
        QCOMPARE(FileDigest::of(service.liveDatabasePath()), before);
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 26'452);
        // After a restart the same catalog loads, whole.
        RebrickableCatalog::replaceShared(RebrickableCatalog::open());
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 26'452);
        QCOMPARE(QSettings().value(u"catalog.lastModifiedHeader"_s).toString(), u"Wed, 02 Apr 2026 06:00:00 GMT"_s);
    }
};

QTEST_GUILESS_MAIN(CatalogServiceFullDumpTest)
#include "CatalogServiceFullDumpTest.moc"
