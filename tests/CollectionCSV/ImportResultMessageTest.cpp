// SPDX-License-Identifier: GPL-3.0-or-later
// The message that sums up a finished import, and the texts around it, in English.
#include "TestEnvironment.h"

#include "Services/ImportResultMessage.h"
#include "Views/TranslationLoader.h"

#include <QTest>

using namespace Qt::StringLiterals;
using CSVExportImportService::ImportResult;

class ImportResultMessageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void partsAppearInOrderJoinedByCommasAndClosedByAFullStop_data()
    {
        QTest::addColumn<qint64>("created");
        QTest::addColumn<qint64>("updated");
        QTest::addColumn<int>("errors");
        QTest::addColumn<QString>("message");
        QTest::newRow("all three") << qint64(3) << qint64(12) << 2 << u"3 set(s) added, 12 set(s) updated, 2 row(s) skipped."_s;
        QTest::newRow("added only") << qint64(1) << qint64(0) << 0 << u"1 set(s) added."_s;
        QTest::newRow("updated only") << qint64(0) << qint64(10000) << 0 << u"10000 set(s) updated."_s;
        QTest::newRow("skipped only") << qint64(0) << qint64(0) << 7 << u"7 row(s) skipped."_s;
        QTest::newRow("added and skipped") << qint64(5) << qint64(0) << 1 << u"5 set(s) added, 1 row(s) skipped."_s;
    }

    void partsAppearInOrderJoinedByCommasAndClosedByAFullStop()
    {
        QFETCH(qint64, created);
        QFETCH(qint64, updated);
        QFETCH(int, errors);
        QFETCH(QString, message);
        ImportResult result{created, updated, {}};
        for (int index = 0; index < errors; ++index)
            result.errors.append(u"Line %1: missing id"_s.arg(index + 2));
        QCOMPARE(ImportResultMessage::text(result), message);
    }

    void noPartAtAllGivesTheNoChangesText()
    {
        QCOMPARE(ImportResultMessage::text(ImportResult{}), u"No changes were made."_s);
    }

    void errorTextsThemselvesAreNotShown()
    {
        const QString message = ImportResultMessage::text(ImportResult{0, 1, {u"Line 2: missing set_number"_s}});
        QVERIFY(!message.contains(u"Line"_s));
        QCOMPARE(message, u"1 set(s) updated, 1 row(s) skipped."_s);
    }

    void alertTextsHaveTheirEnglishWords()
    {
        QCOMPARE(ImportResultMessage::completeTitle(), u"Import Complete"_s);
        QCOMPARE(ImportResultMessage::failedTitle(), u"Import Failed"_s);
        QCOMPARE(ImportResultMessage::okButton(), u"OK"_s);
        QVERIFY(!ImportResultMessage::fileAccessError().startsWith(u"import."_s));
    }
};

QTEST_GUILESS_MAIN(ImportResultMessageTest)
#include "ImportResultMessageTest.moc"
