// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The plain values the catalog's queries answer with. They carry no connection and may
// cross threads freely.

#include <QList>
#include <QString>

#include <optional>

struct CatalogSetResult
{
    QString setNum;
    QString name;
    int year = 0;
    int themeID = 0;
    int numParts = 0;
    std::optional<QString> imgURL;

    friend bool operator==(const CatalogSetResult &, const CatalogSetResult &) = default;
};

struct CatalogInventoryPartResult
{
    QString partNum;
    int colorID = 0;
    int quantity = 0;
    bool isSpare = false;
    std::optional<QString> imgURL;

    friend bool operator==(const CatalogInventoryPartResult &, const CatalogInventoryPartResult &) = default;
};

struct CatalogPartResult
{
    QString partNum;
    QString name;
    int partCatID = 0;

    friend bool operator==(const CatalogPartResult &, const CatalogPartResult &) = default;
};

struct CatalogColorResult
{
    int id = 0;
    QString name;
    QString rgb;
    bool isTransparent = false;

    friend bool operator==(const CatalogColorResult &, const CatalogColorResult &) = default;
};

struct CatalogThemeResult
{
    int id = 0;
    QString name;
    std::optional<int> parentID;

    friend bool operator==(const CatalogThemeResult &, const CatalogThemeResult &) = default;
};

struct FlatThemeResult
{
    int id = 0;
    QString name;
    QString path; // ancestors' names and its own, outermost first, joined with " > "
    int setCount = 0;
    int minYear = 0;
    int maxYear = 0;

    friend bool operator==(const FlatThemeResult &, const FlatThemeResult &) = default;
};

struct ThemeNode
{
    int id = 0;
    QString name;
    QList<ThemeNode> children;

    friend bool operator==(const ThemeNode &, const ThemeNode &) = default;
};
