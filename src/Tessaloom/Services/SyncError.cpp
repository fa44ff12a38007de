// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/SyncError.h"

#include <QCoreApplication>

SyncError::SyncError(Kind kind, QString setNumber, QString stage, QString underlyingDescription)
    : m_kind(kind)
    , m_setNumber(std::move(setNumber))
    , m_stage(std::move(stage))
    , m_underlyingDescription(std::move(underlyingDescription))
    , m_what(description().toUtf8())
{
}

SyncError SyncError::setNotFound(const QString &setNumber)
{
    return SyncError(Kind::setNotFound, setNumber, {}, {});
}

SyncError SyncError::syncFailed(const QString &stage, const QString &underlyingDescription)
{
    return SyncError(Kind::syncFailed, {}, stage, underlyingDescription);
}

SyncError SyncError::catalogUnavailable()
{
    return SyncError(Kind::catalogUnavailable, {}, {}, {});
}

QString SyncError::description() const
{
    switch (m_kind) {
    case Kind::setNotFound:
        //% "Set %1 not found"
        return qtTrId("sync.error.setNotFound").arg(m_setNumber);
    case Kind::syncFailed:
        // One arg() call for both, so that a "%2" inside the stage stays text.
        //% "Sync failed at %1: %2"
        return qtTrId("sync.error.syncFailed").arg(m_stage, m_underlyingDescription);
    case Kind::catalogUnavailable:
        //% "Rebrickable catalog database not available"
        return qtTrId("sync.error.catalogUnavailable");
    }
    return {};
}
