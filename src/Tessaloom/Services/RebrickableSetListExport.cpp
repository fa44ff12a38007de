// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/RebrickableSetListExport.h"

#include "Logging.h"
#include "RebrickableSetListFormat.h"
#include "SetNumberNormalizer.h"
#include "Store/BrickSet.h"
#include "Store/ManagedObjectContext.h"

#include <QHash>

using namespace Qt::StringLiterals;

QList<QPair<QString, qint64>> RebrickableSetListExport::counts(ManagedObjectContext &context)
{
    QList<BrickSetWithCatalogSet> copies;
    try {
        const FetchRequest<BrickSet> owned(Predicate::allOf(
            {Predicate::equal(u"isTrashed"_s, false), Predicate::equal(u"isDisposed"_s, false)}));
        copies = context.fetchBrickSetsWithCatalogSets(owned);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Rebrickable set list export: reading the copies failed:" << error.description();
    }

    QList<QPair<QString, qint64>> counts;
    QHash<QString, qsizetype> positions;
    for (const BrickSetWithCatalogSet &copy : std::as_const(copies)) {
        if (!copy.catalogSet || !copy.catalogSet->setNumber || copy.catalogSet->setNumber->trimmed().isEmpty())
            continue;
        const QString number = SetNumberNormalizer::catalogNumber(copy.catalogSet->setNumber->trimmed());
        const auto known = positions.constFind(number);
        if (known != positions.cend()) {
            ++counts[*known].second;
            continue;
        }
        positions.insert(number, counts.size());
        counts.append({number, 1});
    }
    return counts;
}

QString RebrickableSetListExport::text(ManagedObjectContext &context)
{
    return RebrickableSetListFormat::write(counts(context));
}
