// SPDX-License-Identifier: GPL-3.0-or-later
// Records written by CSVCodec read back as the same records: texts that need quotes or are
// far from ASCII, the largest and smallest decimals, absent values, and dates at the edges
// of days in time zones on both sides of UTC. Also what does not come back: fractions of a
// second, empty texts (absent), and line breaks inside a field (the reader cuts the row).
#include "CSVCodec.h"
#include "CSVValueFormat.h"

#include <QRandomGenerator>
#include <QTest>

#include <array>
#include <ctime>

using namespace Qt::StringLiterals;

// Failure messages show a record as the line the codec writes for it.
char *toString(const InventoryRecord &record)
{
    return qstrdup(CSVCodec::encode({record}).section(u'\n', 1).toUtf8().constData());
}

namespace {

// POSIX rules rather than zone names, so the test does not depend on installed zone data:
// New Zealand (UTC+12, +13 in its summer) and the US Pacific coast (UTC−8, −7 in summer).
const QByteArray newZealand = "NZST-12NZDT,M9.5.0,M4.1.0/3";
const QByteArray pacific = "PST8PDT,M3.2.0,M11.1.0";

void useTimeZone(const std::optional<QByteArray> &rule)
{
    if (rule)
        qputenv("TZ", *rule);
    else
        qunsetenv("TZ");
    tzset();
}

Decimal decimal(const QString &text)
{
    const std::optional<Decimal> value = Decimal::fromString(text);
    if (!value)
        qFatal("not a decimal: %s", qPrintable(text));
    return *value;
}

InventoryRecord fullRecord()
{
    InventoryRecord record;
    record.id = QUuid::fromString(u"0f8fad5b-d9cb-469f-a165-70867728950e"_s);
    record.setNumber = u"75192-1"_s;
    record.setName = u"Millennium Falcon"_s;
    record.year = 2017;
    record.theme = u"Star Wars"_s;
    record.pieceCount = 7541;
    record.dateAdded = QDateTime(QDate(2026, 11, 24), QTime(23, 59, 59), Qt::UTC);
    record.isFavorite = true;
    record.rating = 5;
    record.notes = u"Ultimate Collector Series"_s;
    record.acquisitionType = AcquisitionType::gift;
    record.acquisitionDate = QDateTime(QDate(2017, 10, 1), QTime(0, 0), Qt::UTC);
    record.acquisitionSource = u"Family"_s;
    record.pricePaid = decimal(u"799.99"_s);
    record.priceCurrency = u"USD"_s;
    record.overallCondition = OverallCondition::used;
    record.boxCondition = BoxCondition::fair;
    record.instructionsCondition = InstructionsCondition::poor;
    record.builtStatus = BuiltStatus::built;
    record.stickerStatus = StickerStatus::applied;
    record.completeness = SetCompleteness::incomplete;
    record.isDisposed = true;
    record.disposalType = DisposalType::traded;
    record.disposalDate = QDateTime(QDate(2025, 12, 31), QTime(12, 0), Qt::UTC);
    record.disposalPrice = decimal(u"1200"_s);
    record.disposalCurrency = u"EUR"_s;
    record.disposalNotes = u"Traded for a UCS Star Destroyer"_s;
    record.isTrashed = true;
    record.trashedDate = QDateTime(QDate(2026, 1, 1), QTime(0, 0, 1), Qt::UTC);
    return record;
}

QList<InventoryRecord> roundTripped(const QList<InventoryRecord> &records)
{
    const CSVCodec::DecodeResult result = CSVCodec::decode(CSVCodec::encode(records));
    if (!result.errors.isEmpty())
        qWarning("rows rejected: %s", qPrintable(result.errors.join(u"; "_s)));
    return result.records;
}

// Text of the kind people paste into notes: anything but line ends, with no blank at
// either end (the reader trims those).
QString randomText(QRandomGenerator &random)
{
    static const QString alphabet = u"abcXYZ019 ,\",,\"\"'=+-@;:\t\\/|{}[]éüßøÆ–—…™€£¥ñ漢字かな한국어עבריתالعربية🧱🚀👍🏽\u0301\u200D"_s;
    const int length = random.bounded(0, 40);
    QString text;
    for (int index = 0; index < length; ++index) {
        const qsizetype at = random.bounded(int(alphabet.size()));
        text.append(alphabet.at(at));
        // Keep surrogate pairs whole.
        if (alphabet.at(at).isHighSurrogate())
            text.append(alphabet.at(at + 1));
        else if (alphabet.at(at).isLowSurrogate())
            text.insert(text.size() - 1, alphabet.at(at - 1));
    }
    while (!text.isEmpty() && (text.front() == u' ' || text.front() == u'\t'))
        text.remove(0, 1);
    while (!text.isEmpty() && (text.back() == u' ' || text.back() == u'\t'))
        text.chop(1);
    return text;
}

std::optional<QString> randomOptionalText(QRandomGenerator &random)
{
    const QString text = randomText(random);
    return text.isEmpty() ? std::nullopt : std::optional<QString>(text);
}

template <ClosedVocabulary E>
std::optional<E> randomCase(QRandomGenerator &random)
{
    const QList<E> cases = Vocabulary::allCases<E>();
    const int pick = random.bounded(int(cases.size()) + 1);
    return pick == cases.size() ? std::nullopt : std::optional<E>(cases.at(pick));
}

std::optional<QDateTime> randomDate(QRandomGenerator &random)
{
    if (random.bounded(4) == 0)
        return std::nullopt;
    // Any second from year 1 to year 9999.
    const qint64 seconds = random.bounded(qint64(-62'135'596'800), qint64(253'402'300'799));
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

std::optional<Decimal> randomDecimal(QRandomGenerator &random)
{
    if (random.bounded(4) == 0)
        return std::nullopt;
    QString text = random.bounded(2) ? u"-"_s : QString();
    const int digits = random.bounded(1, 39);
    for (int index = 0; index < digits; ++index)
        text.append(QChar(char16_t(u'0' + random.bounded(10))));
    text += u"e"_s + QString::number(random.bounded(-60, 60));
    return Decimal::fromString(text);
}

InventoryRecord randomRecord(QRandomGenerator &random)
{
    InventoryRecord record;
    const std::array<quint64, 2> idBytes{random.generate64(), random.generate64()};
    record.id = QUuid::fromRfc4122(QByteArrayView(reinterpret_cast<const char *>(idBytes.data()), 16));
    do
        record.setNumber = randomText(random);
    while (record.setNumber.isEmpty());
    record.setName = randomOptionalText(random);
    record.year = random.bounded(3) ? std::optional<qint64>(random.bounded(-5000, 5000)) : std::nullopt;
    record.theme = randomOptionalText(random);
    record.pieceCount = random.bounded(3) ? std::optional<qint64>(qint64(random.generate64())) : std::nullopt;
    record.dateAdded = randomDate(random).value_or(QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
    record.isFavorite = random.bounded(2);
    record.rating = qint64(random.generate64());
    record.notes = randomOptionalText(random);
    record.acquisitionType = randomCase<AcquisitionType>(random);
    record.acquisitionDate = randomDate(random);
    record.acquisitionSource = randomOptionalText(random);
    record.pricePaid = randomDecimal(random);
    record.priceCurrency = randomOptionalText(random);
    record.overallCondition = randomCase<OverallCondition>(random);
    record.boxCondition = randomCase<BoxCondition>(random);
    record.instructionsCondition = randomCase<InstructionsCondition>(random);
    record.builtStatus = randomCase<BuiltStatus>(random);
    record.stickerStatus = randomCase<StickerStatus>(random);
    record.completeness = randomCase<SetCompleteness>(random);
    record.isDisposed = random.bounded(2);
    record.disposalType = randomCase<DisposalType>(random);
    record.disposalDate = randomDate(random);
    record.disposalPrice = randomDecimal(random);
    record.disposalCurrency = randomOptionalText(random);
    record.disposalNotes = randomOptionalText(random);
    record.isTrashed = random.bounded(2);
    record.trashedDate = randomDate(random);
    return record;
}

} // namespace

class CSVCodecRoundTripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        useTimeZone(m_originalTimeZone);
    }

    void recordWithEveryFieldSetComesBackTheSame()
    {
        const QList<InventoryRecord> records{fullRecord()};
        QCOMPARE(roundTripped(records), records);
    }

    void recordsComeBackInTheirOrder()
    {
        InventoryRecord second = fullRecord();
        second.id = QUuid::fromString(u"{1b4e28ba-2fa1-11d2-883f-0016d3cca427}"_s);
        second.setNumber = u"10497-1"_s;
        InventoryRecord third = fullRecord();
        third.id = QUuid();
        third.setNumber = u"6080-1"_s;
        const QList<InventoryRecord> records{fullRecord(), second, third};
        QCOMPARE(roundTripped(records), records);
    }

    void hardTextsComeBackTheSame_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("accents and symbols") << u"Château d'Ýsé™ – 50 % off €"_s;
        QTest::newRow("scripts") << u"レゴ 星際大戰 העיר البناء Ελληνικά"_s;
        QTest::newRow("outside the basic plane") << u"🧱 Brick 🚀 𝔘𝔫𝔦𝔠𝔬𝔡𝔢 👩🏽‍🚀"_s;
        QTest::newRow("combining marks") << u"e\u0301 a\u0308 n\u0303"_s;
        QTest::newRow("comma") << u"Police Station, Modular"_s;
        QTest::newRow("quotes") << u"The \"Classic\" Space"_s;
        QTest::newRow("quotes and commas") << u"\"\",\",\"\",,"_s;
        QTest::newRow("only a quote") << u"\""_s;
        QTest::newRow("only a comma") << u","_s;
        QTest::newRow("quote at both ends") << u"\"quoted\""_s;
        QTest::newRow("inner tab and blanks") << u"left\t\t   right"_s;
        QTest::newRow("formula") << u"=SUM(A1:A9),+1,-1,@x"_s;
        QTest::newRow("backslashes") << u"C:\\LEGO\\\"sets\"\\"_s;
        QTest::newRow("no-break space inside") << u"10\u00A0000"_s;
        QTest::newRow("zero-width joiner") << u"a\u200Db"_s;
        QTest::newRow("long") << QString(20'000, u'x') + u",\""_s;
    }

    void hardTextsComeBackTheSame()
    {
        QFETCH(QString, text);
        InventoryRecord record = fullRecord();
        record.setNumber = text;
        record.setName = text;
        record.theme = text;
        record.notes = text;
        record.acquisitionSource = text;
        record.priceCurrency = text;
        record.disposalCurrency = text;
        record.disposalNotes = text;
        const QList<InventoryRecord> records{record, fullRecord()};
        QCOMPARE(roundTripped(records), records);
        // And as bytes: a UTF-8 file written and read again.
        const QByteArray bytes = CSVCodec::encode(records).toUtf8();
        QVERIFY(!bytes.startsWith("\xEF\xBB\xBF"));
        QCOMPARE(CSVCodec::decode(CSVFieldSyntax::textFromUtf8(bytes)).records, records);
    }

    void largestAndSmallestDecimalsComeBackTheSame_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("38 nines") << QString(38, u'9');
        QTest::newRow("minus 38 nines") << u"-"_s + QString(38, u'9');
        QTest::newRow("38 digits with a fraction") << u"1234567890123456789.0123456789012345678"_s;
        QTest::newRow("38 nines, 3962 zeros") << QString(38, u'9') + QString(3962, u'0');
        QTest::newRow("38 nines, 4000 places") << u"0."_s + QString(3962, u'0') + QString(38, u'9');
        QTest::newRow("smallest step") << u"0."_s + QString(3999, u'0') + u"1"_s;
        QTest::newRow("zero") << u"0"_s;
        QTest::newRow("cents") << u"0.01"_s;
    }

    void largestAndSmallestDecimalsComeBackTheSame()
    {
        QFETCH(QString, text);
        const Decimal value = decimal(text);
        QCOMPARE(value.toString(), text);
        InventoryRecord record = fullRecord();
        record.pricePaid = value;
        record.disposalPrice = -value;
        const QList<InventoryRecord> back = roundTripped({record});
        QCOMPARE(back, QList<InventoryRecord>{record});
        QCOMPARE(back.first().pricePaid->toString(), text);
    }

    void absentValuesStayAbsent()
    {
        InventoryRecord record;
        record.id = QUuid::fromString(u"0f8fad5b-d9cb-469f-a165-70867728950e"_s);
        record.setNumber = u"1-1"_s;
        record.dateAdded = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
        const QList<InventoryRecord> back = roundTripped({record});
        QCOMPARE(back, QList<InventoryRecord>{record});
        const InventoryRecord &read = back.first();
        QCOMPARE(read.setName, std::nullopt);
        QCOMPARE(read.year, std::nullopt);
        QCOMPARE(read.pieceCount, std::nullopt);
        QCOMPARE(read.pricePaid, std::nullopt);
        QCOMPARE(read.acquisitionType, std::nullopt);
        QCOMPARE(read.completeness, std::nullopt);
        QCOMPARE(read.trashedDate, std::nullopt);
        QCOMPARE(read.dateAdded, QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
    }

    void emptyTextsComeBackAbsent()
    {
        InventoryRecord record = fullRecord();
        record.setName = QString();
        record.notes = u""_s;
        const InventoryRecord read = roundTripped({record}).first();
        QCOMPARE(read.setName, std::nullopt);
        QCOMPARE(read.notes, std::nullopt);
    }

    void zeroIntegersAreValuesNotAbsence()
    {
        InventoryRecord record = fullRecord();
        record.year = 0;
        record.pieceCount = 0;
        record.rating = 0;
        QCOMPARE(roundTripped({record}), QList<InventoryRecord>{record});
    }

    void datesAtDayBoundariesComeBackTheSameInTwoTimeZones_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<int>("summerOffsetHours");
        QTest::newRow("New Zealand") << newZealand << 13;
        QTest::newRow("US Pacific") << pacific << -7;
    }

    void datesAtDayBoundariesComeBackTheSameInTwoTimeZones()
    {
        QFETCH(QByteArray, zone);
        QFETCH(int, summerOffsetHours);
        useTimeZone(zone);
        // The zone took effect: its summer offset on a summer day of its own hemisphere.
        const QDate summerDay = summerOffsetHours > 0 ? QDate(2026, 1, 15) : QDate(2026, 7, 15);
        QCOMPARE(summerDay.startOfDay(Qt::LocalTime).offsetFromUtc(), summerOffsetHours * 3600);

        const QList<QDate> days{QDate(2026, 1, 1), QDate(2025, 12, 31), QDate(2026, 3, 8),   QDate(2026, 4, 5),
                                QDate(2026, 9, 27), QDate(2026, 11, 1), QDate(2024, 2, 29), QDate(1970, 1, 1)};
        QList<InventoryRecord> records;
        for (const QDate &day : days) {
            InventoryRecord record = fullRecord();
            record.dateAdded = day.startOfDay(Qt::LocalTime);
            record.acquisitionDate = QDateTime(day, QTime(23, 59, 59), Qt::LocalTime);
            record.disposalDate = day.startOfDay(Qt::UTC);
            record.trashedDate = QDateTime(day, QTime(23, 59, 59), Qt::UTC);
            records.append(record);
        }
        const QString text = CSVCodec::encode(records);
        QCOMPARE(CSVCodec::decode(text).records, records);

        // Written in UTC: local midnight of New Year's Day lies on the previous day in
        // New Zealand and on the same day on the Pacific coast.
        const QString newYear = text.split(u'\n').at(1).split(u',').at(6);
        QCOMPARE(newYear, summerOffsetHours > 0 ? u"2025-12-31T11:00:00Z"_s : u"2026-01-01T08:00:00Z"_s);
    }

    void dayFormReadsAsMidnightOfTheLocalTimeZone_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("expected");
        QTest::newRow("New Zealand") << newZealand << u"2026-03-14T11:00:00Z"_s;
        QTest::newRow("US Pacific") << pacific << u"2026-03-15T07:00:00Z"_s;
        QTest::newRow("UTC") << QByteArray("UTC0") << u"2026-03-15T00:00:00Z"_s;
    }

    void dayFormReadsAsMidnightOfTheLocalTimeZone()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, expected);
        useTimeZone(zone);
        const QString text = CSVCodec::headerLine() + u"\n0f8fad5b-d9cb-469f-a165-70867728950e,1-1,,,,,2026-03-15"_s;
        const QList<InventoryRecord> records = CSVCodec::decode(text).records;
        QCOMPARE(records.size(), 1);
        QCOMPARE(CSVValueFormat::dateText(records.first().dateAdded), expected);
    }

    void fractionsOfASecondAreCutOnWriting()
    {
        InventoryRecord record = fullRecord();
        record.dateAdded = QDateTime(QDate(2026, 11, 24), QTime(23, 59, 59, 999), Qt::UTC);
        record.trashedDate = QDateTime::fromMSecsSinceEpoch(-1, Qt::UTC);
        const InventoryRecord read = roundTripped({record}).first();
        QCOMPARE(read.dateAdded, QDateTime(QDate(2026, 11, 24), QTime(23, 59, 59), Qt::UTC));
        QCOMPARE(read.trashedDate, QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59), Qt::UTC));
    }

    void lineBreaksInAFieldCutTheRowOnReading_data()
    {
        QTest::addColumn<QString>("lineBreak");
        QTest::newRow("line feed") << u"\n"_s;
        QTest::newRow("carriage return") << u"\r"_s;
        QTest::newRow("both") << u"\r\n"_s;
        QTest::newRow("line separator") << u"\u2028"_s;
    }

    void lineBreaksInAFieldCutTheRowOnReading()
    {
        QFETCH(QString, lineBreak);
        InventoryRecord record = fullRecord();
        record.notes = u"before"_s + lineBreak + u"after"_s;
        const QString text = CSVCodec::encode({record});
        const CSVCodec::DecodeResult result = CSVCodec::decode(text);
        QCOMPARE(result.records.size(), 1);
        const InventoryRecord &read = result.records.first();
        // Everything before the notes is kept; the notes end at the break and the later
        // columns are absent.
        QCOMPARE(read.setName, record.setName);
        QCOMPARE(read.rating, record.rating);
        QCOMPARE(read.notes, u"before"_s);
        QCOMPARE(read.acquisitionType, std::nullopt);
        QCOMPARE(read.isTrashed, false);
        QCOMPARE(result.errors, QStringList{u"Line 3: missing id or set_number"_s});
    }

    void aThousandRandomRecordsComeBackTheSame()
    {
        // A fixed seed: a failure comes back on every run until it is fixed.
        QRandomGenerator random(20261125);
        QList<InventoryRecord> records;
        for (int index = 0; index < 1000; ++index)
            records.append(randomRecord(random));
        const QList<InventoryRecord> back = roundTripped(records);
        QCOMPARE(back.size(), records.size());
        for (qsizetype index = 0; index < records.size(); ++index)
            QCOMPARE(back.at(index), records.at(index));
    }

private:
    const std::optional<QByteArray> m_originalTimeZone =
        qEnvironmentVariableIsSet("TZ") ? std::optional<QByteArray>(qgetenv("TZ")) : std::nullopt;
};

QTEST_GUILESS_MAIN(CSVCodecRoundTripTest)
#include "CSVCodecRoundTripTest.moc"
