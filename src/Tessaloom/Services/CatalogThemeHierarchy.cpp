// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogThemeHierarchy.h"

#include <QStringList>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

QList<ThemeNode> CatalogThemeHierarchy::tree(const QList<CatalogThemeResult> &themesByName,
                                             const QSet<int> &usedThemeIDs)
{
    QList<const CatalogThemeResult *> roots;
    QHash<int, QList<const CatalogThemeResult *>> childrenByParent;
    for (const CatalogThemeResult &theme : themesByName) {
        if (theme.parentID)
            childrenByParent[*theme.parentID].append(&theme);
        else
            roots.append(&theme);
    }

    // A cycle in parent_id cannot reach a root, so the recursion from the roots ends.
    const std::function<std::optional<ThemeNode>(const CatalogThemeResult &)> nodeFor =
        [&](const CatalogThemeResult &theme) -> std::optional<ThemeNode> {
        ThemeNode node{theme.id, theme.name, {}};
        for (const CatalogThemeResult *child : childrenByParent.value(theme.id)) {
            if (auto childNode = nodeFor(*child))
                node.children.append(std::move(*childNode));
        }
        if (usedThemeIDs.contains(theme.id) || !node.children.isEmpty())
            return node;
        return std::nullopt;
    };

    QList<ThemeNode> nodes;
    for (const CatalogThemeResult *root : roots) {
        if (auto node = nodeFor(*root))
            nodes.append(std::move(*node));
    }
    return nodes;
}

QString CatalogThemeHierarchy::path(int id, const QHash<int, CatalogThemeResult> &themesByID)
{
    QStringList names;
    QSet<int> visited; // a cycle in parent_id must not hang the screens
    std::optional<int> current = id;
    while (current && !visited.contains(*current)) {
        const auto theme = themesByID.constFind(*current);
        if (theme == themesByID.cend())
            break;
        visited.insert(*current);
        names.prepend(theme->name);
        current = theme->parentID;
    }
    return names.join(u" > "_s);
}

QList<FlatThemeResult> CatalogThemeHierarchy::flat(const QList<CatalogThemeResult> &themesByName,
                                                   const QHash<int, ThemeStats> &statsByThemeID)
{
    QHash<int, CatalogThemeResult> themesByID;
    themesByID.reserve(themesByName.size());
    for (const CatalogThemeResult &theme : themesByName)
        themesByID.insert(theme.id, theme);

    QList<FlatThemeResult> results;
    for (const CatalogThemeResult &theme : themesByName) {
        const auto stats = statsByThemeID.constFind(theme.id);
        if (stats == statsByThemeID.cend())
            continue;
        results.append({theme.id, theme.name, path(theme.id, themesByID), stats->count, stats->minYear, stats->maxYear});
    }
    std::stable_sort(results.begin(), results.end(), [](const FlatThemeResult &left, const FlatThemeResult &right) {
        return QString::localeAwareCompare(left.path.toCaseFolded(), right.path.toCaseFolded()) < 0;
    });
    return results;
}
