// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVValueFormat.h"

#include <limits>

namespace {

constexpr qint64 secondsPerDay = 86'400;
constexpr qint64 millisecondsPerSecond = 1'000;

qint64 floorDivision(qint64 dividend, qint64 divisor)
{
    const qint64 quotient = dividend / divisor;
    return (dividend % divisor != 0 && (dividend < 0) != (divisor < 0)) ? quotient - 1 : quotient;
}

// Days since 1970-01-01 of a date of the proleptic Gregorian calendar, with a year 0 before
// year 1 (Howard Hinnant's days_from_civil). QDate counts no year 0, which is why this is
// not done through it.
qint64 daysFromCivil(qint64 year, int month, int day)
{
    year -= month <= 2 ? 1 : 0;
    const qint64 era = (year >= 0 ? year : year - 399) / 400;
    const qint64 yearOfEra = year - era * 400;
    const qint64 dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146'097 + dayOfEra - 719'468;
}

struct CivilDate
{
    qint64 year;
    int month;
    int day;
};

CivilDate civilFromDays(qint64 days)
{
    days += 719'468;
    const qint64 era = (days >= 0 ? days : days - 146'096) / 146'097;
    const qint64 dayOfEra = days - era * 146'097;
    const qint64 yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const qint64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const qint64 shiftedMonth = (5 * dayOfYear + 2) / 153;
    const int day = int(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    const int month = int(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

bool isLeapYear(qint64 year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(qint64 year, int month)
{
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

// The number written by exactly `count` ASCII digits at `position`, or -1.
int digitsAt(QStringView text, qsizetype position, int count)
{
    if (position + count > text.size())
        return -1;
    int value = 0;
    for (int index = 0; index < count; ++index) {
        const char16_t unit = text[position + index].unicode();
        if (!isDigit(unit))
            return -1;
        value = value * 10 + (unit - u'0');
    }
    return value;
}

// Writes `value` (not negative) in decimal with at least `width` digits; returns the end.
char16_t *writeDigits(char16_t *out, quint64 value, int width)
{
    char16_t digits[24];
    int count = 0;
    do {
        digits[count++] = char16_t(u'0' + int(value % 10));
        value /= 10;
    } while (value > 0);
    while (count < width)
        digits[count++] = u'0';
    while (count > 0)
        *out++ = digits[--count];
    return out;
}

int hexValue(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    return -1;
}

} // namespace

QString CSVValueFormat::dateText(const QDateTime &date)
{
    QString text;
    appendDate(text, date);
    return text;
}

void CSVValueFormat::appendDate(QString &text, const QDateTime &date)
{
    if (!date.isValid())
        return;
    const qint64 seconds = floorDivision(date.toMSecsSinceEpoch(), millisecondsPerSecond);
    const qint64 days = floorDivision(seconds, secondsPerDay);
    const qint64 secondOfDay = seconds - days * secondsPerDay;
    const CivilDate civil = civilFromDays(days);

    // Composed in place and appended once: a file has several dates on every line.
    char16_t buffer[48];
    char16_t *out = buffer;
    if (civil.year < 0)
        *out++ = u'-';
    out = writeDigits(out, civil.year < 0 ? -civil.year : civil.year, 4);
    *out++ = u'-';
    out = writeDigits(out, civil.month, 2);
    *out++ = u'-';
    out = writeDigits(out, civil.day, 2);
    *out++ = u'T';
    out = writeDigits(out, secondOfDay / 3600, 2);
    *out++ = u':';
    out = writeDigits(out, secondOfDay / 60 % 60, 2);
    *out++ = u':';
    out = writeDigits(out, secondOfDay % 60, 2);
    *out++ = u'Z';
    text.append(QStringView(buffer, out - buffer));
}

std::optional<QDateTime> CSVValueFormat::date(QStringView text)
{
    if (std::optional<QDateTime> instant = internetDateTime(text))
        return instant;
    return dayDate(text);
}

std::optional<QDateTime> CSVValueFormat::internetDateTime(QStringView text)
{
    // yyyy-MM-ddTHH:mm:ss is 19 characters; "Z" makes 20, an offset "+hh:mm" 25.
    if (text.size() != 20 && text.size() != 25)
        return std::nullopt;
    const int year = digitsAt(text, 0, 4);
    const int month = digitsAt(text, 5, 2);
    const int day = digitsAt(text, 8, 2);
    const int hour = digitsAt(text, 11, 2);
    const int minute = digitsAt(text, 14, 2);
    const int second = digitsAt(text, 17, 2);
    if (year < 0 || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month) || hour < 0 || hour > 23
        || minute < 0 || minute > 59 || second < 0 || second > 59)
        return std::nullopt;
    if (text[4] != u'-' || text[7] != u'-' || text[10] != u'T' || text[13] != u':' || text[16] != u':')
        return std::nullopt;

    qint64 offsetSeconds = 0;
    if (text.size() == 20) {
        if (text[19] != u'Z')
            return std::nullopt;
    } else {
        const QChar sign = text[19];
        const int offsetHours = digitsAt(text, 20, 2);
        const int offsetMinutes = digitsAt(text, 23, 2);
        if ((sign != u'+' && sign != u'-') || text[22] != u':' || offsetHours < 0 || offsetHours > 23
            || offsetMinutes < 0 || offsetMinutes > 59)
            return std::nullopt;
        offsetSeconds = (offsetHours * 3600 + offsetMinutes * 60) * (sign == u'-' ? -1 : 1);
    }

    const qint64 seconds = daysFromCivil(year, month, day) * secondsPerDay + hour * 3600 + minute * 60 + second;
    return QDateTime::fromMSecsSinceEpoch((seconds - offsetSeconds) * millisecondsPerSecond, Qt::UTC);
}

std::optional<QDateTime> CSVValueFormat::dayDate(QStringView text)
{
    // yyyy-M-d up to yyyy-MM-dd.
    if (text.size() < 8 || text.size() > 10 || text[4] != u'-')
        return std::nullopt;
    const int year = digitsAt(text, 0, 4);
    const qsizetype secondDash = text.indexOf(u'-', 5);
    if (year < 0 || secondDash < 0)
        return std::nullopt;
    const int monthLength = int(secondDash - 5);
    const int dayLength = int(text.size() - secondDash - 1);
    if (monthLength < 1 || monthLength > 2 || dayLength < 1 || dayLength > 2)
        return std::nullopt;
    const int month = digitsAt(text, 5, monthLength);
    const int day = digitsAt(text, secondDash + 1, dayLength);
    const QDate date(year, month, day);
    if (month < 0 || day < 0 || !date.isValid())
        return std::nullopt;
    const QDateTime start = date.startOfDay(Qt::LocalTime);
    if (!start.isValid())
        return std::nullopt;
    return start.toUTC();
}

std::optional<qint64> CSVValueFormat::integer(QStringView text)
{
    qsizetype position = 0;
    bool negative = false;
    if (!text.isEmpty() && (text[0] == u'+' || text[0] == u'-')) {
        negative = text[0] == u'-';
        ++position;
    }
    if (position == text.size())
        return std::nullopt;
    // Accumulated as a negative number, whose range reaches one further than the positive.
    qint64 value = 0;
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    for (; position < text.size(); ++position) {
        const char16_t unit = text[position].unicode();
        if (!isDigit(unit))
            return std::nullopt;
        const int digit = unit - u'0';
        if (value < (lowest + digit) / 10)
            return std::nullopt;
        value = value * 10 - digit;
    }
    if (!negative) {
        if (value == lowest)
            return std::nullopt;
        value = -value;
    }
    return value;
}

void CSVValueFormat::appendInteger(QString &text, qint64 value)
{
    char16_t buffer[24];
    char16_t *out = buffer;
    if (value < 0)
        *out++ = u'-';
    // Through the unsigned type so that the most negative value has a magnitude.
    const quint64 magnitude = value < 0 ? quint64(0) - quint64(value) : quint64(value);
    out = writeDigits(out, magnitude, 1);
    text.append(QStringView(buffer, out - buffer));
}

QString CSVValueFormat::uuidText(const QUuid &id)
{
    QString text;
    appendUuid(text, id);
    return text;
}

void CSVValueFormat::appendUuid(QString &text, const QUuid &id)
{
    static constexpr char16_t hexDigits[] = u"0123456789ABCDEF";
    const QByteArray bytes = id.toRfc4122();
    char16_t buffer[36];
    char16_t *out = buffer;
    for (int index = 0; index < 16; ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10)
            *out++ = u'-';
        const auto byte = quint8(bytes.at(index));
        *out++ = hexDigits[byte >> 4];
        *out++ = hexDigits[byte & 0x0F];
    }
    text.append(QStringView(buffer, out - buffer));
}

std::optional<QUuid> CSVValueFormat::uuid(QStringView text)
{
    if (text.size() != 36)
        return std::nullopt;
    char bytes[16];
    int nibbles = 0;
    for (qsizetype position = 0; position < text.size(); ++position) {
        const char16_t unit = text[position].unicode();
        if (position == 8 || position == 13 || position == 18 || position == 23) {
            if (unit != u'-')
                return std::nullopt;
            continue;
        }
        const int value = hexValue(unit);
        if (value < 0)
            return std::nullopt;
        if (nibbles % 2 == 0)
            bytes[nibbles / 2] = char(value << 4);
        else
            bytes[nibbles / 2] = char(bytes[nibbles / 2] | value);
        ++nibbles;
    }
    return QUuid::fromRfc4122(QByteArrayView(bytes, 16));
}
