// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/InstructionLookupGate.h"

#include "Services/InstructionCacheWriter.h"
#include "Store/CachedInstructionURL.h"
#include "Store/ManagedObjectContext.h"

using namespace Qt::StringLiterals;

bool InstructionLookupGate::needsLookup(const std::optional<CatalogSet> &catalogSet, qsizetype storedInstructionRows,
                                        bool alreadyAsked)
{
    // No refetch age: once a set has rows, booklets or the marker, it stays as it is.
    return catalogSet && storedInstructionRows == 0 && catalogSet->year >= firstCoveredYear && !alreadyAsked;
}

bool InstructionLookupGate::shouldAsk(ManagedObjectContext &viewContext, const BrickSet &copy) const
{
    if (m_hasAsked || !copy.catalogSet)
        return false;
    const std::optional<CatalogSet> catalogSet = viewContext.existingObject<CatalogSet>(*copy.catalogSet);
    if (!catalogSet)
        return false;
    const qsizetype rows = viewContext.related<CachedInstructionURL>(catalogSet->objectID, u"cachedInstructions"_s).size();
    return needsLookup(catalogSet, rows, m_hasAsked);
}

QCoro::Task<bool> InstructionLookupGate::lookUpIfNeeded(LegoInstructionsService::Fetcher fetcher,
                                                        ManagedObjectContext &viewContext, BrickSet copy)
{
    if (!shouldAsk(viewContext, copy))
        co_return false;
    // Marked before the request goes out: the screen may appear again while it runs.
    m_hasAsked = true;
    const std::optional<CatalogSet> catalogSet = viewContext.existingObject<CatalogSet>(*copy.catalogSet);
    co_return co_await InstructionCacheWriter::fetchAndStore(std::move(fetcher), viewContext, catalogSet->objectID,
                                                             catalogSet->setNumber.value_or(QString()));
}
