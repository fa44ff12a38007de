// SPDX-License-Identifier: GPL-3.0-or-later
// The view model behind the API keys tab over a credential store in memory: which keys it
// reads and in what order, the legacy fallback, and the half-second debounce of each key.
#include "InMemoryCredentialStore.h"
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "ViewModels/PendingCredentialSave.h"
#include "ViewModels/SettingsViewModel.h"
#include "Views/TranslationLoader.h"

#include <QCoroTask>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using KeychainKey = KeychainService::KeychainKey;

namespace {

const QString consumerKey = u"pricing.bricklink.consumer_key"_s;
const QString tokenKey = u"pricing.brickeconomy.api_token"_s;

PricingProviderInfo brickLink()
{
    return {u"bricklink"_s, u"BrickLink"_s, PricingCapability::allSingleSet, u"USD"_s,
            {{u"consumer_key"_s, u"Consumer Key"_s, true}, {u"consumer_secret"_s, u"Consumer Secret"_s, true},
             {u"token_value"_s, u"Token Value"_s, true}, {u"token_secret"_s, u"Token Secret"_s, true}}};
}

PricingProviderInfo brickEconomy()
{
    return {u"brickeconomy"_s, u"BrickEconomy"_s, PricingCapability{55}, u"USD"_s,
            {{u"api_token"_s, u"API Token"_s, true}}};
}

void load(SettingsViewModel &model, QList<PricingProviderInfo> providers)
{
    QCoro::waitFor(model.loadCredentials(std::move(providers)));
}

// Long enough past the pause for a save that should not come to have come.
void waitPastThePause()
{
    QTest::qWait(int(SettingsViewModel::saveDelay.count()) + 300);
}

} // namespace

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void fieldsStartWithTheirStartingValues()
    {
        InMemoryCredentialStore memory;
        const SettingsViewModel model(memory.store());
        QVERIFY(model.providerCredentials().isEmpty());
        QCOMPARE(model.imageCacheSize(), u"Calculating..."_s);
        QCOMPARE(model.preferredCurrency(), u"USD"_s);
        QCOMPARE(model.defaultToGridView(), true);
        QCOMPARE(model.isSaving(), false);
        QVERIFY(!model.saveMessage());
        QCOMPARE(model.isTestingAPI(), false);
        QVERIFY(!model.apiTestResult());
        QCOMPARE(model.credential(tokenKey), QString());
    }

    void credentialKeysJoinProviderAndField()
    {
        QCOMPARE(SettingsViewModel::credentialKey(u"ebay"_s, u"client_id"_s), u"pricing.ebay.client_id"_s);
    }

    void legacyKeysExistForTheFourBrickLinkFieldsAndTheBricksetKeyOnly()
    {
        QVERIFY(SettingsViewModel::legacyKey(consumerKey) == KeychainKey::brickLinkConsumerKey);
        QVERIFY(SettingsViewModel::legacyKey(u"pricing.bricklink.consumer_secret"_s) == KeychainKey::brickLinkConsumerSecret);
        QVERIFY(SettingsViewModel::legacyKey(u"pricing.bricklink.token_value"_s) == KeychainKey::brickLinkTokenValue);
        QVERIFY(SettingsViewModel::legacyKey(u"pricing.bricklink.token_secret"_s) == KeychainKey::brickLinkTokenSecret);
        QVERIFY(SettingsViewModel::legacyKey(u"pricing.brickset.api_key"_s) == KeychainKey::bricksetAPIKey);
        QVERIFY(SettingsViewModel::legacyKey(tokenKey) == std::nullopt);
        QVERIFY(SettingsViewModel::legacyKey(u"pricing.brickowl.api_key"_s) == std::nullopt);
    }

    void loadingReadsEveryFieldInOrderAndThenTheBricksetKey()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(u"pricing.bricklink.consumer_key"_s, u"ck"_s);
        memory.current.insert(u"pricing.bricklink.consumer_secret"_s, u"cs"_s);
        memory.current.insert(u"pricing.bricklink.token_value"_s, u"tv"_s);
        memory.current.insert(u"pricing.bricklink.token_secret"_s, u"ts"_s);
        memory.current.insert(tokenKey, u"be"_s);
        memory.current.insert(u"pricing.brickset.api_key"_s, u"bs"_s);
        SettingsViewModel model(memory.store());
        load(model, {brickLink(), brickEconomy()});
        QCOMPARE(memory.reads, QStringList({u"pricing.bricklink.consumer_key"_s, u"pricing.bricklink.consumer_secret"_s,
                                            u"pricing.bricklink.token_value"_s, u"pricing.bricklink.token_secret"_s,
                                            tokenKey, u"pricing.brickset.api_key"_s}));
        QCOMPARE(model.providerCredentials().size(), 6);
        QCOMPARE(model.credential(tokenKey), u"be"_s);
        QCOMPARE(model.credential(u"pricing.brickset.api_key"_s), u"bs"_s);
        QVERIFY(memory.saves.isEmpty());
    }

    void onlyALegacyBrickLinkKeyIsShownAndStaysLegacyUntilTheFieldIsEdited()
    {
        InMemoryCredentialStore memory;
        memory.legacy.insert(u"bricklink_consumer_key"_s, u"legacy-consumer-key"_s);
        {
            SettingsViewModel model(memory.store());
            load(model, {brickLink()});
            QCOMPARE(model.credential(consumerKey), u"legacy-consumer-key"_s);
            waitPastThePause();
            // Loading copied nothing: the value lives under its old account only.
            QVERIFY(memory.saves.isEmpty());
            QVERIFY(!memory.current.contains(consumerKey));
            QCOMPARE(memory.legacy.value(u"bricklink_consumer_key"_s), u"legacy-consumer-key"_s);

            model.setCredential(u"new-consumer-key"_s, consumerKey);
            QTRY_COMPARE(memory.saves.size(), 1);
        }
        QCOMPARE(memory.current.value(consumerKey), u"new-consumer-key"_s);
        QCOMPARE(memory.legacy.value(u"bricklink_consumer_key"_s), u"legacy-consumer-key"_s);
    }

    void anEmptyCurrentValueFallsBackToTheLegacyKey()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(consumerKey, QString());
        memory.legacy.insert(u"bricklink_consumer_key"_s, u"legacy"_s);
        SettingsViewModel model(memory.store());
        load(model, {brickLink()});
        QCOMPARE(model.credential(consumerKey), u"legacy"_s);
    }

    void anEmptyValueWithoutLegacyKeyShowsNothing()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(tokenKey, QString());
        SettingsViewModel model(memory.store());
        load(model, {brickEconomy()});
        QVERIFY(!model.providerCredentials().contains(tokenKey));
        QCOMPARE(model.credential(tokenKey), QString());
    }

    void aFailedReadIsLoggedAndTheLegacyKeyIsNotTried()
    {
        InMemoryCredentialStore memory;
        memory.failLoads = true;
        memory.legacy.insert(u"bricklink_consumer_key"_s, u"legacy"_s);
        LogCapture log;
        SettingsViewModel model(memory.store());
        load(model, {brickLink()});
        QVERIFY(!memory.reads.contains(u"bricklink_consumer_key"_s));
        QVERIFY(model.providerCredentials().isEmpty());
        QVERIFY(log.messages().contains(
            u"Failed to load credential pricing.bricklink.consumer_key: Failed to load from Keychain (status: -25293)"_s));
        QVERIFY(log.messages().contains(
            u"Failed to load credential pricing.brickset.api_key: Failed to load from Keychain (status: -25293)"_s));
    }

    void aKeystrokeShowsAtOnceAndSavesOnlyAfterThePause()
    {
        InMemoryCredentialStore memory;
        SettingsViewModel model(memory.store());
        QSignalSpy changed(&model, &SettingsViewModel::providerCredentialsChanged);
        const qint64 typedAt = memory.elapsedMs();
        model.setCredential(u"k"_s, tokenKey);
        QCOMPARE(model.credential(tokenKey), u"k"_s);
        QCOMPARE(changed.size(), 1);
        QVERIFY(memory.saves.isEmpty());
        QTRY_COMPARE(memory.saves.size(), 1);
        QVERIFY(memory.saves.first().atMs - typedAt >= SettingsViewModel::saveDelay.count());
    }

    void threeKeystrokesWithinHalfASecondSaveOnceTheLastValue()
    {
        InMemoryCredentialStore memory;
        SettingsViewModel model(memory.store());
        model.setCredential(u"a"_s, tokenKey);
        QTest::qWait(100);
        model.setCredential(u"ab"_s, tokenKey);
        QTest::qWait(100);
        const qint64 lastKeystrokeAt = memory.elapsedMs();
        model.setCredential(u"abc"_s, tokenKey);
        QTRY_COMPARE(memory.saves.size(), 1);
        waitPastThePause();
        QCOMPARE(memory.saves.size(), 1);
        QCOMPARE(memory.saves.first().key, tokenKey);
        QCOMPARE(memory.saves.first().value, u"abc"_s);
        QVERIFY(memory.saves.first().atMs - lastKeystrokeAt >= SettingsViewModel::saveDelay.count());
    }

    void typingInTwoFieldsInTurnSavesBoth()
    {
        InMemoryCredentialStore memory;
        SettingsViewModel model(memory.store());
        model.setCredential(u"c"_s, consumerKey);
        model.setCredential(u"t"_s, tokenKey);
        model.setCredential(u"ck"_s, consumerKey);
        model.setCredential(u"tk"_s, tokenKey);
        QTRY_COMPARE(memory.saves.size(), 2);
        waitPastThePause();
        QCOMPARE(memory.saves.size(), 2);
        QCOMPARE(memory.current.value(consumerKey), u"ck"_s);
        QCOMPARE(memory.current.value(tokenKey), u"tk"_s);
    }

    void anEmptiedFieldSavesTheEmptyText()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(tokenKey, u"old"_s);
        SettingsViewModel model(memory.store());
        model.setCredential(QString(), tokenKey);
        QTRY_COMPARE(memory.saves.size(), 1);
        QVERIFY(memory.current.contains(tokenKey));
        QCOMPARE(memory.current.value(tokenKey), QString());
    }

    void closingTheWindowWithinThePauseDoesNotLoseTheSave()
    {
        InMemoryCredentialStore memory;
        QPointer<PendingCredentialSave> pending;
        {
            auto model = std::make_unique<SettingsViewModel>(memory.store());
            model->setCredential(u"typed-before-closing"_s, tokenKey);
            pending = model->saveTask(tokenKey);
            QVERIFY(pending);
        }
        // The model is gone; its save is not.
        QVERIFY(pending);
        QVERIFY(memory.saves.isEmpty());
        QTRY_COMPARE(memory.saves.size(), 1);
        QCOMPARE(memory.current.value(tokenKey), u"typed-before-closing"_s);
        QTRY_VERIFY(!pending); // and it cleans up after itself
    }

    void quittingWithinThePauseSavesAtOnceAndWaitsForTheSave()
    {
        InMemoryCredentialStore memory;
        {
            SettingsViewModel model(memory.store());
            model.setCredential(u"typed-before-quitting"_s, tokenKey);
            model.setCredential(u"other"_s, consumerKey);
        }
        QCOMPARE(PendingCredentialSave::pendingCount(), 2);
        const qint64 quitAt = memory.elapsedMs();
        QVERIFY(PendingCredentialSave::finishAll());
        QCOMPARE(PendingCredentialSave::pendingCount(), 0);
        QCOMPARE(memory.saves.size(), 2);
        QVERIFY(memory.saves.last().atMs - quitAt < SettingsViewModel::saveDelay.count());
        QCOMPARE(memory.current.value(tokenKey), u"typed-before-quitting"_s);
        QCOMPARE(memory.current.value(consumerKey), u"other"_s);
        waitPastThePause();
        QCOMPARE(memory.saves.size(), 2); // the pauses were stopped, not left to save again
    }

    void aFailedSaveIsDroppedWithoutAWordAndTheFieldKeepsItsValue()
    {
        InMemoryCredentialStore memory;
        memory.failSaves = true;
        SettingsViewModel model(memory.store());
        LogCapture log;
        model.setCredential(u"refused"_s, tokenKey);
        QTRY_COMPARE(memory.saves.size(), 1);
        QTRY_VERIFY(!model.saveTask(tokenKey));
        QVERIFY(log.messages().isEmpty());
        QCOMPARE(model.credential(tokenKey), u"refused"_s);
    }

    void aLoadAfterTypingKeepsTheTypedValue()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(tokenKey, u"stored"_s);
        SettingsViewModel model(memory.store());
        model.setCredential(u"typed"_s, tokenKey);
        load(model, {brickEconomy()});
        QCOMPARE(model.credential(tokenKey), u"typed"_s);
    }

    void theImageCacheSizeIsSetAndAnnounced()
    {
        InMemoryCredentialStore memory;
        SettingsViewModel model(memory.store());
        QSignalSpy changed(&model, &SettingsViewModel::imageCacheSizeChanged);
        model.setImageCacheSize(u"12 MB"_s);
        QCOMPARE(model.imageCacheSize(), u"12 MB"_s);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().first().toString(), u"12 MB"_s);
    }
};

QTEST_GUILESS_MAIN(SettingsViewModelTest)
#include "SettingsViewModelTest.moc"
