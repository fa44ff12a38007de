// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/InventoryRow.h"

#include <QTimeZone>

#include <memory>

struct BrickSetWithCatalogSet;

// Reads a copy and its catalog set into the keys and values of one inventory row, with its
// dates counted in days of `zone`. Called once per copy when it arrives or changes.
class InventoryRowReader
{
public:
    explicit InventoryRowReader(const QTimeZone &zone);

    std::shared_ptr<const InventoryRow> read(const BrickSetWithCatalogSet &copy) const;

private:
    QDate dayOf(const std::optional<QDateTime> &instant) const;

    QTimeZone m_zone;
    QString m_disposedYes;
};
