// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>

// How the values of the collection CSV file are written and read: dates, decimals,
// booleans, integers and identifiers. Every form is fixed text, never the user's locale,
// so a file written on one machine reads the same on any other. Readers take text already
// trimmed by CSVColumnMap and give nothing for text they cannot read.
//
// Dates are written in one form only, the internet date-time form in UTC to the second
// ("2026-11-25T00:06:21Z"). The conversion is plain arithmetic on the proleptic Gregorian
// calendar, with nothing created per call, so one writer serves every thread of the
// process alike and a 10,000-row file does not pay for a formatter per row.
class CSVValueFormat
{
public:
    // "yyyy-MM-ddTHH:mm:ssZ" in UTC; sub-second parts are cut off (towards the past). An
    // invalid date gives an empty text.
    static QString dateText(const QDateTime &date);
    static void appendDate(QString &text, const QDateTime &date);

    // A date in the internet date-time form, or else in the day form; nothing otherwise.
    static std::optional<QDateTime> date(QStringView text);
    // "yyyy-MM-ddTHH:mm:ss" followed by "Z" or an offset "+hh:mm" / "-hh:mm". Fractions of
    // a second are not part of the form. The result is in UTC.
    static std::optional<QDateTime> internetDateTime(QStringView text);
    // "yyyy-MM-dd" (one or two digits for month and day, as a hand-made file may have):
    // the start of that day in the local time zone, in UTC. Slashes or any other separator
    // give nothing.
    static std::optional<QDateTime> dayDate(QStringView text);

    // Plain decimal text with "." and no grouping ("1234.5"). Reading takes an optional
    // sign, digits with an optional "." fraction and an optional exponent, nothing else.
    static QString decimalText(const Decimal &value) { return value.toString(); }
    static std::optional<Decimal> decimal(QStringView text) { return Decimal::fromString(text); }

    // "true" or "false".
    static QStringView booleanText(bool value) { return value ? QStringView(u"true") : QStringView(u"false"); }
    // True when `text` is exactly "true" or "1" (case matters: "TRUE" is false).
    static bool boolean(QStringView text) { return text == u"true" || text == u"1"; }

    // Decimal digits, with "-" when negative.
    static void appendInteger(QString &text, qint64 value);
    // An optional "+" or "-" and ASCII digits, within 64 bits; nothing otherwise.
    static std::optional<qint64> integer(QStringView text);

    // Upper-case canonical form with dashes ("8D5B2C4E-0F1A-4B7C-9E3D-2A6F1B0C9D8E").
    static QString uuidText(const QUuid &id);
    static void appendUuid(QString &text, const QUuid &id);
    // The 36-character canonical form with dashes, hex digits in either case; braces,
    // missing dashes or any other length give nothing.
    static std::optional<QUuid> uuid(QStringView text);
};
