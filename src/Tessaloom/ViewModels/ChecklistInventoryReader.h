// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/ChecklistItem.h"

class RebrickableCatalog;

// Turns a set's newest catalog inventory into checklist rows. Plain reads of the catalog,
// callable on any thread: the checklist runs it on the pool so that a set of a thousand
// lines never holds the main thread while the catalog's lock is busy elsewhere.
class ChecklistInventoryReader
{
public:
    // The non-spare rows of the set's highest inventory version, in the catalog's order by
    // part number. Colours, parts and category names are looked up once each per call, so
    // the number of queries follows the distinct parts, colours and categories, not the
    // rows.
    static QList<ChecklistItem> read(const RebrickableCatalog &catalog, const QString &setNumber);
};
