// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/InstructionCacheWriter.h"

#include "Logging.h"
#include "Store/CachedInstructionURL.h"
#include "Store/CatalogSet.h"
#include "Store/ManagedObjectContext.h"

#include <exception>

using namespace Qt::StringLiterals;

bool InstructionCacheWriter::store(ManagedObjectContext &viewContext, const ObjectID &catalogSet,
                                   const QList<LegoInstructionsService::Instruction> &instructions, const QDateTime &now)
{
    try {
        if (!viewContext.existingObject<CatalogSet>(catalogSet))
            return false;

        if (instructions.isEmpty()) {
            // The marker: the lookup was made and found nothing. Even an answer that was
            // empty only because the service failed for a moment leaves it, and the set is
            // not looked up again unless its rows are deleted.
            CachedInstructionURL marker;
            marker.pdfURL = CachedInstructionURL::noneMarker;
            marker.lastFetchDate = now;
            marker.catalogSet = catalogSet;
            viewContext.insert(marker);
        }
        for (const LegoInstructionsService::Instruction &instruction : instructions) {
            CachedInstructionURL booklet;
            booklet.pdfURL = instruction.pdfURL.toString(QUrl::FullyEncoded);
            booklet.descriptionText = instruction.displayTitle();
            booklet.coverImageURL = instruction.coverImageURL;
            booklet.lastFetchDate = now;
            booklet.catalogSet = catalogSet;
            viewContext.insert(booklet);
        }
        viewContext.save();
        viewContext.refresh(catalogSet, true);
        return true;
    } catch (const StoreError &error) {
        qCWarning(lcInstructions).noquote() << "Saving the building instructions failed:" << error.description();
        return false;
    }
}

QCoro::Task<bool> InstructionCacheWriter::fetchAndStore(LegoInstructionsService::Fetcher fetcher,
                                                        ManagedObjectContext &viewContext, ObjectID catalogSet,
                                                        QString setNumber)
{
    QList<LegoInstructionsService::Instruction> instructions;
    try {
        instructions = co_await fetcher(setNumber);
    } catch (const std::exception &error) {
        qCWarning(lcInstructions).noquote() << "Looking up the building instructions failed:"
                                            << QString::fromUtf8(error.what());
        co_return false;
    }
    co_return store(viewContext, catalogSet, instructions);
}
