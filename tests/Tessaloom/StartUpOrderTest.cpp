// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"
#include "Views/TessaloomApp.h"

#include <QApplication>
#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList logged;
QtMessageHandler previousHandler = nullptr;

void record(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    logged.append(message);
    previousHandler(type, context, message);
}

} // namespace

// The program's entry creates the process-wide objects in a fixed order before any window
// exists: the store, the network monitor, the update service, then the first-run defaults.
// Each announces itself in the log as it comes into being, so the log records the order.
class StartUpOrderTest : public QObject
{
    Q_OBJECT

private:
    static qsizetype indexOfLine(const QString &start)
    {
        for (qsizetype index = 0; index < logged.size(); ++index) {
            if (logged.at(index).startsWith(start))
                return index;
        }
        return -1;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        qputenv("TESSALOOM_ENDPOINTS", "updates=http://127.0.0.1:9/appcast.xml");
        previousHandler = qInstallMessageHandler(record);
    }

    void cleanupTestCase() { qInstallMessageHandler(previousHandler); }

    void storeNetworkMonitorUpdateServiceThenDefaults()
    {
        QVERIFY(!QSettings().contains(u"hasRegisteredDefaults"_s));
        TessaloomApp app;
        const qsizetype store = indexOfLine(u"Collection store opened:"_s);
        const qsizetype network = indexOfLine(u"Network monitor started"_s);
        const qsizetype updates = indexOfLine(u"Update service ready"_s);
        const qsizetype defaults = indexOfLine(u"Registered defaults"_s);
        QVERIFY2(store >= 0 && network >= 0 && updates >= 0 && defaults >= 0, qPrintable(logged.join(u'\n')));
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
