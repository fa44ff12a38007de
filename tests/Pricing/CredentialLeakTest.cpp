// SPDX-License-Identifier: GPL-3.0-or-later
// An API key goes to the secret service and to the price service's request header, and
// nowhere else: after the key is saved and a price query has run with it, no file under the
// run's home (HOME, the XDG folders and TMPDIR all lie there, see run-with-secret-service.sh)
// and no log line, at any level of any category, holds its text. Run twice, like the other
// credential tests: with a secret service the query really uses the key; without one the
// save fails, and the key must not have found another place to live.
#include "BrickEconomyStandIn.h"
#include "EnglishTexts.h"
#include "Endpoints.h"
#include "LogCapture.h"
#include "PricingProviderError.h"
#include "Services/KeychainService.h"
#include "Services/PricingProviderRegistry.h"
#include "TaskOutcome.h"
#include "SecretFileSearch.h"
#include "TestEnvironment.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTest>

using namespace Qt::StringLiterals;
using CredentialSource = PricingProviderRegistry::CredentialSource;

namespace {

// Distinctive, and with characters outside ASCII so that its UTF-8 and UTF-16 forms differ.
const QString apiKey = u"be-Schlüssel-7f3a9c2e-Ключ-d41d8cd9"_s;
const QString setNumber = u"75192-1"_s;

QCoro::Task<bool> saveTask(KeychainService &service, QString value, QString key)
{
    co_await service.save(std::move(value), std::move(key));
    co_return true;
}

QCoro::Task<QList<PriceResult>> queryTask(PricingProviderRegistry &registry)
{
    PricingProvider *const provider = co_await registry.activeProvider(true);
    if (!provider)
        throw PricingProviderError::missingCredentials(u"BrickEconomy"_s);
    co_return co_await provider->fetchPrices(setNumber);
}

} // namespace

class CredentialLeakTest : public QObject
{
    Q_OBJECT

    bool m_hasSecretService = false;
    QString m_home;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QByteArray setting = qgetenv("TESSALOOM_TEST_SECRET_SERVICE");
        if (setting != "present" && setting != "absent")
            QFAIL("Run through tests/Pricing/run-with-secret-service.sh (present or absent).");
        m_hasSecretService = setting == "present";
        m_home = qEnvironmentVariable("TESSALOOM_TEST_SECRET_SERVICE_HOME");
        QVERIFY(!m_home.isEmpty());
        QVERIFY(EnglishTexts::install());
        // Every category at every level, so that a debug line would be caught too.
        QLoggingCategory::setFilterRules(u"*.debug=true"_s);
    }

    void keyIsInNoFileAndNoLogLineAfterASaveAndAPriceQuery()
    {
        BrickEconomyStandIn standIn;
        QVERIFY(standIn.listen());
        standIn.pointEndpointsHere();
        standIn.serveSet(setNumber, BrickEconomyStandIn::fullSet(setNumber));
        LogCapture log;

        KeychainService service;
        const TaskOutcome<bool> saved = waitForOutcome(saveTask(service, apiKey, u"pricing.brickeconomy.api_token"_s));
        QCOMPARE(!saved.failure, m_hasSecretService);

        PricingProviderRegistry registry(CredentialSource::from(service),
                                         PricingProviderRegistry::defaultProviderFactories());
        const TaskOutcome<QList<PriceResult>> query = waitForOutcome(queryTask(registry));
        if (m_hasSecretService) {
            // The key did its work: it went to the service, in its header, and prices came back.
            QVERIFY2(!query.failure, qPrintable(query.failureText()));
            QVERIFY(!query.value->isEmpty());
            const QList<LoopbackHttpServer::Request> requests = standIn.server().requests();
            QCOMPARE(requests.size(), 1);
            QCOMPARE(requests.first().headers.value("x-apikey"), apiKey.toUtf8());
        } else {
            QVERIFY(query.failure);
            QVERIFY(standIn.server().requests().isEmpty());
        }
        qunsetenv(Endpoints::overrideVariable);

        qInfo("Credential leak check: every line of the run is captured up to here.");
        QVERIFY(log.indexOfMessageStartingWith(u"Credential leak check"_s) >= 0);
        for (const QString &line : log.messages())
            QVERIFY2(!line.contains(apiKey), qPrintable(u"A log line holds the key: "_s + line));
        const QStringList holding = SecretFileSearch::filesHolding(m_home, apiKey);
        QVERIFY2(holding.isEmpty(), qPrintable(u"Files holding the key: "_s + holding.join(u", "_s)));
    }
};

QTEST_GUILESS_MAIN(CredentialLeakTest)
#include "CredentialLeakTest.moc"
