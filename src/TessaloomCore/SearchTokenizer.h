// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

// Cuts what the user typed into a search field into tokens, marking the ones that read as
// a year. Only whitespace separates: commas, hyphens and slashes stay inside a token, and
// a token keeps its text exactly as typed.
class SearchTokenizer
{
public:
    struct Token
    {
        QString text;
        std::optional<int> year; // present only for four ASCII digits starting with 2

        friend bool operator==(const Token &, const Token &) = default;
    };

    static QList<Token> tokenize(const QString &text);

private:
    static std::optional<int> yearOf(const QString &token);
};
