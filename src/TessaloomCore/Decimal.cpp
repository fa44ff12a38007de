// SPDX-License-Identifier: GPL-3.0-or-later
#include "Decimal.h"

#include <QLocale>

#include <algorithm>

namespace {

__extension__ typedef unsigned __int128 Magnitude;

// Exponents beyond this are refused on input: no price needs them, and the bound keeps
// every exponent computation far from integer overflow.
constexpr int exponentLimit = 4000;

constexpr Magnitude powerOfTen(int exponent)
{
    Magnitude result = 1;
    for (int i = 0; i < exponent; ++i)
        result *= 10;
    return result;
}

constexpr Magnitude coefficientLimit = powerOfTen(Decimal::maximumDigits); // exclusive

int digitsOf(Magnitude value)
{
    int digits = 1;
    while (value >= 10) {
        value /= 10;
        ++digits;
    }
    return digits;
}

// Divides by 10^places, rounding half to even on what is cut off.
Magnitude roundOff(Magnitude value, int places)
{
    if (places <= 0)
        return value;
    if (places > Decimal::maximumDigits + 1)
        return 0; // everything is cut off and less than half of one unit remains
    const Magnitude divisor = powerOfTen(places);
    const Magnitude quotient = value / divisor;
    const Magnitude remainder = value % divisor;
    const Magnitude half = divisor / 2;
    if (remainder > half || (remainder == half && (quotient % 2) == 1))
        return quotient + 1;
    return quotient;
}

} // namespace

Decimal::Decimal(int value)
    : Decimal(qint64(value))
{
}

Decimal::Decimal(qint64 value)
{
    const bool negative = value < 0;
    // Through the unsigned type so that the most negative 64-bit value has a magnitude.
    const Magnitude magnitude = negative ? Magnitude(0) - Magnitude(Coefficient(value)) : Magnitude(value);
    *this = fromParts(negative, magnitude, 0);
}

// Builds a value from sign, magnitude and exponent: rounds to 38 significant digits,
// strips trailing zeros so that equal values have one representation, and gives zero a
// single form.
Decimal Decimal::fromParts(bool negative, Magnitude magnitude, int exponent)
{
    while (magnitude >= coefficientLimit) {
        const int excess = digitsOf(magnitude) - maximumDigits;
        magnitude = roundOff(magnitude, excess);
        exponent += excess;
    }
    Decimal result;
    if (magnitude == 0)
        return result;
    while (magnitude % 10 == 0) {
        magnitude /= 10;
        ++exponent;
    }
    result.m_coefficient = negative ? -Coefficient(magnitude) : Coefficient(magnitude);
    result.m_exponent = exponent;
    return result;
}

Decimal::Magnitude Decimal::magnitude() const
{
    return m_coefficient < 0 ? Magnitude(-m_coefficient) : Magnitude(m_coefficient);
}

int Decimal::digitCount() const
{
    return digitsOf(magnitude());
}

std::optional<Decimal> Decimal::fromString(QStringView text)
{
    qsizetype position = 0;
    bool negative = false;
    if (position < text.size() && (text[position] == u'-' || text[position] == u'+')) {
        negative = text[position] == u'-';
        ++position;
    }

    Magnitude magnitude = 0;
    int significantDigits = 0;
    int exponent = 0;
    int firstDroppedDigit = -1;
    bool droppedNonZeroAfterFirst = false;
    bool sawDigit = false;
    bool sawPoint = false;

    for (; position < text.size(); ++position) {
        const QChar character = text[position];
        if (character == u'.') {
            if (sawPoint)
                return std::nullopt;
            sawPoint = true;
            continue;
        }
        const char16_t unit = character.unicode();
        if (unit < u'0' || unit > u'9')
            break;
        sawDigit = true;
        const int digit = unit - u'0';
        if (significantDigits < maximumDigits) {
            if (magnitude == 0 && digit == 0) {
                if (sawPoint)
                    --exponent; // a leading zero of the fraction only moves the point
                continue;
            }
            magnitude = magnitude * 10 + Magnitude(digit);
            ++significantDigits;
            if (sawPoint)
                --exponent;
        } else {
            // Digits beyond the 38th are kept only as far as rounding needs them.
            if (firstDroppedDigit < 0)
                firstDroppedDigit = digit;
            else if (digit != 0)
                droppedNonZeroAfterFirst = true;
            if (!sawPoint)
                ++exponent;
        }
    }
    if (!sawDigit)
        return std::nullopt;

    if (position < text.size()) {
        if (text[position] != u'e' && text[position] != u'E')
            return std::nullopt;
        ++position;
        bool exponentNegative = false;
        if (position < text.size() && (text[position] == u'-' || text[position] == u'+')) {
            exponentNegative = text[position] == u'-';
            ++position;
        }
        if (position == text.size())
            return std::nullopt;
        int written = 0;
        for (; position < text.size(); ++position) {
            const char16_t unit = text[position].unicode();
            if (unit < u'0' || unit > u'9')
                return std::nullopt;
            written = written * 10 + (unit - u'0');
            if (written > exponentLimit)
                return std::nullopt;
        }
        exponent += exponentNegative ? -written : written;
    }
    if (exponent > exponentLimit || exponent < -exponentLimit)
        return std::nullopt;

    if (firstDroppedDigit > 5 || (firstDroppedDigit == 5 && (droppedNonZeroAfterFirst || magnitude % 2 == 1)))
        magnitude += 1;
    return fromParts(negative, magnitude, exponent);
}

std::optional<Decimal> Decimal::fromDouble(double value)
{
    if (!qIsFinite(value))
        return std::nullopt;
    return fromString(QString::number(value, 'g', QLocale::FloatingPointShortest));
}

QString Decimal::toString() const
{
    if (m_coefficient == 0)
        return QStringLiteral("0");
    QString digits;
    for (Magnitude rest = magnitude(); rest > 0; rest /= 10)
        digits.prepend(QChar(char16_t(u'0' + int(rest % 10))));
    if (m_exponent >= 0) {
        digits.append(QString(m_exponent, u'0'));
    } else {
        const qsizetype fractionLength = -m_exponent;
        if (digits.size() <= fractionLength)
            digits.prepend(QString(fractionLength - digits.size() + 1, u'0'));
        digits.insert(digits.size() - fractionLength, u'.');
    }
    if (m_coefficient < 0)
        digits.prepend(u'-');
    return digits;
}

double Decimal::toDouble() const
{
    // QString::toDouble reads the C locale and rounds correctly.
    return toString().toDouble();
}

Decimal Decimal::operator-() const
{
    Decimal result = *this;
    result.m_coefficient = -m_coefficient;
    return result;
}

Decimal Decimal::operator+(const Decimal &other) const
{
    if (other.isZero())
        return *this;
    if (isZero())
        return other;

    // Bring both to one exponent. The operand with the larger exponent is scaled up while
    // it stays below 10^38; what difference remains is rounded off the other one, whose
    // cut-off digits lie below the 38 the sum can hold anyway.
    const Decimal *coarse = m_exponent >= other.m_exponent ? this : &other;
    const Decimal *fine = coarse == this ? &other : this;
    Magnitude coarseMagnitude = coarse->magnitude();
    Magnitude fineMagnitude = fine->magnitude();
    int exponent = coarse->m_exponent;
    while (exponent > fine->m_exponent && coarseMagnitude < coefficientLimit / 10) {
        coarseMagnitude *= 10;
        --exponent;
    }
    fineMagnitude = roundOff(fineMagnitude, exponent - fine->m_exponent);

    // Magnitudes below 10^38 each: their sum stays far below 2^128.
    const bool coarseNegative = coarse->isNegative();
    if (coarseNegative == fine->isNegative())
        return fromParts(coarseNegative, coarseMagnitude + fineMagnitude, exponent);
    if (coarseMagnitude >= fineMagnitude)
        return fromParts(coarseNegative, coarseMagnitude - fineMagnitude, exponent);
    return fromParts(!coarseNegative, fineMagnitude - coarseMagnitude, exponent);
}

Decimal Decimal::operator-(const Decimal &other) const
{
    return *this + (-other);
}

Decimal Decimal::dividedBy(qint64 divisor) const
{
    if (divisor == 0 || isZero())
        return Decimal();
    const bool negative = isNegative() != (divisor < 0);
    const Magnitude divisorMagnitude = divisor < 0 ? Magnitude(0) - Magnitude(Coefficient(divisor)) : Magnitude(divisor);

    // Long division, one decimal digit at a time, until the quotient holds 38 digits or
    // the division comes out even. The remainder stays below the divisor (< 2^63), so
    // remainder × 10 never overflows.
    Magnitude quotient = magnitude() / divisorMagnitude;
    Magnitude remainder = magnitude() % divisorMagnitude;
    int exponent = m_exponent;
    while (remainder != 0 && quotient < coefficientLimit / 10) {
        remainder *= 10;
        quotient = quotient * 10 + remainder / divisorMagnitude;
        remainder %= divisorMagnitude;
        --exponent;
    }
    const Magnitude twiceRemainder = remainder * 2;
    if (twiceRemainder > divisorMagnitude || (twiceRemainder == divisorMagnitude && quotient % 2 == 1))
        quotient += 1;
    return fromParts(negative, quotient, exponent);
}

bool operator==(const Decimal &left, const Decimal &right)
{
    // Values are normalised on construction, so equal values have equal parts.
    return left.m_coefficient == right.m_coefficient && left.m_exponent == right.m_exponent;
}

std::strong_ordering operator<=>(const Decimal &left, const Decimal &right)
{
    const int leftSign = left.m_coefficient < 0 ? -1 : (left.m_coefficient > 0 ? 1 : 0);
    const int rightSign = right.m_coefficient < 0 ? -1 : (right.m_coefficient > 0 ? 1 : 0);
    if (leftSign != rightSign || leftSign == 0)
        return leftSign <=> rightSign;

    // Same sign, both non-zero: compare magnitudes, first by the position of the leading
    // digit, then digit by digit once aligned (the alignment is at most 37 places).
    std::strong_ordering magnitudeOrder = std::strong_ordering::equal;
    const int leftLead = left.digitCount() + left.m_exponent;
    const int rightLead = right.digitCount() + right.m_exponent;
    if (leftLead != rightLead) {
        magnitudeOrder = leftLead <=> rightLead;
    } else {
        Decimal::Magnitude leftMagnitude = left.magnitude();
        Decimal::Magnitude rightMagnitude = right.magnitude();
        const int common = std::min(left.m_exponent, right.m_exponent);
        leftMagnitude *= powerOfTen(left.m_exponent - common);
        rightMagnitude *= powerOfTen(right.m_exponent - common);
        magnitudeOrder = leftMagnitude <=> rightMagnitude;
    }
    return leftSign > 0 ? magnitudeOrder : 0 <=> magnitudeOrder;
}
