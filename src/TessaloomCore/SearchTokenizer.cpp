// SPDX-License-Identifier: GPL-3.0-or-later
#include "SearchTokenizer.h"

QList<SearchTokenizer::Token> SearchTokenizer::tokenize(const QString &text)
{
    QList<Token> tokens;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool atSeparator = i == text.size() || text.at(i).isSpace();
        if (!atSeparator) {
            if (start < 0)
                start = i;
            continue;
        }
        if (start >= 0) {
            const QString piece = text.mid(start, i - start);
            tokens.append(Token{piece, yearOf(piece)});
            start = -1;
        }
    }
    return tokens;
}

// A year here is 2000 to 2999 and nothing else: 1999 is deliberately not a year for the
// tokenizer, although the catalog's own match builder accepts years from 1949. The two
// rules serve different paths and stay apart.
std::optional<int> SearchTokenizer::yearOf(const QString &token)
{
    if (token.size() != 4 || token.at(0) != u'2')
        return std::nullopt;
    int value = 0;
    for (const QChar character : token) {
        const char16_t unit = character.unicode();
        if (unit < u'0' || unit > u'9')
            return std::nullopt;
        value = value * 10 + (unit - u'0');
    }
    return value;
}
