// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QException>
#include <QHash>
#include <QObject>
#include <QString>

#include <QCoro/QCoroTask>

#include <coroutine>
#include <deque>
#include <optional>

namespace QKeychain {
class Job;
}

// The credential store: each API key the user enters is one item of the desktop's secret
// service (through QtKeychain), under the service name "com.tessaloom.app" with the
// credential's key as the account. Keys never go to a settings file, a log line or a
// temporary file; when the desktop has no secret service, saving fails and says so.
//
// Why coroutines: QtKeychain's jobs answer through a signal, and a secret service may take
// a while (D-Bus round trips, an unlock prompt). Each operation is a QCoro task on the main
// thread's event loop that awaits the job's `finished` signal, so the window stays
// responsive while the store works, and no nested event loop runs behind a caller's back.
// The operations still run one at a time: each takes the service's turn before its first
// store call and keeps it until it returns, so the delete-then-write of a save is never
// interleaved with another operation, and the cache only ever reflects completed calls.
// Tasks waiting for the turn get it first in, first out.
class KeychainService : public QObject
{
    Q_OBJECT

public:
    // Accounts written by earlier versions of the program. Readers try the current key
    // ("pricing.<provider>.<field>") first and one of these second; nothing copies a value
    // between the two: it moves to the current key when the user saves it again.
    enum class KeychainKey {
        bricksetAPIKey,
        brickLinkConsumerKey,
        brickLinkConsumerSecret,
        brickLinkTokenValue,
        brickLinkTokenSecret,
    };
    // The account of a legacy key, such as "brickset_api_key".
    static QString rawValue(KeychainKey key);

    // A store call that failed. The status is the store's code for what went wrong (see
    // statusFor() in the source for how QtKeychain's errors map to it); the description
    // is what the settings screen shows.
    class KeychainError : public QException
    {
    public:
        enum class Kind {
            saveFailed,
            loadFailed,
            // Ready for a delete operation; nothing raises it today.
            deleteFailed,
        };

        KeychainError(Kind kind, qint32 status);

        Kind kind() const { return m_kind; }
        qint32 status() const { return m_status; }
        // The localised sentence with the status, such as
        // "Failed to save to Keychain (status: -25291)".
        QString errorDescription() const;

        const char *what() const noexcept override { return m_what.constData(); }
        void raise() const override { throw *this; }
        KeychainError *clone() const override { return new KeychainError(*this); }

    private:
        Kind m_kind;
        qint32 m_status;
        QByteArray m_what;
    };

    // The status of a successful call, and of a read that found no item.
    static constexpr qint32 statusSuccess = 0;
    static constexpr qint32 statusItemNotFound = -25300;

    // The process-wide instance, made on first use; it lives to the end of the program.
    static KeychainService &shared();

    // A service object of its own, with an empty cache. Everything but tests uses shared().
    // Destroy it only while no operation is running or waiting.
    explicit KeychainService(QObject *parent = nullptr);
    ~KeychainService() override;

    // The service attribute of every item: "com.tessaloom.app".
    QString servicePrefix() const { return m_servicePrefix; }

    // Replaces the item of `forKey` with `value` (its UTF-8 bytes; an empty value is
    // stored like any other) and caches the value. Throws KeychainError saveFailed when
    // the store refuses it: the cache is then left as it was, and the old item is gone.
    QCoro::Task<> save(QString value, QString forKey);
    // The value of a current-form key: from the cache when it holds one, else from the
    // store, caching what it finds. Absent when there is no item (not cached, so the next
    // call asks the store again) or when its bytes are no UTF-8. Throws loadFailed.
    QCoro::Task<std::optional<QString>> load(QString forKey);
    // The value of a legacy key, always from the store; never reads or fills the cache.
    QCoro::Task<std::optional<QString>> load(KeychainKey key);

private:
    struct StoreReply;
    class Turn;
    struct TurnAwaiter;

    TurnAwaiter takeTurn();
    void passTurn();
    QCoro::Task<StoreReply> runJob(QKeychain::Job &job);
    QCoro::Task<std::optional<QString>> readFromStore(QString account);

    const QString m_servicePrefix;
    // Account to value, in memory only and never cleared: a handful of short entries.
    QHash<QString, QString> m_cache;
    bool m_busy = false;
    std::deque<std::coroutine_handle<>> m_waiting;
};
