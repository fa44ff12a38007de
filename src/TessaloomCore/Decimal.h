// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringView>

#include <compare>
#include <optional>

// An exact decimal number for money: a signed coefficient of up to 38 significant digits
// and a base-ten exponent. Text goes in and out with "." as the decimal separator whatever
// the locale, so a stored or exported price reads back to the same value. A double enters
// through its shortest round-trip text, so 99.99 stays 99.99 rather than becoming
// 99.9899999999999948840923025272786617279052734375.
//
// Results that would need more than 38 significant digits are rounded half to even, the
// way a decimal calculator does; nothing here is ever converted through binary floating
// point except toDouble(), which exists for sorting and charts.
class Decimal
{
public:
    static constexpr int maximumDigits = 38;

    Decimal() = default; // zero
    Decimal(int value);
    Decimal(qint64 value);

    // Plain decimal text: optional sign, digits with an optional "." fraction, optional
    // exponent ("1e-5"). No grouping, no blanks, no locale. Anything else gives nothing.
    static std::optional<Decimal> fromString(QStringView text);
    // A finite double through its shortest round-trip text; nothing for NaN or infinity.
    static std::optional<Decimal> fromDouble(double value);

    // The value in plain notation with "." and no exponent, without trailing zeros
    // ("1.5", "-0.25", "100").
    QString toString() const;
    double toDouble() const;

    bool isZero() const { return m_coefficient == 0; }
    bool isNegative() const { return m_coefficient < 0; }

    Decimal operator-() const;
    Decimal operator+(const Decimal &other) const;
    Decimal operator-(const Decimal &other) const;
    Decimal &operator+=(const Decimal &other) { return *this = *this + other; }
    Decimal &operator-=(const Decimal &other) { return *this = *this - other; }
    // Division by a whole number (averages, medians); 38 significant digits, half to even.
    // Division by zero gives zero: callers divide by counts they have checked.
    Decimal dividedBy(qint64 divisor) const;

    friend bool operator==(const Decimal &left, const Decimal &right);
    friend std::strong_ordering operator<=>(const Decimal &left, const Decimal &right);

private:
    // 128-bit integers hold every 38-digit coefficient (10^38 < 2^127) with room for the
    // carry of an addition; GCC and Clang provide them on every platform we build for.
    __extension__ typedef __int128 Coefficient;
    __extension__ typedef unsigned __int128 Magnitude;

    static Decimal fromParts(bool negative, Magnitude magnitude, int exponent);
    Magnitude magnitude() const;
    int digitCount() const;

    Coefficient m_coefficient = 0; // value = m_coefficient × 10^m_exponent
    int m_exponent = 0;
};

Q_DECLARE_METATYPE(Decimal)
