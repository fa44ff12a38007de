// SPDX-License-Identifier: GPL-3.0-or-later
// Replays every kept set list file (hand-written seeds and whatever the fuzzers find) through
// the checks the two fuzzers make. A ".csv" file is expected of Rebrickable's reader and an
// ".xml" file of BrickLink's: named "value-…" it must read into entries and skipped rows
// that keep the rules, "unrecognised-…" (CSV) must not be recognised, "unreadable-…" (XML)
// must be unreadable. Every file also goes through the other reader, and a file of any other
// name through both, where it need only not break. Then a bounded run of mutations of those
// files for each reader, so that the suite keeps fuzzing them on every build, with or
// without libFuzzer.
#include "SetListReadersFuzzCheck.h"

#include "ByteMutator.h"

#include <QDeadlineTimer>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

#include <array>

using namespace Qt::StringLiterals;
using Verdict = SetListReadersFuzzCheck::Verdict;

Q_DECLARE_METATYPE(Verdict)

namespace {

const QString keptFiles = QStringLiteral(SETLIST_FUZZ_REGRESSIONS_DIR);

// Two seconds per reader keeps the whole test within five.
constexpr int mutationMilliseconds = 2000;

const ByteMutator &csvMutator()
{
    static const ByteMutator csvBytes(",\"\n\r\t -+.e0123456789",
                                      {
                                          "\"\"", "\r\n", ",\"", "\",", "Set Number", "Quantity", "Includes Spares",
                                          "Inventory Ver", "SET NUMBER", "True", "1000", "1001", "0",
                                          "99999999999999999999999999", "\xE2\x80\xA8", "\xC2\x85", "\xEF\xBB\xBF",
                                          "\xC2\xA0", "\xE3\x80\x80", "\xFF", "75192-1",
                                      },
                                      64);
    return csvBytes;
}

const ByteMutator &xmlMutator()
{
    static const ByteMutator xmlBytes("<>/=\"'&;#![]?- \n\r\tS0123456789",
                                      {
                                          "<INVENTORY>", "</INVENTORY>", "<ITEM>", "</ITEM>", "<ITEMTYPE>S</ITEMTYPE>",
                                          "<ITEMTYPE>", "</ITEMTYPE>", "<ITEMID>", "</ITEMID>", "<MINQTY>", "</MINQTY>",
                                          "<QTY>", "</QTY>", "<inventory>", "<item>", "<!DOCTYPE INVENTORY [", "]>",
                                          "<!ENTITY a \"x\">", "&a;", "&amp;", "&#x41;", "&#0;", "<![CDATA[", "]]>",
                                          "<!--", "-->", "<?xml version=\"1.0\"?>", "<?pi x?>",
                                          "encoding=\"ISO-8859-1\"", "\xEF\xBB\xBF", "\xFF", "1000", "1001",
                                      },
                                      64);
    return xmlBytes;
}

QList<QByteArray> keptFilesEndingIn(const QString &suffix)
{
    QList<QByteArray> files;
    QDirIterator inputs(keptFiles, {u"*"_s + suffix}, QDir::Files);
    while (inputs.hasNext()) {
        QFile file(inputs.next());
        if (file.open(QIODevice::ReadOnly))
            files.append(file.readAll());
    }
    return files;
}

Verdict expectedVerdict(const QString &name)
{
    if (name.startsWith(u"unrecognised-"_s))
        return Verdict::notRecognised;
    if (name.startsWith(u"unreadable-"_s))
        return Verdict::unreadable;
    return Verdict::value;
}

using Check = Verdict (*)(QByteArrayView);

struct MutationRun
{
    std::array<qint64, 4> verdicts{}; // by Verdict
    QString failure;                  // the first input that broke a rule or was slow
};

// Mutations of `files` through `check` until the time is up or an input fails.
MutationRun mutate(const QList<QByteArray> &files, const ByteMutator &mutator, Check check, QRandomGenerator &random)
{
    MutationRun run;
    QDeadlineTimer deadline(mutationMilliseconds);
    while (!deadline.hasExpired()) {
        QByteArray body = files.at(random.bounded(int(files.size())));
        const int changes = 1 + random.bounded(4);
        for (int change = 0; change < changes; ++change)
            body = mutator.mutated(std::move(body), files, random);
        QElapsedTimer one;
        one.start();
        const Verdict verdict = check(body);
        if (verdict == Verdict::broken) {
            run.failure = u"Broken by: "_s + QString::fromLatin1(body.toBase64());
            break;
        }
        if (one.elapsed() >= 1000) {
            run.failure = u"Slow input: "_s + QString::fromLatin1(body.toBase64());
            break;
        }
        ++run.verdicts[std::size_t(verdict)];
    }
    return run;
}

} // namespace

class SetListReadersFuzzRegressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeptFileReadsAsItsNameSays_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator inputs(keptFiles, QDir::Files);
        while (inputs.hasNext()) {
            const QString path = inputs.next();
            QTest::newRow(qUtf8Printable(QFileInfo(path).fileName())) << path;
        }
    }

    void everyKeptFileReadsAsItsNameSays()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray body = file.readAll();
        const QString name = QFileInfo(path).fileName();
        const Verdict rebrickable = SetListReadersFuzzCheck::rebrickableVerdict(body);
        const Verdict brickLink = SetListReadersFuzzCheck::brickLinkVerdict(body);
        QVERIFY(rebrickable != Verdict::broken);
        QVERIFY(brickLink != Verdict::broken);
        if (name.endsWith(u".csv"_s))
            QCOMPARE(rebrickable, expectedVerdict(name));
        else if (name.endsWith(u".xml"_s))
            QCOMPARE(brickLink, expectedVerdict(name));
    }

    void mutatedRebrickableFilesKeepTheRulesForTwoSeconds()
    {
        const QList<QByteArray> files = keptFilesEndingIn(u".csv"_s);
        QVERIFY(!files.isEmpty());
        // A fixed seed: a failure found here comes back on every run until it is fixed.
        QRandomGenerator random(20261125);
        const MutationRun run = mutate(files, csvMutator(), &SetListReadersFuzzCheck::rebrickableVerdict, random);
        QVERIFY2(run.failure.isEmpty(), qPrintable(run.failure));
        const std::array<qint64, 4> &verdicts = run.verdicts;
        qInfo("Rebrickable: %lld mutated files read, %lld not recognised", verdicts[std::size_t(Verdict::value)],
              verdicts[std::size_t(Verdict::notRecognised)]);
        // The mutations reach both ends: some files still read, others are not recognised.
        QVERIFY(verdicts[std::size_t(Verdict::value)] > 0);
        QVERIFY(verdicts[std::size_t(Verdict::notRecognised)] > 0);
    }

    void mutatedBrickLinkFilesKeepTheRulesForTwoSeconds()
    {
        const QList<QByteArray> files = keptFilesEndingIn(u".xml"_s);
        QVERIFY(!files.isEmpty());
        QRandomGenerator random(20261125);
        const MutationRun run = mutate(files, xmlMutator(), &SetListReadersFuzzCheck::brickLinkVerdict, random);
        QVERIFY2(run.failure.isEmpty(), qPrintable(run.failure));
        const std::array<qint64, 4> &verdicts = run.verdicts;
        qInfo("BrickLink: %lld mutated files read, %lld unreadable", verdicts[std::size_t(Verdict::value)],
              verdicts[std::size_t(Verdict::unreadable)]);
        QVERIFY(verdicts[std::size_t(Verdict::value)] > 0);
        QVERIFY(verdicts[std::size_t(Verdict::unreadable)] > 0);
    }

    void theKeptFilesCoverBothReadersAndEveryOutcome()
    {
        QDir directory(keptFiles);
        QVERIFY(directory.entryList({u"value-*.csv"_s}, QDir::Files).size() >= 3);
        QVERIFY(directory.entryList({u"unrecognised-*.csv"_s}, QDir::Files).size() >= 2);
        QVERIFY(directory.entryList({u"value-*.xml"_s}, QDir::Files).size() >= 2);
        QVERIFY(directory.entryList({u"unreadable-*.xml"_s}, QDir::Files).size() >= 3);
    }
};

QTEST_GUILESS_MAIN(SetListReadersFuzzRegressionTest)
#include "SetListReadersFuzzRegressionTest.moc"
