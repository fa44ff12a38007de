// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogSetFacts.h"

#include "Services/RebrickableCatalog.h"

#include <QDateTime>

#include <limits>

namespace {

// A year outside the attribute's range means a broken catalog; storing a wrapped value
// would put a wrong fact in the user's collection without a trace.
qint16 storedYear(const CatalogSetResult &row)
{
    if (row.year < std::numeric_limits<qint16>::min() || row.year > std::numeric_limits<qint16>::max())
        qFatal("The catalog year %d of set %s does not fit the store", row.year, qUtf8Printable(row.setNum));
    return qint16(row.year);
}

bool isAbsentOrEmpty(const std::optional<QString> &text)
{
    return !text || text->isEmpty();
}

} // namespace

std::optional<CatalogSetFacts> CatalogSetFacts::read(const RebrickableCatalog &catalog, const QString &number)
{
    std::optional<CatalogSetResult> row = catalog.set(number);
    if (!row)
        return std::nullopt;
    CatalogSetFacts facts;
    facts.m_theme = catalog.theme(row->themeID);
    facts.m_themePath = catalog.themePath(row->themeID);
    facts.m_row = std::move(*row);
    return facts;
}

void CatalogSetFacts::writeInto(CatalogSet &set) const
{
    set.name = m_row.name;
    set.year = storedYear(m_row);
    set.pieceCount = m_row.numParts;
    set.imageURL = m_row.imgURL;
    set.lastSyncDate = QDateTime::currentDateTimeUtc();
    if (isAbsentOrEmpty(set.themeName) && m_theme)
        set.themeName = m_theme->name;
    if (isAbsentOrEmpty(set.themeGroup))
        set.themeGroup = m_themePath;
}
