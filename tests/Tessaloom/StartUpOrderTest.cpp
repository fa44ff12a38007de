// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "Views/TessaloomApp.h"

#include <QApplication>
#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

// The program's entry creates the process-wide objects in a fixed order before any window
// exists: the store, the network monitor, the update service, then the first-run defaults.
// Each announces itself in the log as it comes into being, so the log records the order.
class StartUpOrderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LogCapture> m_log;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        qputenv("TESSALOOM_ENDPOINTS", "updates=http://127.0.0.1:9/appcast.xml");
        m_log = std::make_unique<LogCapture>();
    }

    void cleanupTestCase() { m_log.reset(); }

    void storeNetworkMonitorUpdateServiceThenDefaults()
    {
        QVERIFY(!QSettings().contains(u"hasRegisteredDefaults"_s));
        TessaloomApp app;
        const qsizetype store = m_log->indexOfMessageStartingWith(u"Collection store opened:"_s);
        const qsizetype network = m_log->indexOfMessageStartingWith(u"Network monitor started"_s);
        const qsizetype updates = m_log->indexOfMessageStartingWith(u"Update service ready"_s);
        const qsizetype defaults = m_log->indexOfMessageStartingWith(u"Registered defaults"_s);
        QVERIFY2(store >= 0 && network >= 0 && updates >= 0 && defaults >= 0, qPrintable(m_log->messages().join(u'\n')));
        QVERIFY(store < network);
        QVERIFY(network < updates);
        QVERIFY(updates < defaults);
        QVERIFY(!app.showCatalogSetup());
        QVERIFY(!app.mainWindow()); // no window before the start-up is complete
        QVERIFY(QSettings().value(u"hasRegisteredDefaults"_s).toBool());
    }
};

QTEST_MAIN(StartUpOrderTest)
#include "StartUpOrderTest.moc"
