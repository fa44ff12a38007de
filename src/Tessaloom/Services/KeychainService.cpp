// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/KeychainService.h"

#include "Logging.h"

#include <QCoro/QCoroSignal>
#include <QStringDecoder>

#include <qt6keychain/keychain.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// QtKeychain reports one of a few error kinds; callers and the settings screen see a signed
// 32-bit status instead, the same number the macOS Keychain gives for the same situation, so
// a status reads the same on every platform:
//   NoError             ->       0  success
//   EntryNotFound       ->  -25300  item not found
//   CouldNotDeleteEntry ->     -36  input/output error
//   AccessDeniedByUser  ->    -128  the user cancelled
//   AccessDenied        ->  -25293  authorisation failed (such as a locked keyring)
//   NoBackendAvailable  ->  -25291  no secret store available
//   NotImplemented      ->      -4  not implemented on this platform
//   OtherError          ->   -2070  internal error (such as no secret service on the bus)
qint32 statusFor(QKeychain::Error error)
{
    switch (error) {
    case QKeychain::NoError:
        return KeychainService::statusSuccess;
    case QKeychain::EntryNotFound:
        return KeychainService::statusItemNotFound;
    case QKeychain::CouldNotDeleteEntry:
        return -36;
    case QKeychain::AccessDeniedByUser:
        return -128;
    case QKeychain::AccessDenied:
        return -25293;
    case QKeychain::NoBackendAvailable:
        return -25291;
    case QKeychain::NotImplemented:
        return -4;
    case QKeychain::OtherError:
        return -2070;
    }
    return -2070;
}

// Both mean that nothing on this desktop could take the item: QtKeychain found no store at
// all, or the secret service did not answer on the session bus.
bool meansNoSecretService(QKeychain::Error error)
{
    return error == QKeychain::NoBackendAvailable || error == QKeychain::OtherError;
}

} // namespace

QString KeychainService::rawValue(KeychainKey key)
{
    switch (key) {
    case KeychainKey::bricksetAPIKey:
        return u"brickset_api_key"_s;
    case KeychainKey::brickLinkConsumerKey:
        return u"bricklink_consumer_key"_s;
    case KeychainKey::brickLinkConsumerSecret:
        return u"bricklink_consumer_secret"_s;
    case KeychainKey::brickLinkTokenValue:
        return u"bricklink_token_value"_s;
    case KeychainKey::brickLinkTokenSecret:
        return u"bricklink_token_secret"_s;
    }
    Q_UNREACHABLE();
    return {};
}

KeychainService::KeychainError::KeychainError(Kind kind, qint32 status)
    : m_kind(kind)
    , m_status(status)
    , m_what(errorDescription().toUtf8())
{
}

QString KeychainService::KeychainError::errorDescription() const
{
    const QString status = QString::number(m_status);
    switch (m_kind) {
    case Kind::saveFailed:
        //% "Failed to save to Keychain (status: %1)"
        return qtTrId("keychain.error.saveFailed.").arg(status);
    case Kind::loadFailed:
        //% "Failed to load from Keychain (status: %1)"
        return qtTrId("keychain.error.loadFailed.").arg(status);
    case Kind::deleteFailed:
        //% "Failed to delete from Keychain (status: %1)"
        return qtTrId("keychain.error.deleteFailed.").arg(status);
    }
    Q_UNREACHABLE();
    return {};
}

// What a finished job reported, copied out before the job goes away.
struct KeychainService::StoreReply
{
    QKeychain::Error error = QKeychain::NoError;
    QString errorString;
    QByteArray data;
};

// Holding one is having the service's turn; letting it go hands the turn on.
class KeychainService::Turn
{
public:
    explicit Turn(KeychainService &service)
        : m_service(&service)
    {
    }
    Turn(Turn &&other) noexcept
        : m_service(std::exchange(other.m_service, nullptr))
    {
    }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;
    Turn &operator=(Turn &&) = delete;
    ~Turn()
    {
        if (m_service)
            m_service->passTurn();
    }

private:
    KeychainService *m_service;
};

struct KeychainService::TurnAwaiter
{
    KeychainService &service;

    bool await_ready() noexcept
    {
        if (service.m_busy)
            return false;
        service.m_busy = true;
        return true;
    }
    void await_suspend(std::coroutine_handle<> waiter) { service.m_waiting.push_back(waiter); }
    Turn await_resume() noexcept { return Turn(service); }
};

KeychainService &KeychainService::shared()
{
    // Never destroyed: a task still waiting at exit must not resume into a dead object.
    static KeychainService *const instance = new KeychainService();
    return *instance;
}

KeychainService::KeychainService(QObject *parent)
    : QObject(parent)
    , m_servicePrefix(u"com.tessaloom.app"_s)
{
}

KeychainService::~KeychainService() = default;

KeychainService::TurnAwaiter KeychainService::takeTurn()
{
    return TurnAwaiter{*this};
}

void KeychainService::passTurn()
{
    if (m_waiting.empty()) {
        m_busy = false;
        return;
    }
    // The turn goes straight to the next task (m_busy stays set, so nobody slips in between),
    // which resumes from the event loop rather than inside the frame of the task that just
    // finished: a long queue never nests.
    const std::coroutine_handle<> next = m_waiting.front();
    m_waiting.pop_front();
    QMetaObject::invokeMethod(this, [next] { next.resume(); }, Qt::QueuedConnection);
}

QCoro::Task<KeychainService::StoreReply> KeychainService::runJob(QKeychain::Job &job)
{
    job.setAutoDelete(false);
    // QtKeychain could otherwise fall back to a plain-text settings file when no secret
    // service is around; a credential is kept in the secret store or not at all.
    job.setInsecureFallback(false);
    // Some failures finish the job inside start(); remember those rather than waiting for
    // a signal that has already gone.
    bool finished = false;
    connect(&job, &QKeychain::Job::finished, &job, [&finished] { finished = true; });
    job.start();
    if (!finished)
        co_await qCoro(&job, &QKeychain::Job::finished);

    StoreReply reply{job.error(), job.errorString(), {}};
    if (const auto *read = qobject_cast<const QKeychain::ReadPasswordJob *>(&job))
        reply.data = read->binaryData();
    co_return reply;
}

QCoro::Task<> KeychainService::save(QString value, QString forKey)
{
    const Turn turn = co_await takeTurn();
    const QByteArray bytes = value.toUtf8();

    // A first save has nothing to delete, and a failed delete shows again in the write
    // below, so its outcome does not matter.
    {
        QKeychain::DeletePasswordJob deletion(m_servicePrefix);
        deletion.setKey(forKey);
        co_await runJob(deletion);
    }

    QKeychain::WritePasswordJob write(m_servicePrefix);
    write.setKey(forKey);
    write.setBinaryData(bytes);
    const StoreReply reply = co_await runJob(write);
    if (reply.error != QKeychain::NoError) {
        const qint32 status = statusFor(reply.error);
        // Names the account, never the value.
        if (meansNoSecretService(reply.error)) {
            qCWarning(lcPricing).noquote()
                << u"No secret service is available on this desktop, so the credential \"%1\" was not "
                   u"saved; it is not kept anywhere else. Start the desktop's secret service (such as "
                   u"GNOME Keyring or KWallet) and save it again. (status %2: %3)"_s.arg(forKey)
                       .arg(status)
                       .arg(reply.errorString);
        } else {
            qCWarning(lcPricing).noquote()
                << u"The secret service refused to save the credential \"%1\" (status %2: %3)"_s.arg(forKey)
                       .arg(status)
                       .arg(reply.errorString);
        }
        throw KeychainError(KeychainError::Kind::saveFailed, status);
    }
    m_cache.insert(forKey, value);
}

QCoro::Task<std::optional<QString>> KeychainService::readFromStore(QString account)
{
    QKeychain::ReadPasswordJob read(m_servicePrefix);
    read.setKey(account);
    const StoreReply reply = co_await runJob(read);
    if (reply.error == QKeychain::EntryNotFound)
        co_return std::nullopt;
    if (reply.error != QKeychain::NoError) {
        const qint32 status = statusFor(reply.error);
        qCWarning(lcPricing).noquote()
            << u"The credential \"%1\" could not be read from the secret service (status %2: %3)"_s.arg(account)
                   .arg(status)
                   .arg(reply.errorString);
        throw KeychainError(KeychainError::Kind::loadFailed, status);
    }
    // QtKeychain hands over the bytes of a found item, possibly none for an empty value,
    // so a success always comes with data here.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(reply.data);
    if (decoder.hasError())
        co_return std::nullopt;
    co_return text;
}

QCoro::Task<std::optional<QString>> KeychainService::load(QString forKey)
{
    const Turn turn = co_await takeTurn();
    if (const auto cached = m_cache.constFind(forKey); cached != m_cache.cend())
        co_return *cached;
    std::optional<QString> value = co_await readFromStore(forKey);
    // A miss is not cached: the item may be added later, by a save or by another program.
    if (value)
        m_cache.insert(forKey, *value);
    co_return value;
}

QCoro::Task<std::optional<QString>> KeychainService::load(KeychainKey key)
{
    const Turn turn = co_await takeTurn();
    co_return co_await readFromStore(rawValue(key));
}
