// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/InventoryRow.h"

#include <QTimeZone>

#include <memory>
#include <vector>

struct BrickSetWithCatalogSet;

// Reads a copy and its catalog set into the keys and values of one inventory row, with its
// dates counted in days of `zone`. Called once per copy when it arrives or changes.
class InventoryRowReader
{
public:
    explicit InventoryRowReader(const QTimeZone &zone);

    std::shared_ptr<const InventoryRow> read(const BrickSetWithCatalogSet &copy) const;

private:
    QDate dayOf(qint64 msecsSinceEpoch) const;
    int offsetSecondsAt(qint64 msecsSinceEpoch) const;

    QTimeZone m_zone;
    QString m_disposedYes;
    // The zone's offset from UTC from each transition on, read once: converting each
    // date through QTimeZone costs microseconds, which ten thousand copies multiply into
    // a noticeable pause when the sheet opens.
    struct OffsetChange
    {
        qint64 atMsecs;
        int offsetSeconds;
    };
    std::vector<OffsetChange> m_offsetChanges; // from 1900 to 2200
    qint64 m_tableEndMsecs = 0;
    int m_fixedOffsetSeconds = 0; // for a zone without transitions
};
