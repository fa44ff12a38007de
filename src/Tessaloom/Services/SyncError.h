// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QException>
#include <QString>

// Why a catalog synchronisation of CatalogSyncService did not happen. One fixed,
// translated sentence per case; the payload (a set number, a stage and the cause) is
// filled into it. A QException, so that it crosses QFuture and co_await with its type.
class SyncError : public QException
{
public:
    enum class Kind { setNotFound, syncFailed, catalogUnavailable };

    // The catalog has no set with this (normalised) number.
    static SyncError setNotFound(const QString &setNumber);
    // A step of a synchronisation failed; `underlyingDescription` is the cause's own
    // description. Kept for callers that wrap a failure; the service itself lets store
    // errors through as they are.
    static SyncError syncFailed(const QString &stage, const QString &underlyingDescription);
    // Neither the user's catalog file nor the bundled one could be opened.
    static SyncError catalogUnavailable();

    Kind kind() const { return m_kind; }
    QString setNumber() const { return m_setNumber; }
    QString stage() const { return m_stage; }
    QString underlyingDescription() const { return m_underlyingDescription; }
    // The sentence shown to the user, in the user's language.
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }
    void raise() const override { throw *this; }
    SyncError *clone() const override { return new SyncError(*this); }

private:
    SyncError(Kind kind, QString setNumber, QString stage, QString underlyingDescription);

    Kind m_kind;
    QString m_setNumber;
    QString m_stage;
    QString m_underlyingDescription;
    QByteArray m_what;
};
