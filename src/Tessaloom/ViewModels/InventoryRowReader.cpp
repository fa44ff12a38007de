// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryRowReader.h"

#include "Store/ManagedObjectContext.h"
#include "StoredVocabulary.h"

#include <algorithm>

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
    : m_zone(zone.isValid() ? zone : QTimeZone::utc())
    //% "Yes"
    , m_disposedYes(qtTrId("inventory.disposed.yes"))
{
    const QDateTime first(QDate(1900, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime end(QDate(2200, 1, 1), QTime(0, 0), Qt::UTC);
    m_fixedOffsetSeconds = m_zone.offsetFromUtc(first);
    m_tableEndMsecs = end.toMSecsSinceEpoch();
    if (m_zone.hasTransitions()) {
        const QTimeZone::OffsetDataList transitions = m_zone.transitions(first, end);
        m_offsetChanges.reserve(std::size_t(transitions.size()));
        for (const QTimeZone::OffsetData &transition : transitions)
            m_offsetChanges.push_back({transition.atUtc.toMSecsSinceEpoch(), transition.offsetFromUtc});
        // The table of changes may end before the zone's clocks stop changing (the
        // rule that goes on after the last listed change is not listed); the table is
        // trusted beyond its last change only when the clocks stand still there.
        if (!m_offsetChanges.empty()) {
            const OffsetChange &last = m_offsetChanges.back();
            const QDateTime lastAt = QDateTime::fromMSecsSinceEpoch(last.atMsecs, Qt::UTC);
            const QDate nextYear = lastAt.date().addYears(1);
            const bool standsStill = [&] {
                for (const QDate day : {QDate(nextYear.year(), 1, 1), QDate(nextYear.year(), 7, 1), QDate(2199, 1, 1),
                                        QDate(2199, 7, 1)}) {
                    if (m_zone.offsetFromUtc(QDateTime(day, QTime(0, 0), Qt::UTC)) != last.offsetSeconds)
                        return false;
                }
                return true;
            }();
            if (!standsStill)
                m_tableEndMsecs = last.atMsecs;
        }
    }
}

int InventoryRowReader::offsetSecondsAt(qint64 msecsSinceEpoch) const
{
    if (!m_zone.hasTransitions())
        return m_fixedOffsetSeconds;
    // Outside the table the zone itself answers, slowly but rightly.
    if (m_offsetChanges.empty() || msecsSinceEpoch < m_offsetChanges.front().atMsecs
        || msecsSinceEpoch >= m_tableEndMsecs)
        return m_zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, Qt::UTC));
    const auto after = std::upper_bound(m_offsetChanges.cbegin(), m_offsetChanges.cend(), msecsSinceEpoch,
                                        [](qint64 at, const OffsetChange &change) { return at < change.atMsecs; });
    return std::prev(after)->offsetSeconds;
}

QDate InventoryRowReader::dayOf(qint64 msecsSinceEpoch) const
{
    if (msecsSinceEpoch == InventoryRow::distantPast)
        return {};
    constexpr qint64 msecsPerDay = 86'400'000;
    constexpr qint64 julianDayOfEpoch = 2'440'588;
    const qint64 local = msecsSinceEpoch + qint64(offsetSecondsAt(msecsSinceEpoch)) * 1000;
    // Floor division, so instants before 1970 fall on the right day too.
    const qint64 days = local >= 0 ? local / msecsPerDay : -((-local + msecsPerDay - 1) / msecsPerDay);
    return QDate::fromJulianDay(julianDayOfEpoch + days);
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
    row->acquiredDay = dayOf(row->acquiredMsecs);
    row->disposedDay = dayOf(row->disposedDateMsecs);
    row->addedDay = dayOf(row->addedMsecs);
    const bool acquired = set.acquisitionDate && set.acquisitionDate->isValid();
    row->filterDateMsecs = acquired ? row->acquiredMsecs : row->addedMsecs;
    row->filterDay = acquired ? row->acquiredDay : row->addedDay;
    return row;
}
