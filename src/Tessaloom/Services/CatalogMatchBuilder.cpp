// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogMatchBuilder.h"

#include "SearchTokenizer.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int firstYear = 1949;
constexpr int lastYear = 2100;

bool isAllNumeric(const QList<uint> &scalars)
{
    return std::all_of(scalars.cbegin(), scalars.cend(), [](uint scalar) { return QChar::isNumber(char32_t(scalar)); });
}

// A strict integer parse: ASCII digits only, as numeric scripts other than ASCII do not
// read as numbers here.
std::optional<int> asciiInteger(const QList<uint> &scalars)
{
    int value = 0;
    for (const uint scalar : scalars) {
        if (scalar < '0' || scalar > '9')
            return std::nullopt;
        value = value * 10 + int(scalar - '0');
    }
    return value;
}

} // namespace

bool CatalogMatchBuilder::isRemovedCharacter(char32_t character)
{
    switch (character) {
    case U'"': case U'*': case U'(': case U')': case U'{': case U'}': case U':': case U'^': case U'~':
        return true;
    default:
        return false;
    }
}

CatalogMatchBuilder::Match CatalogMatchBuilder::build(const QString &query)
{
    QString cleaned;
    cleaned.reserve(query.size());
    for (const QChar character : query) {
        if (!isRemovedCharacter(character.unicode()))
            cleaned.append(character);
    }

    Match match;
    QStringList clauses;
    // Whitespace is the only separator, exactly as for the search tokenizer.
    for (const SearchTokenizer::Token &piece : SearchTokenizer::tokenize(cleaned)) {
        const QString &token = piece.text;
        const QList<uint> scalars = token.toUcs4();
        if (isAllNumeric(scalars)) {
            const std::optional<int> year = scalars.size() == 4 ? asciiInteger(scalars) : std::nullopt;
            if (year && *year >= firstYear && *year <= lastYear) {
                match.years.append(*year);
                continue;
            }
            clauses.append(u"{set_num}: "_s + token + u'*');
        } else {
            clauses.append(u"{set_num name}: "_s + token + u'*');
        }
    }
    if (!clauses.isEmpty())
        match.matchText = clauses.join(u" AND "_s);
    return match;
}
