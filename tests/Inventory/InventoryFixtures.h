// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the inventory sheet's tests share: a real store file in a temporary folder, filled
// with catalog sets and copies shaped by each test, and instants written as wall-clock
// times of a named zone.

#include "../Store/StoreFixtures.h"

#include <QTimeZone>

#include <functional>
#include <memory>

namespace InventoryFixtures {

using namespace Qt::StringLiterals;

// The wall-clock time `date` `time` in `zoneName` as an instant (UTC).
inline QDateTime at(const QString &zoneName, QDate date, QTime time = QTime(12, 0))
{
    return QDateTime(date, time, QTimeZone(zoneName.toUtf8())).toUTC();
}

inline QDateTime utc(QDate date, QTime time = QTime(12, 0))
{
    return QDateTime(date, time, Qt::UTC);
}

inline Decimal amount(const QString &text)
{
    return *Decimal::fromString(text);
}

class InventoryStore
{
public:
    InventoryStore()
        : m_folder(std::make_unique<QTemporaryDir>())
        , m_store(StoreFixtures::openStore(*m_folder))
    {
    }

    PersistentContainer &container() const { return *m_store; }
    ManagedObjectContext &context() const { return m_store->viewContext(); }

    ObjectID catalogSet(const QString &setNumber, const QString &name, qint16 year = 2020)
    {
        const CatalogSet set = context().insert(StoreFixtures::catalogSet(setNumber, name, year));
        context().save();
        return set.objectID;
    }

    // A saved copy, added at noon UTC on 1 June 2023 unless `configure` says otherwise.
    BrickSet copy(const std::optional<ObjectID> &catalogSet, const std::function<void(BrickSet &)> &configure = {})
    {
        return StoreFixtures::saveCopy(context(), catalogSet, [&configure](BrickSet &copy) {
            copy.dateAdded = utc(QDate(2023, 6, 1));
            if (configure)
                configure(copy);
        });
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
};

} // namespace InventoryFixtures
