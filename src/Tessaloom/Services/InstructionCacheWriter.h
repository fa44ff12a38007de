// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"
#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QDateTime>
#include <QList>
#include <QString>

class ManagedObjectContext;

// Keeps the booklets found for an owned copy's catalog set in the collection store, as
// CachedInstructionURL rows of that set, so that its overview lists them without asking
// LEGO again. An answer without booklets is kept too, as one "none" marker row: a set
// that has any row, marker or booklet, is never looked up again.
//
// Main thread only: it writes through the view context.
class InstructionCacheWriter
{
public:
    // One row per booklet (its address as text, its display title as description, its
    // cover and `now`), or the marker row for an empty list; then saves and refreshes the
    // set with its changes merged. Nothing is written when `catalogSet` no longer names a
    // catalog set: it was deleted while the answer was on its way. True when the rows were
    // written; a failed save is logged and the rows stay pending for the next save.
    static bool store(ManagedObjectContext &viewContext, const ObjectID &catalogSet,
                      const QList<LegoInstructionsService::Instruction> &instructions,
                      const QDateTime &now = QDateTime::currentDateTimeUtc());

    // Asks `fetcher` for `setNumber` and stores the answer for `catalogSet`. A failed fetch
    // is logged and stores nothing, so that the next visit of the screen asks again.
    // `viewContext` belongs to the store, which outlives every screen.
    static QCoro::Task<bool> fetchAndStore(LegoInstructionsService::Fetcher fetcher, ManagedObjectContext &viewContext,
                                           ObjectID catalogSet, QString setNumber);
};
