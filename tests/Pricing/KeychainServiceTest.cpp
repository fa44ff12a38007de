// SPDX-License-Identifier: GPL-3.0-or-later
// The credential store against the real secret service of a private D-Bus session, and,
// in a second run of the same executable, with no session bus at all. Each test checks
// the behaviour that fits the run: with a secret service, what is saved and read; without
// one, that saving fails with its sentence and a log line, reading fails with its
// sentence, and no file and no log line holds the credential instead.
// run-with-secret-service.sh sets the run up; see Keychain.cmake.

#include "EnglishTexts.h"
#include "SecretStoreDirectly.h"
#include "Services/KeychainService.h"

#include "LogCapture.h"
#include "TestEnvironment.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDirIterator>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <QCoro/QCoroTask>

#include <qt6keychain/keychain.h>

#include <signal.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace SecretStoreDirectly;
using KeychainError = KeychainService::KeychainError;
using KeychainKey = KeychainService::KeychainKey;

namespace {

// What QtKeychain reports when the session bus cannot be reached (OtherError).
constexpr qint32 noSessionBusStatus = -2070;

// QCoro::waitFor() never returns when the awaited task throws (its event loop is left
// running), so failures are caught inside a coroutine and handed out as values.
template<typename T>
QCoro::Task<std::optional<KeychainError>> failureOf(QCoro::Task<T> task)
{
    std::optional<KeychainError> failure;
    try {
        co_await std::move(task);
    } catch (const KeychainError &error) {
        failure = error;
    }
    co_return failure;
}

std::optional<KeychainError> saveError(KeychainService &service, const QString &value, const QString &key)
{
    return QCoro::waitFor(failureOf(service.save(value, key)));
}

template<typename Key>
std::optional<KeychainError> loadError(KeychainService &service, const Key &key)
{
    return QCoro::waitFor(failureOf(service.load(key)));
}

// Every account any test here uses, cleared before each test.
const QStringList usedAccounts{
    u"pricing.bricklink.consumer_key"_s, u"pricing.bricklink.consumer_secret"_s,
    u"pricing.bricklink.token_value"_s,  u"pricing.bricklink.token_secret"_s,
    u"pricing.brickset.api_key"_s,       u"pricing.brickeconomy.api_token"_s,
    u"pricing.rapidapi.api_key"_s,       u"pricing.ebay.client_id"_s,
    u"pricing.ebay.client_secret"_s,     u"pricing.brickowl.api_key"_s,
    u"brickset_api_key"_s,               u"bricklink_consumer_key"_s,
};

} // namespace

class KeychainServiceTest : public QObject
{
    Q_OBJECT

private:
    bool hasSecretService() const { return m_hasSecretService; }

    // Fails the current test when any file under the test's temporary folders, or any log
    // line so far, holds `text`.
    void verifyKeptNowhereElse(const QString &text, const LogCapture &log)
    {
        const QByteArray bytes = text.toUtf8();
        for (const QString &root : {TestEnvironment::temporaryRoot(), m_secretServiceHome}) {
            QDirIterator files(root, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
            while (files.hasNext()) {
                QFile file(files.next());
                if (!file.open(QIODevice::ReadOnly))
                    continue;
                QVERIFY2(!file.readAll().contains(bytes), qPrintable(u"%1 holds the credential"_s.arg(file.fileName())));
            }
        }
        for (const QString &message : log.messages())
            QVERIFY2(!message.contains(text), qPrintable(u"A log line holds the credential: "_s + message));
    }

    // Without a secret service: the save fails with its sentence and says why in the log.
    void verifySaveFailsWithoutSecretService(KeychainService &service, const QString &value, const QString &key)
    {
        LogCapture log;
        const std::optional<KeychainError> error = saveError(service, value, key);
        QVERIFY(error);
        QCOMPARE(error->kind(), KeychainError::Kind::saveFailed);
        QCOMPARE(error->status(), noSessionBusStatus);
        QCOMPARE(error->errorDescription(), u"Failed to save to Keychain (status: -2070)"_s);
        QVERIFY(log.indexOfMessageStartingWith(
                    u"No secret service is available on this desktop, so the credential \"%1\" was not saved"_s.arg(key))
                >= 0);
        verifyKeptNowhereElse(value, log);
    }

    template<typename Key>
    void verifyLoadFailsWithoutSecretService(KeychainService &service, const Key &key)
    {
        const std::optional<KeychainError> error = loadError(service, key);
        QVERIFY(error);
        QCOMPARE(error->kind(), KeychainError::Kind::loadFailed);
        QCOMPARE(error->errorDescription(), u"Failed to load from Keychain (status: -2070)"_s);
    }

    // Ends the gnome-keyring-daemon that the wrapper started on the private bus; with no
    // activatable services there, nothing takes its place.
    void stopSecretService()
    {
        QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        QVERIFY(bus);
        const QString name = u"org.freedesktop.secrets"_s;
        const QDBusReply<uint> pid = bus->servicePid(name);
        QVERIFY(pid.isValid());
        QCOMPARE(::kill(pid_t(pid.value()), SIGTERM), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!bus->isServiceRegistered(name).value(), 10000);
    }

    bool m_hasSecretService = false;
    QString m_secretServiceHome;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QByteArray setting = qgetenv("TESSALOOM_TEST_SECRET_SERVICE");
        if (setting != "present" && setting != "absent")
            QFAIL("Run through tests/Pricing/run-with-secret-service.sh (present or absent).");
        m_hasSecretService = setting == "present";
        m_secretServiceHome = qEnvironmentVariable("TESSALOOM_TEST_SECRET_SERVICE_HOME");
        QVERIFY(!m_secretServiceHome.isEmpty());
        QVERIFY(EnglishTexts::install());
    }

    void init()
    {
        if (!hasSecretService())
            return;
        for (const QString &account : usedAccounts) {
            const QKeychain::Error error = deleteDirectly(account);
            QVERIFY(error == QKeychain::NoError || error == QKeychain::EntryNotFound);
        }
    }

    void errorsSayWhatFailedWithTheStatus()
    {
        QCOMPARE(KeychainError(KeychainError::Kind::saveFailed, -25293).errorDescription(),
                 u"Failed to save to Keychain (status: -25293)"_s);
        QCOMPARE(KeychainError(KeychainError::Kind::loadFailed, -25300).errorDescription(),
                 u"Failed to load from Keychain (status: -25300)"_s);
        QCOMPARE(KeychainError(KeychainError::Kind::deleteFailed, -36).errorDescription(),
                 u"Failed to delete from Keychain (status: -36)"_s);
        QCOMPARE(QByteArray(KeychainError(KeychainError::Kind::saveFailed, 7).what()),
                 QByteArray("Failed to save to Keychain (status: 7)"));
    }

    void legacyKeysReadTheAccountsOfEarlierVersions()
    {
        QCOMPARE(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"brickset_api_key"_s);
        QCOMPARE(KeychainService::rawValue(KeychainKey::brickLinkConsumerKey), u"bricklink_consumer_key"_s);
        QCOMPARE(KeychainService::rawValue(KeychainKey::brickLinkConsumerSecret), u"bricklink_consumer_secret"_s);
        QCOMPARE(KeychainService::rawValue(KeychainKey::brickLinkTokenValue), u"bricklink_token_value"_s);
        QCOMPARE(KeychainService::rawValue(KeychainKey::brickLinkTokenSecret), u"bricklink_token_secret"_s);
        QCOMPARE(KeychainService::shared().servicePrefix(), u"com.tessaloom.app"_s);
    }

    void loadAfterSaveComesFromTheCacheWithoutAStoreCall()
    {
        KeychainService service;
        const QString key = u"pricing.brickset.api_key"_s;
        if (!hasSecretService()) {
            verifySaveFailsWithoutSecretService(service, u"bs-key-cached-5d1e"_s, key);
            if (QTest::currentTestFailed())
                return;
            // The failed save cached nothing, so the load goes to the store and fails too.
            verifyLoadFailsWithoutSecretService(service, key);
            return;
        }
        QCoro::waitFor(service.save(u"bs-key-cached-5d1e"_s, key));
        // With the item gone from the store, only the cache can still answer.
        QCOMPARE(deleteDirectly(key), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(key)), std::optional<QString>(u"bs-key-cached-5d1e"_s));
        QCOMPARE(QCoro::waitFor(KeychainService().load(key)), std::nullopt);
    }

    void secondSaveReplacesTheItemAndTheCachedValue()
    {
        KeychainService service;
        const QString key = u"pricing.brickeconomy.api_token"_s;
        if (!hasSecretService()) {
            verifySaveFailsWithoutSecretService(service, u"be-token-first-81c2"_s, key);
            if (QTest::currentTestFailed())
                return;
            verifySaveFailsWithoutSecretService(service, u"be-token-second-93d4"_s, key);
            return;
        }
        QCoro::waitFor(service.save(u"be-token-first-81c2"_s, key));
        QCoro::waitFor(service.save(u"be-token-second-93d4"_s, key));
        QCOMPARE(QCoro::waitFor(service.load(key)), std::optional<QString>(u"be-token-second-93d4"_s));
        QCOMPARE(readDirectly(key), std::optional<QByteArray>("be-token-second-93d4"));
    }

    void missingItemIsAbsentWithoutErrorAndIsAskedForAgain()
    {
        KeychainService service;
        const QString key = u"pricing.rapidapi.api_key"_s;
        if (!hasSecretService()) {
            LogCapture log;
            verifyLoadFailsWithoutSecretService(service, key);
            if (QTest::currentTestFailed())
                return;
            QVERIFY(log.indexOfMessageStartingWith(
                        u"The credential \"pricing.rapidapi.api_key\" could not be read from the secret service (status -2070"_s)
                    >= 0);
            return;
        }
        LogCapture log;
        QCOMPARE(QCoro::waitFor(service.load(key)), std::nullopt);
        QVERIFY(log.messages().isEmpty());
        // The miss was not cached: an item added meanwhile by someone else is found.
        QCOMPARE(writeDirectly(key, "rapid-key-added-later-4b7e"), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(key)), std::optional<QString>(u"rapid-key-added-later-4b7e"_s));
    }

    void legacyBricksetKeyReadsItsAccountAndLeavesTheCacheAsItWas()
    {
        KeychainService service;
        const QString account = u"brickset_api_key"_s;
        if (!hasSecretService()) {
            verifyLoadFailsWithoutSecretService(service, KeychainKey::bricksetAPIKey);
            return;
        }
        // A legacy read is not cached...
        QCOMPARE(writeDirectly(account, "legacy-brickset-2a61"), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(KeychainKey::bricksetAPIKey)), std::optional<QString>(u"legacy-brickset-2a61"_s));
        QCOMPARE(deleteDirectly(account), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(KeychainKey::bricksetAPIKey)), std::nullopt);
        QCOMPARE(QCoro::waitFor(service.load(account)), std::nullopt);

        // ...does not read the cache, and does not change what the cache holds for the
        // same account.
        QCoro::waitFor(service.save(u"cached-under-same-account-6c03"_s, account));
        QCOMPARE(writeDirectly(account, "changed-outside-7e15"), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(KeychainKey::bricksetAPIKey)), std::optional<QString>(u"changed-outside-7e15"_s));
        QCOMPARE(QCoro::waitFor(service.load(account)), std::optional<QString>(u"cached-under-same-account-6c03"_s));
    }

    void loadAfterRestartOfTheServiceReadsTheStore()
    {
        const QString key = u"pricing.bricklink.token_secret"_s;
        {
            KeychainService before;
            if (!hasSecretService()) {
                verifySaveFailsWithoutSecretService(before, u"bl-token-secret-0f9b"_s, key);
                if (QTest::currentTestFailed())
                    return;
                KeychainService after;
                verifyLoadFailsWithoutSecretService(after, key);
                return;
            }
            QCoro::waitFor(before.save(u"bl-token-secret-0f9b"_s, key));
        }
        KeychainService after;
        QCOMPARE(QCoro::waitFor(after.load(key)), std::optional<QString>(u"bl-token-secret-0f9b"_s));
    }

    void currentAndLegacyKeysAreSeparateItemsAndNothingIsCopied()
    {
        KeychainService service;
        const QString current = u"pricing.bricklink.consumer_key"_s;
        if (!hasSecretService()) {
            verifyLoadFailsWithoutSecretService(service, current);
            if (QTest::currentTestFailed())
                return;
            verifyLoadFailsWithoutSecretService(service, KeychainKey::brickLinkConsumerKey);
            if (QTest::currentTestFailed())
                return;
            verifySaveFailsWithoutSecretService(service, u"bl-consumer-new-3e8d"_s, current);
            return;
        }
        // A user of an earlier version: only the legacy item exists. Readers ask for the
        // current key first and the legacy one second.
        QCOMPARE(writeDirectly(u"bricklink_consumer_key"_s, "bl-consumer-old-12ab"), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(current)), std::nullopt);
        QCOMPARE(QCoro::waitFor(service.load(KeychainKey::brickLinkConsumerKey)), std::optional<QString>(u"bl-consumer-old-12ab"_s));
        // Reading copied nothing to the current key.
        QCOMPARE(readDirectly(current), std::nullopt);

        // Saving writes the current key only; the legacy item stays as it was.
        QCoro::waitFor(service.save(u"bl-consumer-new-3e8d"_s, current));
        QCOMPARE(QCoro::waitFor(KeychainService().load(current)), std::optional<QString>(u"bl-consumer-new-3e8d"_s));
        QCOMPARE(QCoro::waitFor(service.load(KeychainKey::brickLinkConsumerKey)), std::optional<QString>(u"bl-consumer-old-12ab"_s));
    }

    void valueWithNonAsciiCharactersIsStoredAsUtf8()
    {
        KeychainService service;
        const QString key = u"pricing.ebay.client_secret"_s;
        const QString value = u"Schlüssel-€-日本語-🧱-ñ"_s;
        if (!hasSecretService()) {
            verifySaveFailsWithoutSecretService(service, value, key);
            return;
        }
        LogCapture log;
        QCoro::waitFor(service.save(value, key));
        QCOMPARE(readDirectly(key), std::optional<QByteArray>(value.toUtf8()));
        QCOMPARE(QCoro::waitFor(KeychainService().load(key)), std::optional<QString>(value));
        // The keyring keeps it encrypted; no other file and no log line has it.
        verifyKeptNowhereElse(value, log);
    }

    void emptyValueIsStoredLikeAnyOther()
    {
        KeychainService service;
        const QString key = u"pricing.ebay.client_id"_s;
        if (!hasSecretService()) {
            const std::optional<KeychainError> error = saveError(service, QString(), key);
            QVERIFY(error);
            QCOMPARE(error->kind(), KeychainError::Kind::saveFailed);
            return;
        }
        QCoro::waitFor(service.save(QString(), key));
        const std::optional<QString> loaded = QCoro::waitFor(KeychainService().load(key));
        QVERIFY(loaded);
        QVERIFY(loaded->isEmpty());
    }

    void itemWhoseBytesAreNoUtf8LoadsAsAbsent()
    {
        KeychainService service;
        const QString key = u"pricing.brickowl.api_key"_s;
        if (!hasSecretService()) {
            verifyLoadFailsWithoutSecretService(service, key);
            return;
        }
        QCOMPARE(writeDirectly(key, QByteArray("\xff\xfe-not-text", 11)), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(key)), std::nullopt);
        // Not cached either: once the item is readable, it is read.
        QCOMPARE(writeDirectly(key, "owl-key-readable-58f0"), QKeychain::NoError);
        QCOMPARE(QCoro::waitFor(service.load(key)), std::optional<QString>(u"owl-key-readable-58f0"_s));
    }

    void itemDeletedOutsideTheProgramIsAbsentOnTheNextStoreRead()
    {
        const QString key = u"pricing.bricklink.token_value"_s;
        KeychainService service;
        if (!hasSecretService()) {
            verifySaveFailsWithoutSecretService(service, u"bl-token-value-c4e2"_s, key);
            return;
        }
        QCoro::waitFor(service.save(u"bl-token-value-c4e2"_s, key));
        QCOMPARE(deleteDirectly(key), QKeychain::NoError);
        QCOMPARE(readDirectly(key), std::nullopt);
        QCOMPARE(QCoro::waitFor(KeychainService().load(key)), std::nullopt);
    }

    void operationsStartedTogetherRunOneAtATimeInTheirOrder()
    {
        KeychainService service;
        const QString key = u"pricing.bricklink.consumer_secret"_s;
        // Started without waiting: each takes the service's turn in the order of the calls.
        QCoro::Task<> first = service.save(u"bl-secret-first-a1b2"_s, key);
        QCoro::Task<> second = service.save(u"bl-secret-second-c3d4"_s, key);
        QCoro::Task<std::optional<QString>> reading = service.load(key);
        if (!hasSecretService()) {
            QVERIFY(QCoro::waitFor(failureOf(std::move(first))));
            QVERIFY(QCoro::waitFor(failureOf(std::move(second))));
            QVERIFY(QCoro::waitFor(failureOf(std::move(reading))));
            return;
        }
        QCOMPARE(QCoro::waitFor(std::move(reading)), std::optional<QString>(u"bl-secret-second-c3d4"_s));
        QCoro::waitFor(std::move(first));
        QCoro::waitFor(std::move(second));
        QCOMPARE(readDirectly(key), std::optional<QByteArray>("bl-secret-second-c3d4"));
    }

    // Last on purpose: with a secret service it stops the service, which no later test
    // could use.
    void failedSaveReportsTheStatusAndKeepsTheCachedOldValue()
    {
        KeychainService service;
        const QString key = u"pricing.brickset.api_key"_s;
        if (!hasSecretService()) {
            verifySaveFailsWithoutSecretService(service, u"bs-key-refused-e7a9"_s, key);
            return;
        }
        QCoro::waitFor(service.save(u"bs-key-old-value-b2c8"_s, key));
        stopSecretService();
        if (QTest::currentTestFailed())
            return;

        LogCapture log;
        const std::optional<KeychainError> error = saveError(service, u"bs-key-refused-e7a9"_s, key);
        QVERIFY(error);
        QCOMPARE(error->kind(), KeychainError::Kind::saveFailed);
        QVERIFY(error->status() != KeychainService::statusSuccess);
        QCOMPARE(error->errorDescription(), u"Failed to save to Keychain (status: %1)"_s.arg(error->status()));
        QVERIFY(log.indexOfMessageStartingWith(
                    u"No secret service is available on this desktop, so the credential \"pricing.brickset.api_key\" was not saved"_s)
                >= 0);
        QCOMPARE(QCoro::waitFor(service.load(key)), std::optional<QString>(u"bs-key-old-value-b2c8"_s));
        verifyKeptNowhereElse(u"bs-key-refused-e7a9"_s, log);
    }
};

QTEST_GUILESS_MAIN(KeychainServiceTest)
#include "KeychainServiceTest.moc"
