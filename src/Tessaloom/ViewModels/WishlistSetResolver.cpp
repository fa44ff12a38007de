// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/WishlistSetResolver.h"

#include "Services/RebrickableCatalog.h"

WishlistSetResolver::Answers WishlistSetResolver::lookUp(const RebrickableCatalog &catalog,
                                                         const QStringList &setNumbers)
{
    Answers answers;
    answers.reserve(setNumbers.size());
    QHash<int, QString> themeNames;
    for (const QString &number : setNumbers) {
        if (answers.contains(number))
            continue;
        const std::optional<CatalogSetResult> set = catalog.set(number);
        if (!set) {
            answers.insert(number, std::nullopt);
            continue;
        }
        auto theme = themeNames.constFind(set->themeID);
        if (theme == themeNames.cend()) {
            const std::optional<CatalogThemeResult> found = catalog.theme(set->themeID);
            theme = themeNames.insert(set->themeID, found ? found->name : QString());
        }
        answers.insert(number, CatalogFacts{*set, *theme});
    }
    return answers;
}

CatalogSetResult WishlistSetResolver::fromItem(const WishlistItem &item)
{
    CatalogSetResult set;
    set.setNum = item.setNumber.value_or(QString());
    set.name = item.setName && !item.setName->isEmpty() ? *item.setName : set.setNum;
    set.year = item.year;
    set.numParts = item.pieceCount;
    if (item.imageURL && !item.imageURL->isEmpty())
        set.imgURL = item.imageURL;
    return set;
}

CatalogSetResult WishlistSetResolver::resolve(const WishlistItem &item, const std::optional<CatalogFacts> &facts)
{
    return facts ? facts->set : fromItem(item);
}

QString WishlistSetResolver::themeName(const WishlistItem &item, const std::optional<CatalogFacts> &facts)
{
    if (facts && !facts->themeName.isEmpty())
        return facts->themeName;
    return item.themeName.value_or(QString());
}
