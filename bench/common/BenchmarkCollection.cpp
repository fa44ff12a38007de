// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchmarkCollection.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QUuid>

using namespace Qt::StringLiterals;

void BenchmarkCollection::fill(PersistentContainer &container, int copies)
{
    ManagedObjectContext &context = container.viewContext();
    const QDateTime now = QDateTime::currentDateTime();
    const int sets = std::max(1, copies / 2);
    QList<CatalogSet> catalogSets;
    for (int index = 0; index < sets; ++index) {
        CatalogSet set;
        set.setNumber = QString::number(10000 + index) + u"-1"_s;
        set.name = u"Set "_s + QString::number((index * 7919) % sets);
        set.year = qint16(1980 + index % 45);
        set.pieceCount = index % 3000;
        set.themeName = u"Theme "_s + QString::number(index % 40);
        if (index % 5 == 0)
            set.dateLastAvailable = now.addYears(-1);
        catalogSets.append(context.insert(set));
        if (index % 2 == 0) {
            CachedPriceGuide guide;
            guide.catalogSet = catalogSets.last().objectID;
            guide.conditionType = u"used"_s;
            guide.guideType = u"sold"_s;
            guide.avgPrice = Decimal::fromString(QString::number(10 + index % 500));
            guide.currency = u"USD"_s;
            guide.lastFetchDate = now.addDays(-(index % 20));
            context.insert(guide);
        }
    }
    for (int index = 0; index < copies; ++index) {
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = now.addDays(-(index % 90));
        copy.catalogSet = catalogSets[index % sets].objectID;
        copy.isFavorite = index % 10 == 0;
        if (index % 3 != 0)
            copy.acquisitionType = u"purchased"_s;
        if (index % 4 != 0)
            copy.overallCondition = index % 2 ? u"used"_s : u"new"_s;
        copy.isTrashed = index % 20 == 19;
        context.insert(copy);
    }
    context.save();
}
