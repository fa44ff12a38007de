// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the tests of storing booklets share: catalog sets and copies in a real store,
// booklets as the service returns them, a fetcher that answers at once, and the rows as
// a fresh connection reads them from the file.

#include "Services/LegoInstructionsService.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QUuid>

namespace InstructionsStoreFixture {

using Instruction = LegoInstructionsService::Instruction;

inline CatalogSet saveCatalogSet(ManagedObjectContext &context, qint16 year,
                                 const QString &setNumber = QStringLiteral("10497-1"))
{
    CatalogSet set;
    set.setNumber = setNumber;
    set.name = QStringLiteral("Galaxy Explorer");
    set.year = year;
    set = context.insert(set);
    context.save();
    return set;
}

inline BrickSet copyOf(const std::optional<ObjectID> &catalogSet)
{
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = catalogSet;
    copy.setAcquisitionType(AcquisitionType::unknown);
    return copy;
}

inline BrickSet saveCopy(ManagedObjectContext &context, const std::optional<ObjectID> &catalogSet)
{
    BrickSet copy = context.insert(copyOf(catalogSet));
    context.save();
    return copy;
}

inline Instruction instruction(int bookNumber, int totalBooks, const QString &pdfURL)
{
    Instruction instruction;
    instruction.bookNumber = bookNumber;
    instruction.totalBooks = totalBooks;
    instruction.pdfURL = QUrl(pdfURL);
    return instruction;
}

inline QCoro::Task<QList<Instruction>> answerWith(QList<Instruction> instructions)
{
    co_return instructions;
}

// Every CachedInstructionURL in the file, in the order they were written, read through a
// context of its own, so only what was saved counts.
inline QList<CachedInstructionURL> storedRows(PersistentContainer &store)
{
    const auto reader = store.newBackgroundContext();
    return reader->performAndWait([](ManagedObjectContext &context) {
        return context.fetch(FetchRequest<CachedInstructionURL>(Predicate::alwaysTrue()));
    });
}

} // namespace InstructionsStoreFixture
