// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"
#include "Store/BrickSet.h"
#include "Store/CatalogSet.h"

#include <QCoroTask>

#include <optional>

class ManagedObjectContext;

// Decides whether the overview of an owned copy looks up the building instructions of
// its set when it comes on screen, and remembers for its screen that it has asked. One
// gate per screen: the flag is what stops a second request while the first is on its way
// or after it failed.
class InstructionLookupGate
{
public:
    // LEGO's instruction service covers sets from this year on; older sets are never asked for.
    static constexpr qint16 firstCoveredYear = 2016;

    // The rule itself: the copy has a catalog set, that set has no stored instruction row
    // at all (the "none" marker counts as one), it is from firstCoveredYear or later, and
    // the screen has not asked yet.
    static bool needsLookup(const std::optional<CatalogSet> &catalogSet, qsizetype storedInstructionRows,
                            bool alreadyAsked);

    // The rule for `copy` as the view context sees it now.
    bool shouldAsk(ManagedObjectContext &viewContext, const BrickSet &copy) const;
    bool hasAsked() const { return m_hasAsked; }

    // When shouldAsk(), marks the screen as having asked, fetches with `fetcher` and stores
    // the answer (InstructionCacheWriter). True when rows were stored, so the screen
    // redraws; false when nothing was asked or the fetch failed. The gate and
    // `viewContext` must outlive the call.
    QCoro::Task<bool> lookUpIfNeeded(LegoInstructionsService::Fetcher fetcher, ManagedObjectContext &viewContext,
                                     BrickSet copy);

private:
    bool m_hasAsked = false;
};
