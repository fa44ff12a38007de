// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>

class ManagedObjectContext;

// The collection as Rebrickable's set list CSV, for collectors who keep a list there too:
// the copies the user has (neither in the trash nor parted with), counted per set number.
class RebrickableSetListExport
{
public:
    // (set number in the catalog's form, copies) per set, in the order the first copy of
    // each was added. Copies stored under "75192" and "75192-1" count as one set. Copies
    // without a set are left out. A fetch that fails counts as no copies.
    static QList<QPair<QString, qint64>> counts(ManagedObjectContext &context);

    // The file's text for counts(); see RebrickableSetListFormat::write().
    static QString text(ManagedObjectContext &context);
};
