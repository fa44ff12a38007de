// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/DebouncedSettingWriter.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QString searchKey = u"themeBrowser.searchText"_s;
} // namespace

class DebouncedSettingWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init() { QSettings().clear(); }

    void typingTenCharactersQuicklyWritesOnceAfterThePause()
    {
        DebouncedSettingWriter writer(searchKey, 200ms);
        QSignalSpy written(&writer, &DebouncedSettingWriter::written);
        QString text;
        for (const QChar character : u"millennium"_s) {
            text += character;
            writer.setValue(text);
        }
        QCOMPARE(text.size(), 10);
        QCOMPARE(written.count(), 0);
        QVERIFY(!QSettings().contains(searchKey));
        QVERIFY(written.wait(2000));
        QCOMPARE(written.count(), 1);
        QCOMPARE(written.first().first().toString(), u"millennium"_s);
        QCOMPARE(QSettings().value(searchKey).toString(), u"millennium"_s);
        QVERIFY(!written.wait(400));
        QCOMPARE(written.count(), 1);
    }

    void theLastValueIsStoredWhenTheWriterGoesAway()
    {
        {
            DebouncedSettingWriter writer(searchKey, 10s);
            writer.setValue(u"castle"_s);
            writer.setValue(u"castles"_s);
            QVERIFY(writer.hasPendingValue());
            QVERIFY(!QSettings().contains(searchKey));
        }
        QCOMPARE(QSettings().value(searchKey).toString(), u"castles"_s);
    }

    void flushWritesAtOnceAndLeavesNothingForThePause()
    {
        DebouncedSettingWriter writer(searchKey, 200ms);
        QSignalSpy written(&writer, &DebouncedSettingWriter::written);
        writer.setValue(u"ship"_s);
        writer.flush();
        QCOMPARE(written.count(), 1);
        QCOMPARE(QSettings().value(searchKey).toString(), u"ship"_s);
        QVERIFY(!writer.hasPendingValue());
        QVERIFY(!written.wait(400));
        QCOMPARE(written.count(), 1);
    }

    void anEmptiedTextIsStoredAsEmpty()
    {
        QSettings().setValue(searchKey, u"castle"_s);
        {
            DebouncedSettingWriter writer(searchKey, 10s);
            writer.setValue(QString());
        }
        QVERIFY(QSettings().contains(searchKey));
        QCOMPARE(QSettings().value(searchKey).toString(), QString());
    }

    void aWriterWithNothingWaitingWritesNothing()
    {
        {
            DebouncedSettingWriter writer(searchKey, 200ms);
            QSignalSpy written(&writer, &DebouncedSettingWriter::written);
            writer.flush();
            QCOMPARE(written.count(), 0);
        }
        QVERIFY(!QSettings().contains(searchKey));
    }

    // Last: it runs the application's event loop to its end.
    void theApplicationQuittingWritesTheWaitingValue()
    {
        DebouncedSettingWriter writer(searchKey, 10s);
        writer.setValue(u"falcon"_s);
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        QVERIFY(!writer.hasPendingValue());
        QCOMPARE(QSettings().value(searchKey).toString(), u"falcon"_s);
    }
};

QTEST_GUILESS_MAIN(DebouncedSettingWriterTest)
#include "DebouncedSettingWriterTest.moc"
