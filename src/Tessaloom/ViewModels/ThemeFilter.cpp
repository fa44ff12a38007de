// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ThemeFilter.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<int> yearOf(const QString &piece)
{
    if (piece.size() != 4 || !(piece.startsWith(u"19"_s) || piece.startsWith(u"20"_s)))
        return std::nullopt;
    // Only plain ASCII digits: QString::toInt would also take surrounding whitespace,
    // and a piece such as "199\t" is text, not a year.
    int year = 0;
    for (const QChar character : piece) {
        if (character < u'0' || character > u'9')
            return std::nullopt;
        year = year * 10 + (character.unicode() - u'0');
    }
    return year;
}

} // namespace

ThemeFilter::Query ThemeFilter::parse(const QString &searchText)
{
    Query query;
    const QStringList pieces = searchText.split(u' ', Qt::SkipEmptyParts);
    for (const QString &piece : pieces) {
        if (const std::optional<int> year = yearOf(piece))
            query.year = year;
        else
            query.tokens.append(piece.toLower());
    }
    return query;
}

bool ThemeFilter::matches(const FlatThemeResult &theme, const Query &query)
{
    if (query.year && (theme.minYear > *query.year || theme.maxYear < *query.year))
        return false;
    if (query.tokens.isEmpty())
        return true;
    const QString path = theme.path.toLower();
    for (const QString &token : query.tokens) {
        if (!path.contains(token))
            return false;
    }
    return true;
}

QList<FlatThemeResult> ThemeFilter::filter(const QList<FlatThemeResult> &themes, const QString &searchText)
{
    if (searchText.isEmpty())
        return themes;
    const Query query = parse(searchText);
    QList<FlatThemeResult> kept;
    for (const FlatThemeResult &theme : themes) {
        if (matches(theme, query))
            kept.append(theme);
    }
    return kept;
}
