// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ForeignCollectionImport.h"

#include "AcquisitionType.h"
#include "CSVFieldSyntax.h"
#include "Logging.h"
#include "Services/CatalogSetFacts.h"
#include "Services/RebrickableCatalog.h"
#include "SetNumberNormalizer.h"
#include "Store/ManagedObjectContext.h"

#include <QDateTime>
#include <QHash>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;
using CSVExportImportService::ImportError;
using CSVExportImportService::ImportProgress;
using CSVExportImportService::ImportResult;

namespace {

constexpr qint64 entriesPerProgressReport = 500;

// The catalog sets of the entries, each found or made once per import. The store's sets are
// read once before the first entry: a query per entry would write every pending change of
// the import into the database again for each read.
class SetsOfImport
{
public:
    explicit SetsOfImport(ManagedObjectContext &context)
        : m_context(context)
        , m_catalog(RebrickableCatalog::shared())
    {
        try {
            const QList<CatalogSet> sets = context.fetch(FetchRequest<CatalogSet>(Predicate::isNotNil(u"setNumber"_s)));
            m_stored.reserve(sets.size());
            // The first in insertion order answers for its number, as a fetch limited to one
            // object would.
            for (const CatalogSet &set : sets) {
                if (!m_stored.contains(*set.setNumber))
                    m_stored.insert(*set.setNumber, set);
            }
        } catch (const StoreError &error) {
            // Counted as none stored: the entries' sets are made anew.
            qCWarning(lcPersistence) << "Set list import: reading the catalog sets failed:" << error.description();
        }
    }

    // The set of `fileNumber`, a number as the other tool wrote it, with or without its
    // version suffix.
    ObjectID setFor(const QString &fileNumber)
    {
        const QString number = SetNumberNormalizer::catalogNumber(fileNumber);
        if (const auto done = m_ofThisImport.constFind(number); done != m_ofThisImport.cend())
            return *done;

        // A set the user already has, under the catalog's number or, put there by an import
        // of his own CSV file, under the number as the other tool wrote it.
        std::optional<CatalogSet> set;
        for (const QString &candidate : {number, fileNumber.trimmed()}) {
            if (const auto stored = m_stored.constFind(candidate); stored != m_stored.cend()) {
                set = *stored;
                break;
            }
        }
        const std::optional<CatalogSetFacts> facts = m_catalog ? CatalogSetFacts::read(*m_catalog, number)
                                                               : std::nullopt;
        ObjectID objectID;
        if (set) {
            if (facts) {
                facts->writeInto(*set);
                m_context.update(*set);
            }
            objectID = set->objectID;
        } else {
            CatalogSet made;
            made.setNumber = number;
            if (facts)
                facts->writeInto(made);
            objectID = m_context.insert(made).objectID;
        }
        m_ofThisImport.insert(number, objectID);
        return objectID;
    }

private:
    ManagedObjectContext &m_context;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    QHash<QString, CatalogSet> m_stored;
    QHash<QString, ObjectID> m_ofThisImport;
};

} // namespace

ImportResult ForeignCollectionImport::run(const ImportedSetList &list, ManagedObjectContext &context,
                                          const ImportProgress &progress)
{
    if (list.unreadable)
        throw ImportError(ImportError::Kind::unreadableSetList, *list.unreadable);

    ImportResult result;
    result.errors = list.skipped;
    const qint64 entryCount = list.entries.size();
    // The copies of one import were added together.
    const QDateTime importTime = QDateTime::currentDateTimeUtc();
    try {
        SetsOfImport sets(context);
        qint64 done = 0;
        for (const ImportedSetListEntry &entry : list.entries) {
            if (progress && done > 0 && done % entriesPerProgressReport == 0)
                progress(done, entryCount);
            ++done;
            // XML lets a number hold a line break; stored, it would cut the line of every
            // collection CSV export in two, and no set is numbered so.
            if (std::any_of(entry.setNumber.cbegin(), entry.setNumber.cend(),
                            [](QChar unit) { return CSVFieldSyntax::isNewline(unit.unicode()); })) {
                result.errors.append(u"Line %1: invalid set number"_s.arg(entry.lineNumber));
                continue;
            }
            const ObjectID set = sets.setFor(entry.setNumber);
            for (qint64 made = 0; made < entry.quantity; ++made) {
                BrickSet copy;
                copy.id = QUuid::createUuid();
                copy.dateAdded = importTime;
                copy.catalogSet = set;
                copy.setAcquisitionType(AcquisitionType::unknown);
                context.insert(copy);
            }
            result.created += entry.quantity;
        }
        context.save();
    } catch (...) {
        // Nothing of a failed import is kept, not even for a later save of this context.
        context.rollback();
        throw;
    }
    if (progress)
        progress(entryCount, entryCount);
    return result;
}
