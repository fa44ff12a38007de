// SPDX-License-Identifier: GPL-3.0-or-later
// The collection CSV file as CSVCodec writes and reads it: the header, the line and field
// rules, each column's value forms, the errors that refuse a file and the ones that only
// skip a row.
#include "CSVCodec.h"
#include "CSVColumnMap.h"

#include <QLocale>
#include <QTest>

#include <map>

#if defined(Q_OS_UNIX)
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

// Failure messages show a record as the line the codec writes for it.
char *toString(const InventoryRecord &record)
{
    return qstrdup(CSVCodec::encode({record}).section(u'\n', 1).toUtf8().constData());
}

namespace {

const QString someId = u"8D5B2C4E-0F1A-4B7C-9E3D-2A6F1B0C9D8E"_s;

// A data line with the 29 columns, each empty unless `values` names it.
QString row(const std::map<QString, QString> &values)
{
    QStringList fields;
    for (const QString &name : CSVCodec::columnNames()) {
        const auto found = values.find(name);
        fields.append(found == values.end() ? QString() : found->second);
    }
    return fields.join(u',');
}

// A file of the header and the given data lines, joined by line feeds.
QString file(const QStringList &dataLines)
{
    return (QStringList{CSVCodec::headerLine()} + dataLines).join(u'\n');
}

// Decodes a file that must hold exactly one accepted row.
InventoryRecord onlyRecord(const QString &text)
{
    const CSVCodec::DecodeResult result = CSVCodec::decode(text);
    if (result.records.size() != 1 || !result.errors.isEmpty())
        qFatal("expected one record, got %lld and %lld errors", qlonglong(result.records.size()),
               qlonglong(result.errors.size()));
    return result.records.first();
}

InventoryRecord decodedRow(const std::map<QString, QString> &values)
{
    std::map<QString, QString> withRequired = values;
    withRequired.try_emplace(u"id"_s, someId);
    withRequired.try_emplace(u"set_number"_s, u"10497-1"_s);
    return onlyRecord(file({row(withRequired)}));
}

// The kind of DecodeError that decoding `text` throws, with its sentence, or nothing.
std::optional<std::pair<CSVCodec::DecodeError::Kind, QString>> decodeError(const QString &text)
{
    try {
        CSVCodec::decode(text);
    } catch (const CSVCodec::DecodeError &error) {
        return std::pair{error.kind(), error.description()};
    }
    return std::nullopt;
}

InventoryRecord minimalRecord()
{
    InventoryRecord record;
    record.id = QUuid::fromString(someId);
    record.setNumber = u"10497-1"_s;
    record.dateAdded = QDateTime(QDate(2026, 11, 24), QTime(18, 30, 5), Qt::UTC);
    return record;
}

} // namespace

class CSVCodecTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // --- Whole-file errors -------------------------------------------------------------

    void fileOfOnlyBlankLinesFailsAsEmpty()
    {
        const auto error = decodeError(u"\n\r\n\n\r\r\n"_s);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::emptyFile);
        QCOMPARE(error->second, u"The CSV file is empty."_s);
    }

    void emptyTextFailsAsEmptyWithItsSentence()
    {
        const auto error = decodeError(QString());
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::emptyFile);
        QCOMPARE(error->second, u"The CSV file is empty."_s);
        QCOMPARE(QByteArray(CSVCodec::DecodeError(CSVCodec::DecodeError::Kind::emptyFile).what()),
                 QByteArray("The CSV file is empty."));
    }

    void byteOrderMarkBeforeIdMakesTheIdColumnMissing()
    {
        const QString text = u"\uFEFF"_s + file({row({{u"id"_s, someId}, {u"set_number"_s, u"10497-1"_s}})});
        const auto error = decodeError(text);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::missingRequiredColumns);
        QCOMPARE(error->second, u"The CSV file is missing required columns (id, set_number)."_s);
    }

    void byteOrderMarkBytesOfAFileStayInTheFirstColumnName()
    {
        const QByteArray bytes = "\xEF\xBB\xBFid,set_number\n" + someId.toUtf8() + ",10497-1";
        const QString text = CSVFieldSyntax::textFromUtf8(bytes);
        QVERIFY(text.startsWith(u"\uFEFFid,"_s));
        const auto error = decodeError(text);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::missingRequiredColumns);
        // Without a mark the same bytes read.
        QCOMPARE(CSVCodec::decode(CSVFieldSyntax::textFromUtf8(bytes.sliced(3))).records.size(), 1);
    }

    void headerWithoutSetNumberIsRefusedWithTheSameSentence()
    {
        const auto error = decodeError(u"id,set_name\n"_s + someId + u",Galaxy Explorer"_s);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::missingRequiredColumns);
        QCOMPARE(error->second, u"The CSV file is missing required columns (id, set_number)."_s);
    }

    void headerWithoutIdIsRefused()
    {
        const auto error = decodeError(u"set_number,set_name\n10497-1,Galaxy Explorer"_s);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::missingRequiredColumns);
    }

    void columnNamesAreNeitherTrimmedNorCaseFolded_data()
    {
        QTest::addColumn<QString>("header");
        QTest::newRow("upper-case ID") << u"ID,set_number"_s;
        QTest::newRow("blank before id") << u" id,set_number"_s;
        QTest::newRow("blank after set_number") << u"id,set_number "_s;
        QTest::newRow("Set_Number") << u"id,Set_Number"_s;
    }

    void columnNamesAreNeitherTrimmedNorCaseFolded()
    {
        QFETCH(QString, header);
        const auto error = decodeError(header + u"\n"_s + someId + u",10497-1"_s);
        QVERIFY(error);
        QCOMPARE(error->first, CSVCodec::DecodeError::Kind::missingRequiredColumns);
    }

    void headerNamingAColumnTwiceStopsTheProcess()
    {
        const QList<QStringView> names{u"id", u"set_number", u"notes", u"id"};
        QVERIFY(CSVColumnMap::hasDuplicateNames(names));
        QVERIFY(!CSVColumnMap::hasDuplicateNames(names.first(3)));
#if defined(Q_OS_UNIX)
        // The fault ends the process, so it is watched from outside: a child decodes.
        const pid_t child = fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            // Qt Test's own fatal-message and crash handling (a stack dump) is not wanted in
            // the child: the plain default ends it with SIGABRT.
            qInstallMessageHandler(nullptr);
            std::signal(SIGABRT, SIG_DFL);
            const int devNull = ::open("/dev/null", O_WRONLY);
            ::dup2(devNull, STDERR_FILENO);
            ::dup2(devNull, STDOUT_FILENO);
            try {
                CSVCodec::decode(u"id,set_number,id\n"_s + someId + u",10497-1,"_s + someId);
            } catch (...) {
                ::_exit(3);
            }
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY2(!WIFEXITED(status), "decoding a header with a repeated column came back instead of stopping");
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGABRT);
#endif
    }

    void columnMapReadsTrimmedValuesByNameAndAbsentBeyondTheRow()
    {
        const CSVColumnMap columns(QStringList{u"set_number"_s, u"entry_type"_s, u"id"_s});
        QCOMPARE(columns.position(u"entry_type"_s), 1);
        QCOMPARE(columns.position(u"notes"_s), std::nullopt);
        const QStringList fields = CSVFieldSyntax::fields(u" 10497-1 ,\twishlist");
        const QList<QStringView> views(fields.cbegin(), fields.cend());
        QCOMPARE(columns.value(views, u"set_number"_s), QStringView(u"10497-1"));
        QCOMPARE(columns.value(views, u"entry_type"_s), QStringView(u"wishlist"));
        QCOMPARE(columns.value(views, u"id"_s), std::nullopt);
        QCOMPARE(columns.value(views, u"notes"_s), std::nullopt);
    }

    // --- Rows ---------------------------------------------------------------------------

    void headerOnlyGivesNoRecordsAndNoErrors()
    {
        const CSVCodec::DecodeResult result = CSVCodec::decode(CSVCodec::headerLine());
        QVERIFY(result.records.isEmpty());
        QVERIFY(result.errors.isEmpty());
        const CSVCodec::DecodeResult withLineEnds = CSVCodec::decode(CSVCodec::headerLine() + u"\r\n\r\n"_s);
        QVERIFY(withLineEnds.records.isEmpty());
        QVERIFY(withLineEnds.errors.isEmpty());
    }

    void rowShorterThanTheHeaderGivesAbsentForTheMissingColumnsAndIsAccepted()
    {
        const InventoryRecord record = onlyRecord(file({someId + u",10497-1,Galaxy Explorer,2022"_s}));
        QCOMPARE(record.id, QUuid::fromString(someId));
        QCOMPARE(record.setNumber, u"10497-1"_s);
        QCOMPARE(record.setName, u"Galaxy Explorer"_s);
        QCOMPARE(record.year, 2022);
        QCOMPARE(record.theme, std::nullopt);
        QCOMPARE(record.pieceCount, std::nullopt);
        QCOMPARE(record.notes, std::nullopt);
        QCOMPARE(record.isFavorite, false);
        QCOMPARE(record.rating, 0);
        QCOMPARE(record.trashedDate, std::nullopt);
        QCOMPARE(record.isTrashed, false);
    }

    void rowWithoutSetNumberInItsShortFormIsRejected()
    {
        const CSVCodec::DecodeResult result = CSVCodec::decode(file({someId}));
        QVERIFY(result.records.isEmpty());
        QCOMPARE(result.errors, QStringList{u"Line 2: missing id or set_number"_s});
    }

    void idThatIsNoUuidIsRejectedWithTheSameTextAsAMissingOne()
    {
        const CSVCodec::DecodeResult result = CSVCodec::decode(file({
            row({{u"id"_s, u"not-a-uuid"_s}, {u"set_number"_s, u"10497-1"_s}}),
            row({{u"set_number"_s, u"10497-1"_s}}),
            row({{u"id"_s, u"{8D5B2C4E-0F1A-4B7C-9E3D-2A6F1B0C9D8E}"_s}, {u"set_number"_s, u"10497-1"_s}}),
            row({{u"id"_s, u"8D5B2C4E0F1A4B7C9E3D2A6F1B0C9D8E"_s}, {u"set_number"_s, u"10497-1"_s}}),
        }));
        QVERIFY(result.records.isEmpty());
        QCOMPARE(result.errors, (QStringList{u"Line 2: missing id or set_number"_s, u"Line 3: missing id or set_number"_s,
                                             u"Line 4: missing id or set_number"_s, u"Line 5: missing id or set_number"_s}));
    }

    void lowerCaseIdIsAUuid()
    {
        const InventoryRecord record = decodedRow({{u"id"_s, someId.toLower()}});
        QCOMPARE(record.id, QUuid::fromString(someId));
    }

    void rowWithBlankSetNumberIsRejectedAndTheNextOneStillReads()
    {
        const CSVCodec::DecodeResult result = CSVCodec::decode(file({
            row({{u"id"_s, someId}, {u"set_number"_s, u" \t "_s}}),
            row({{u"id"_s, someId}, {u"set_number"_s, u"75192-1"_s}}),
        }));
        QCOMPARE(result.errors, QStringList{u"Line 2: missing id or set_number"_s});
        QCOMPARE(result.records.size(), 1);
        QCOMPARE(result.records.first().setNumber, u"75192-1"_s);
    }

    void rowNumbersCountNonBlankLinesWithTheHeaderAsOne()
    {
        // Blank lines vanish before rows are counted: the bad row is the fourth line of the
        // text but the third non-blank one.
        const QString text = CSVCodec::headerLine() + u"\n\n"_s + row({{u"id"_s, someId}, {u"set_number"_s, u"1-1"_s}})
            + u"\r\n"_s + row({{u"id"_s, someId}}) + u"\n\n\n"_s + row({{u"set_number"_s, u"2-1"_s}});
        const CSVCodec::DecodeResult result = CSVCodec::decode(text);
        QCOMPARE(result.records.size(), 1);
        QCOMPARE(result.errors,
                 (QStringList{u"Line 3: missing id or set_number"_s, u"Line 4: missing id or set_number"_s}));
    }

    void lineFeedsCarriageReturnsAndBothReadAlike()
    {
        const QString first = row({{u"id"_s, someId}, {u"set_number"_s, u"1-1"_s}});
        const QString second = row({{u"id"_s, someId}, {u"set_number"_s, u"2-1"_s}});
        const CSVCodec::DecodeResult lineFeeds = CSVCodec::decode(CSVCodec::headerLine() + u"\n"_s + first + u"\n"_s + second);
        for (const QString &lineEnd : {u"\r\n"_s, u"\r"_s, u"\u2028"_s, u"\u0085"_s, u"\n\r"_s}) {
            const QString text = CSVCodec::headerLine() + lineEnd + first + lineEnd + second + lineEnd;
            const CSVCodec::DecodeResult result = CSVCodec::decode(text);
            QCOMPARE(result.records.size(), 2);
            QCOMPARE(result.records.at(0).setNumber, lineFeeds.records.at(0).setNumber);
            QCOMPARE(result.records.at(1).setNumber, lineFeeds.records.at(1).setNumber);
            QVERIFY(result.errors.isEmpty());
        }
    }

    void columnsMayComeInAnyOrderAndUnknownOnesAreIgnored()
    {
        const QString text = u"entry_type,set_number,retired_date,rating,id,Colour\n"
                             u"wishlist,10497-1,2024-12-31,4,"_s
            + someId + u",red"_s;
        const InventoryRecord record = onlyRecord(text);
        QCOMPARE(record.setNumber, u"10497-1"_s);
        QCOMPARE(record.rating, 4);
        QCOMPARE(record.id, QUuid::fromString(someId));
        QCOMPARE(record.setName, std::nullopt);
    }

    // --- Values -------------------------------------------------------------------------

    void yearWithLettersGivesAbsentAndDoesNotRejectTheRow()
    {
        const InventoryRecord record = decodedRow({{u"year"_s, u"20x2"_s}, {u"piece_count"_s, u"1,066"_s}});
        QCOMPARE(record.year, std::nullopt);
        // The comma splits the field: piece_count reads "1", and the "066" runs into the
        // next column (date_added), which is no date.
        QCOMPARE(record.pieceCount, 1);
    }

    void ratingWithLettersGivesZero()
    {
        QCOMPARE(decodedRow({{u"rating"_s, u"four"_s}}).rating, 0);
        QCOMPARE(decodedRow({{u"rating"_s, u"4 stars"_s}}).rating, 0);
        QCOMPARE(decodedRow({{u"rating"_s, u"-3"_s}}).rating, -3);
        // No range check: a rating beyond five is read as written.
        QCOMPARE(decodedRow({{u"rating"_s, u"+12"_s}}).rating, 12);
    }

    void integersBeyondSixtyFourBitsAreUnreadable()
    {
        QCOMPARE(decodedRow({{u"year"_s, u"9223372036854775807"_s}}).year, std::numeric_limits<qint64>::max());
        QCOMPARE(decodedRow({{u"year"_s, u"-9223372036854775808"_s}}).year, std::numeric_limits<qint64>::min());
        QCOMPARE(decodedRow({{u"year"_s, u"9223372036854775808"_s}}).year, std::nullopt);
        QCOMPARE(decodedRow({{u"rating"_s, u"99999999999999999999"_s}}).rating, 0);
        QCOMPARE(decodedRow({{u"piece_count"_s, u"3.5"_s}}).pieceCount, std::nullopt);
    }

    void emptyDateAddedGivesTheImportTimeAndEmptyAcquisitionDateStaysAbsent()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const InventoryRecord record = decodedRow({{u"date_added"_s, QString()}, {u"acquisition_date"_s, QString()}});
        const QDateTime after = QDateTime::currentDateTimeUtc();
        QVERIFY(record.dateAdded.isValid());
        QVERIFY(record.dateAdded >= before);
        QVERIFY(record.dateAdded <= after);
        QCOMPARE(record.acquisitionDate, std::nullopt);
    }

    void unreadableDateAddedGivesTheImportTimeToo()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const InventoryRecord record = decodedRow({{u"date_added"_s, u"yesterday"_s}});
        QVERIFY(record.dateAdded >= before);
        QVERIFY(record.dateAdded <= QDateTime::currentDateTimeUtc());
    }

    void dayFormAndDateTimeFormBothReadAsDatesAndSlashesGiveAbsent()
    {
        const InventoryRecord record = decodedRow({
            {u"acquisition_date"_s, u"2024-03-15"_s},
            {u"disposal_date"_s, u"2024-03-15T10:20:30Z"_s},
            {u"trashed_date"_s, u"2024/03/15"_s},
        });
        QCOMPARE(record.acquisitionDate, QDate(2024, 3, 15).startOfDay(Qt::LocalTime));
        QCOMPARE(record.disposalDate, QDateTime(QDate(2024, 3, 15), QTime(10, 20, 30), Qt::UTC));
        QCOMPARE(record.trashedDate, std::nullopt);
    }

    void dateTimeWithAnOffsetReadsAsTheSameInstant()
    {
        const InventoryRecord record = decodedRow({{u"acquisition_date"_s, u"2024-03-15T10:20:30+05:30"_s},
                                                   {u"disposal_date"_s, u"2024-03-15T00:00:00-08:00"_s}});
        QCOMPARE(record.acquisitionDate, QDateTime(QDate(2024, 3, 15), QTime(4, 50, 30), Qt::UTC));
        QCOMPARE(record.disposalDate, QDateTime(QDate(2024, 3, 15), QTime(8, 0, 0), Qt::UTC));
    }

    void textsCloseToADateAreNoDate_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("fraction of a second") << u"2024-03-15T10:20:30.250Z"_s;
        QTest::newRow("no zone") << u"2024-03-15T10:20:30"_s;
        QTest::newRow("lower-case zone") << u"2024-03-15T10:20:30z"_s;
        QTest::newRow("blank for T") << u"2024-03-15 10:20:30Z"_s;
        QTest::newRow("offset without colon") << u"2024-03-15T10:20:30+0530"_s;
        QTest::newRow("February 30th") << u"2024-02-30"_s;
        QTest::newRow("month 13") << u"2024-13-01T00:00:00Z"_s;
        QTest::newRow("hour 24") << u"2024-03-15T24:00:00Z"_s;
        QTest::newRow("two-digit year") << u"24-03-15"_s;
        QTest::newRow("day first") << u"15-03-2024"_s;
        QTest::newRow("dots") << u"2024.03.15"_s;
        QTest::newRow("trailing text") << u"2024-03-15x"_s;
    }

    void textsCloseToADateAreNoDate()
    {
        QFETCH(QString, text);
        QCOMPARE(decodedRow({{u"acquisition_date"_s, text}}).acquisitionDate, std::nullopt);
    }

    void leapDayAndOneDigitMonthAndDayReadInTheDayForm()
    {
        QCOMPARE(decodedRow({{u"acquisition_date"_s, u"2024-02-29"_s}}).acquisitionDate,
                 QDate(2024, 2, 29).startOfDay(Qt::LocalTime));
        QCOMPARE(decodedRow({{u"acquisition_date"_s, u"2024-3-5"_s}}).acquisitionDate,
                 QDate(2024, 3, 5).startOfDay(Qt::LocalTime));
        QCOMPARE(decodedRow({{u"acquisition_date"_s, u"2023-02-29"_s}}).acquisitionDate, std::nullopt);
    }

    void isFavoriteIsTrueForOneAndTrueOnly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("expected");
        QTest::newRow("true") << u"true"_s << true;
        QTest::newRow("1") << u"1"_s << true;
        QTest::newRow("true with blanks") << u"  true\t"_s << true;
        QTest::newRow("True") << u"True"_s << false;
        QTest::newRow("TRUE") << u"TRUE"_s << false;
        QTest::newRow("yes") << u"yes"_s << false;
        QTest::newRow("0") << u"0"_s << false;
        QTest::newRow("01") << u"01"_s << false;
        QTest::newRow("false") << u"false"_s << false;
        QTest::newRow("empty") << QString() << false;
    }

    void isFavoriteIsTrueForOneAndTrueOnly()
    {
        QFETCH(QString, text);
        QFETCH(bool, expected);
        const InventoryRecord record =
            decodedRow({{u"is_favorite"_s, text}, {u"is_disposed"_s, text}, {u"is_trashed"_s, text}});
        QCOMPARE(record.isFavorite, expected);
        QCOMPARE(record.isDisposed, expected);
        QCOMPARE(record.isTrashed, expected);
    }

    void quotedFieldWithDoubledQuotesAndACommaReadsBackWithSingleQuotesAndTheComma()
    {
        const InventoryRecord record = decodedRow({{u"set_name"_s, u"\"The \"\"Classic\"\", Space\""_s}});
        QCOMPARE(record.setName, u"The \"Classic\", Space"_s);
    }

    void quoteInsideAFieldOpensAQuotedStretchAndIsDropped()
    {
        QCOMPARE(CSVFieldSyntax::fields(u"ab\"c,d\"e,f"), (QStringList{u"abc,de"_s, u"f"_s}));
        QCOMPARE(CSVFieldSyntax::fields(u"a,\"unclosed, to the end"), (QStringList{u"a"_s, u"unclosed, to the end"_s}));
        QCOMPARE(CSVFieldSyntax::fields(u"a,"), (QStringList{u"a"_s, QString()}));
        QCOMPARE(CSVFieldSyntax::fields(u""), QStringList{QString()});
        QCOMPARE(CSVFieldSyntax::fields(u"\"\"\"\""), QStringList{u"\""_s});
    }

    void spacesAroundAFieldAreCutAndInnerSpacesStay()
    {
        const InventoryRecord record = decodedRow({
            {u"set_name"_s, u"  Galaxy   Explorer \t"_s},
            {u"year"_s, u" 2022 "_s},
            {u"theme"_s, u"\u00A0Space\u3000"_s},
            {u"acquisition_type"_s, u"\tgift "_s},
            {u"price_paid"_s, u" 99.99 "_s},
        });
        QCOMPARE(record.setName, u"Galaxy   Explorer"_s);
        QCOMPARE(record.year, 2022);
        QCOMPARE(record.theme, u"Space"_s);
        QCOMPARE(record.acquisitionType, AcquisitionType::gift);
        QCOMPARE(record.pricePaid, Decimal::fromString(u"99.99"));
    }

    void spacesInsideQuotesAreCutToo()
    {
        QCOMPARE(decodedRow({{u"notes"_s, u"\"  kept inside  \""_s}}).notes, u"kept inside"_s);
    }

    void fieldOfOnlyBlanksIsAbsent()
    {
        const InventoryRecord record = decodedRow({{u"notes"_s, u" \t "_s}, {u"price_paid"_s, u"  "_s}});
        QCOMPARE(record.notes, std::nullopt);
        QCOMPARE(record.pricePaid, std::nullopt);
    }

    void nameWithACommaRoundTripsButANoteWithALineFeedDoesNot()
    {
        InventoryRecord named = minimalRecord();
        named.setName = u"Police Station, Modular"_s;
        QCOMPARE(CSVCodec::decode(CSVCodec::encode({named})).records, QList<InventoryRecord>{named});

        InventoryRecord noted = minimalRecord();
        noted.notes = u"first line\nsecond line"_s;
        noted.isTrashed = true;
        const CSVCodec::DecodeResult result = CSVCodec::decode(CSVCodec::encode({noted}));
        // The row is cut at the line feed: the first half keeps what stood before it and
        // loses the later columns; the second half is a row of its own and is rejected.
        QCOMPARE(result.records.size(), 1);
        QCOMPARE(result.records.first().notes, u"first line"_s);
        QCOMPARE(result.records.first().isTrashed, false);
        QCOMPARE(result.errors, QStringList{u"Line 3: missing id or set_number"_s});
    }

    void enumeratedColumnsReadRawValuesAndUnknownTextIsAbsent()
    {
        const InventoryRecord record = decodedRow({
            {u"acquisition_type"_s, u"gwp"_s},
            {u"overall_condition"_s, u"new"_s},
            {u"box_condition"_s, u"Sealed"_s},
            {u"instructions_condition"_s, u"none"_s},
            {u"built_status"_s, u"partially built"_s},
            {u"sticker_status"_s, u"no_stickers"_s},
            {u"completeness"_s, u"unknown"_s},
            {u"disposal_type"_s, u"stolen"_s},
        });
        QCOMPARE(record.acquisitionType, AcquisitionType::gwp);
        QCOMPARE(record.overallCondition, OverallCondition::new_);
        QCOMPARE(record.boxCondition, std::nullopt);
        QCOMPARE(record.instructionsCondition, InstructionsCondition::none);
        QCOMPARE(record.builtStatus, std::nullopt);
        QCOMPARE(record.stickerStatus, StickerStatus::noStickers);
        QCOMPARE(record.completeness, SetCompleteness::unknown);
        QCOMPARE(record.disposalType, std::nullopt);
    }

    void decimalsReadWithAPointWhateverTheLocale()
    {
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const InventoryRecord record = decodedRow({{u"price_paid"_s, u"1234.56"_s}, {u"disposal_price"_s, u"\"1234,56\""_s}});
        InventoryRecord priced = minimalRecord();
        priced.pricePaid = Decimal::fromString(u"1234.5");
        const QString written = CSVCodec::encode({priced});
        QLocale::setDefault(previous);
        QCOMPARE(record.pricePaid, Decimal::fromString(u"1234.56"));
        QCOMPARE(record.disposalPrice, std::nullopt);
        QVERIFY(written.contains(u",1234.5,"_s));
    }

    void decimalWithLettersIsAbsent()
    {
        const InventoryRecord record = decodedRow({{u"price_paid"_s, u"$12.50"_s}, {u"disposal_price"_s, u"12.50 EUR"_s}});
        QCOMPARE(record.pricePaid, std::nullopt);
        QCOMPARE(record.disposalPrice, std::nullopt);
    }

    void formulaLookingCellsReadBackUnchanged_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::newRow("equals") << u"=HYPERLINK(\"http://127.0.0.1\")"_s;
        QTest::newRow("plus") << u"+1+1"_s;
        QTest::newRow("minus") << u"-2+3"_s;
        QTest::newRow("at") << u"@SUM(A1:A2)"_s;
        QTest::newRow("equals plain") << u"=1+2"_s;
    }

    void formulaLookingCellsReadBackUnchanged()
    {
        QFETCH(QString, cell);
        InventoryRecord record = minimalRecord();
        record.setName = cell;
        record.notes = cell;
        record.acquisitionSource = cell;
        const QString text = CSVCodec::encode({record});
        // Written as they are: no apostrophe, no tab, no quotes beyond what a comma or a
        // double quote in the text calls for.
        const QString expectedField = CSVFieldSyntax::escapedField(cell);
        QCOMPARE(expectedField, cell.contains(u'"') ? u"\""_s + QString(cell).replace(u"\""_s, u"\"\""_s) + u"\""_s : cell);
        QVERIFY(text.contains(u","_s + expectedField + u","_s));
        const InventoryRecord read = onlyRecord(text);
        QCOMPARE(read.setName, cell);
        QCOMPARE(read.notes, cell);
        QCOMPARE(read.acquisitionSource, cell);
        QCOMPARE(read, record);
    }

    // --- Writing ------------------------------------------------------------------------

    void headerIsTheTwentyNineColumnNamesInOrder()
    {
        QCOMPARE(CSVCodec::columnNames().size(), 29);
        QCOMPARE(CSVCodec::headerLine(),
                 u"id,set_number,set_name,year,theme,piece_count,date_added,is_favorite,rating,notes,"
                 u"acquisition_type,acquisition_date,acquisition_source,price_paid,price_currency,"
                 u"overall_condition,box_condition,instructions_condition,built_status,sticker_status,"
                 u"completeness,is_disposed,disposal_type,disposal_date,disposal_price,disposal_currency,"
                 u"disposal_notes,is_trashed,trashed_date"_s);
    }

    void noRecordsGiveTheHeaderLineAloneWithoutLineEndOrByteOrderMark()
    {
        const QString text = CSVCodec::encode({});
        QCOMPARE(text, CSVCodec::headerLine());
        QVERIFY(text.toUtf8().startsWith("id,set_number,"));
    }

    void linesAreJoinedByLineFeedsWithNoneAfterTheLast()
    {
        const QString text = CSVCodec::encode({minimalRecord(), minimalRecord()});
        QCOMPARE(text.count(u'\n'), 2);
        QVERIFY(!text.endsWith(u'\n'));
        QVERIFY(!text.contains(u'\r'));
    }

    void recordWithAllOptionalFieldsAbsentGivesTwentyEightCommasAndOnlyTheRequiredFields()
    {
        const QString text = CSVCodec::encode({minimalRecord()});
        const QString line = text.split(u'\n').at(1);
        QCOMPARE(line.count(u','), 28);
        QCOMPARE(line, someId + u",10497-1,,,,,2026-11-24T18:30:05Z,false,0,,,,,,,,,,,,,false,,,,,,false,"_s);
    }

    void everyValueIsWrittenInItsForm()
    {
        InventoryRecord record = minimalRecord();
        record.id = QUuid::fromString(someId.toLower());
        record.setName = u"Galaxy Explorer"_s;
        record.year = 2022;
        record.theme = u"Icons"_s;
        record.pieceCount = 1254;
        record.isFavorite = true;
        record.rating = 5;
        record.notes = u"Birthday"_s;
        record.acquisitionType = AcquisitionType::purchased;
        record.acquisitionDate = QDateTime(QDate(2022, 8, 1), QTime(9, 0), Qt::OffsetFromUTC, 7200);
        record.acquisitionSource = u"LEGO Store"_s;
        record.pricePaid = Decimal::fromString(u"99.990");
        record.priceCurrency = u"EUR"_s;
        record.overallCondition = OverallCondition::new_;
        record.boxCondition = BoxCondition::sealed;
        record.instructionsCondition = InstructionsCondition::good;
        record.builtStatus = BuiltStatus::neverBuilt;
        record.stickerStatus = StickerStatus::partiallyApplied;
        record.completeness = SetCompleteness::complete;
        record.isDisposed = true;
        record.disposalType = DisposalType::sold;
        record.disposalDate = QDateTime(QDate(2025, 1, 2), QTime(3, 4, 5, 999), Qt::UTC);
        record.disposalPrice = Decimal::fromString(u"-0.5");
        record.disposalCurrency = u"USD"_s;
        record.disposalNotes = u"eBay"_s;
        record.isTrashed = true;
        record.trashedDate = QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59, 500), Qt::UTC);
        const QString line = CSVCodec::encode({record}).split(u'\n').at(1);
        QCOMPARE(line,
                 someId
                     + u",10497-1,Galaxy Explorer,2022,Icons,1254,2026-11-24T18:30:05Z,true,5,Birthday,purchased,"
                       u"2022-08-01T07:00:00Z,LEGO Store,99.99,EUR,new,sealed,good,never_built,partially_applied,"
                       u"complete,true,sold,2025-01-02T03:04:05Z,-0.5,USD,eBay,true,1969-12-31T23:59:59Z"_s);
    }

    void fieldsWithCommaQuoteOrLineEndAreQuotedAndOthersStayBare()
    {
        QCOMPARE(CSVFieldSyntax::escapedField(u"plain text"), u"plain text"_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u"a,b"), u"\"a,b\""_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u"say \"hi\""), u"\"say \"\"hi\"\"\""_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u"a\nb"), u"\"a\nb\""_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u"a\rb"), u"\"a\rb\""_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u"a\rb", CSVFieldSyntax::LineEndQuoting::lineFeedOnly), u"a\rb"_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u" leading and trailing "), u" leading and trailing "_s);
        QCOMPARE(CSVFieldSyntax::escapedField(u""), QString());
    }
};

QTEST_GUILESS_MAIN(CSVCodecTest)
#include "CSVCodecTest.moc"
