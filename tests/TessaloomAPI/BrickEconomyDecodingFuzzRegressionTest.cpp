// SPDX-License-Identifier: GPL-3.0-or-later
// Replays every kept BrickEconomy answer (hand-written seeds and whatever the fuzzer finds)
// through the same check the fuzzer makes. A file named "value-…" must decode into results
// that keep the mapping's rules, "error-…" must be refused with a decoding error; any other
// name need only not break.
#include "BrickEconomyDecodingFuzzCheck.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using Verdict = BrickEconomyDecodingFuzzCheck::Verdict;

Q_DECLARE_METATYPE(Verdict)

class BrickEconomyDecodingFuzzRegressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeptAnswerEndsInAValueOrADecodingError_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator inputs(QStringLiteral(BRICKECONOMY_FUZZ_REGRESSIONS_DIR), QDir::Files);
        while (inputs.hasNext()) {
            const QString path = inputs.next();
            QTest::newRow(qUtf8Printable(QFileInfo(path).fileName())) << path;
        }
    }

    void everyKeptAnswerEndsInAValueOrADecodingError()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray body = file.readAll();
        const Verdict verdict = BrickEconomyDecodingFuzzCheck::verdict(body);
        const QString name = QFileInfo(path).fileName();
        if (name.startsWith(u"value-"_s))
            QCOMPARE(verdict, Verdict::value);
        else if (name.startsWith(u"error-"_s))
            QCOMPARE(verdict, Verdict::decodingError);
        else
            QVERIFY(verdict != Verdict::broken);
    }

    void theKeptAnswersCoverValuesAndErrors()
    {
        QDir directory(QStringLiteral(BRICKECONOMY_FUZZ_REGRESSIONS_DIR));
        QVERIFY(directory.entryList({u"value-*"_s}, QDir::Files).size() >= 5);
        QVERIFY(directory.entryList({u"error-*"_s}, QDir::Files).size() >= 10);
    }
};

QTEST_GUILESS_MAIN(BrickEconomyDecodingFuzzRegressionTest)
#include "BrickEconomyDecodingFuzzRegressionTest.moc"
