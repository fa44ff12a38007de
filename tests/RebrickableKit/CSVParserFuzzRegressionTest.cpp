// SPDX-License-Identifier: GPL-3.0-or-later
// Replays every input the CSV fuzzer has kept (crashes, mismatches and seeds) through the
// same check the fuzzer makes, so that none of them comes back.
#include "CSVParserFuzzCheck.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class CSVParserFuzzRegressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeptInputPassesTheFuzzCheck_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator inputs(QStringLiteral(CSV_FUZZ_REGRESSIONS_DIR), QDir::Files);
        int count = 0;
        while (inputs.hasNext()) {
            const QString path = inputs.next();
            QTest::newRow(qUtf8Printable(QFileInfo(path).fileName())) << path;
            ++count;
        }
        if (count == 0)
            QTest::newRow("no kept inputs") << QString();
    }

    void everyKeptInputPassesTheFuzzCheck()
    {
        QFETCH(QString, path);
        QByteArray input;
        if (!path.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            input = file.readAll();
        }
        QVERIFY(CSVParserFuzzCheck::check(input));
    }
};

QTEST_GUILESS_MAIN(CSVParserFuzzRegressionTest)
#include "CSVParserFuzzRegressionTest.moc"
