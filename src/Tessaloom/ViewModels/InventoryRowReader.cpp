// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryRowReader.h"

#include "Store/ManagedObjectContext.h"
#include "StoredVocabulary.h"

using namespace Qt::StringLiterals;

namespace {

qint64 msecsOf(const std::optional<QDateTime> &instant)
{
    return instant && instant->isValid() ? instant->toMSecsSinceEpoch() : InventoryRow::distantPast;
}

// "zzz" stands for an absent raw value so that such copies sort after every real value
// when ascending, unlike absent prices and dates, which sort first.
QString rawKey(const std::optional<QString> &stored)
{
    return stored ? *stored : u"zzz"_s;
}

QString storedCurrency(const std::optional<QString> &stored)
{
    return stored ? stored->trimmed() : QString();
}

} // namespace

InventoryRowReader::InventoryRowReader(const QTimeZone &zone)
    : m_zone(zone)
    //% "Yes"
    , m_disposedYes(qtTrId("inventory.disposed.yes"))
{
}

QDate InventoryRowReader::dayOf(const std::optional<QDateTime> &instant) const
{
    if (!instant || !instant->isValid())
        return {};
    return instant->toTimeZone(m_zone).date();
}

std::shared_ptr<const InventoryRow> InventoryRowReader::read(const BrickSetWithCatalogSet &copy) const
{
    const BrickSet &set = copy.brickSet;
    auto row = std::make_shared<InventoryRow>();
    row->objectID = set.objectID;
    row->isDisposed = set.isDisposed;

    row->hasCatalogSet = copy.catalogSet.has_value();
    if (copy.catalogSet) {
        row->setNumber = copy.catalogSet->setNumber.value_or(QString());
        row->name = copy.catalogSet->name.value_or(QString());
        row->year = copy.catalogSet->year;
    }
    row->setNumberLowered = row->setNumber.toLower();
    row->nameLowered = row->name.toLower();

    row->conditionKey = rawKey(set.overallCondition);
    row->builtKey = rawKey(set.builtStatus);
    row->conditionText = Vocabulary::displayName(StoredVocabulary::overallCondition(set.overallCondition));
    row->builtText = Vocabulary::displayName(StoredVocabulary::builtStatus(set.builtStatus));

    row->pricePaid = set.pricePaid;
    row->priceCurrency = storedCurrency(set.priceCurrency);
    row->paidKey = set.pricePaid ? set.pricePaid->toDouble() : -1;
    row->disposalPrice = set.disposalPrice;
    row->disposalCurrency = storedCurrency(set.disposalCurrency);
    row->disposedKey = set.disposalPrice ? set.disposalPrice->toDouble() : -1;
    if (set.isDisposed && !set.disposalPrice) {
        // Unlike the editor, an absent or foreign type does not read as "sold" here: the
        // sheet says only that the copy left.
        const std::optional<DisposalType> type = set.disposalType
            ? Vocabulary::fromRawValue<DisposalType>(*set.disposalType)
            : std::nullopt;
        row->disposalWord = type ? Vocabulary::displayName(*type) : m_disposedYes;
    }

    row->acquiredMsecs = msecsOf(set.acquisitionDate);
    row->disposedDateMsecs = msecsOf(set.disposalDate);
    row->addedMsecs = msecsOf(set.dateAdded);
    row->acquiredDay = dayOf(set.acquisitionDate);
    row->disposedDay = dayOf(set.disposalDate);
    row->addedDay = dayOf(set.dateAdded);
    const bool acquired = set.acquisitionDate && set.acquisitionDate->isValid();
    row->filterDateMsecs = acquired ? row->acquiredMsecs : row->addedMsecs;
    row->filterDay = acquired ? row->acquiredDay : row->addedDay;
    return row;
}
