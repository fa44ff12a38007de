// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/DailyCatalogCheck.h"
#include "TestEnvironment.h"

#include <QCoroTask>
#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

class DailyCatalogCheckTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR),
                                          TestEnvironment::temporaryRoot() + u"/dumps"_s));
    }

    void init()
    {
        QSettings().clear();
        m_dumps.server().resetCounters();
    }

    void neverCheckedIsDue()
    {
        QVERIFY(DailyCatalogCheck::isDue(QVariant(), QDateTime::currentDateTime()));
        QVERIFY(DailyCatalogCheck::isDue(QVariant(u"yesterday"_s), QDateTime::currentDateTime()));
    }

    void checkedEarlierTodayIsNotDue()
    {
        const QDateTime now(QDate(2026, 11, 23), QTime(18, 0));
        QVERIFY(!DailyCatalogCheck::isDue(QDateTime(QDate(2026, 11, 23), QTime(0, 0, 1)), now));
        QVERIFY(!DailyCatalogCheck::isDue(QDateTime(QDate(2026, 11, 23), QTime(17, 59)), now));
    }

    void startJustAfterMidnightIsDueEvenMinutesAfterTheLastCheck()
    {
        const QDateTime now(QDate(2026, 11, 24), QTime(0, 1));
        QVERIFY(DailyCatalogCheck::isDue(QDateTime(QDate(2026, 11, 23), QTime(23, 58)), now));
    }

    void twoStartsOnOneDayCheckOnce()
    {
        CatalogDatabaseService service(TestEnvironment::temporaryRoot() + u"/app"_s, m_dumps.baseUrl());
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Wed, 02 Apr 2026 06:00:00 GMT"_s);
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(service, true)), false);
        QCOMPARE(m_dumps.server().requestCount("HEAD", DumpServer::path(u"sets"_s)), 1);
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(service, true)), false);
        QCOMPARE(m_dumps.server().requestCount("HEAD", DumpServer::path(u"sets"_s)), 1);
    }

    void noCatalogMeansNoCheck()
    {
        CatalogDatabaseService service(TestEnvironment::temporaryRoot() + u"/app"_s, m_dumps.baseUrl());
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(service, false)), false);
        QCOMPARE(m_dumps.server().requestCount(), 0);
        QVERIFY(!QSettings().contains(u"catalog.lastUpdateCheck"_s));
    }

    void failedCheckIsNotRetriedThatDay()
    {
        CatalogDatabaseService unreachable(TestEnvironment::temporaryRoot() + u"/app"_s, QUrl(u"http://127.0.0.1:9"_s));
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(unreachable, true)), false);
        QVERIFY(QSettings().value(u"catalog.lastUpdateCheck"_s).typeId() == QMetaType::QDateTime);
        CatalogDatabaseService service(TestEnvironment::temporaryRoot() + u"/app"_s, m_dumps.baseUrl());
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(service, true)), false);
        QCOMPARE(m_dumps.server().requestCount(), 0);
    }

    void newerDumpsStartABuild()
    {
        CatalogDatabaseService service(TestEnvironment::temporaryRoot() + u"/app"_s, m_dumps.baseUrl());
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Tue, 01 Apr 2026 06:00:00 GMT"_s);
        QCOMPARE(QCoro::waitFor(DailyCatalogCheck::run(service, true)), true);
        QCOMPARE(service.state().kind, CatalogDatabaseService::State::Kind::working);
        service.cancelCurrentTask();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, CatalogDatabaseService::State::Kind::idle, 60'000);
    }
};

QTEST_GUILESS_MAIN(DailyCatalogCheckTest)
#include "DailyCatalogCheckTest.moc"
