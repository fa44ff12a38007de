// SPDX-License-Identifier: GPL-3.0-or-later
// When the overview of an owned copy looks up its set's booklets: the rule on a real store
// file, the screen's flag, and the whole road through LegoInstructionsService and a stand-in
// of LEGO's endpoint on 127.0.0.1 for the answers that leave a marker or nothing.
#include "InstructionsStoreFixture.h"
#include "LegoGraphQLStandIn.h"

#include "Endpoints.h"
#include "EnglishTexts.h"
#include "Services/InstructionLookupGate.h"
#include "Store/CatalogSetAccessors.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace InstructionsStoreFixture;

class InstructionLookupGateTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    QStringList m_asked;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    // Records each number asked for and answers with `instructions`.
    LegoInstructionsService::Fetcher recordingFetcher(const QList<Instruction> &instructions)
    {
        return [this, instructions](QString setNumber) {
            m_asked.append(setNumber);
            return answerWith(instructions);
        };
    }

    bool lookUp(InstructionLookupGate &gate, const LegoInstructionsService::Fetcher &fetcher, const BrickSet &copy)
    {
        const auto outcome = waitForOutcome(gate.lookUpIfNeeded(fetcher, context(), copy));
        if (!outcome.value)
            qWarning("lookUpIfNeeded failed: %s", qPrintable(outcome.failureText()));
        return outcome.value.value_or(false);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // The error sentences are looked up by key; without the table they log warnings.
        QVERIFY(EnglishTexts::install());
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = PersistentContainer::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        m_asked.clear();
    }

    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
        qunsetenv(Endpoints::overrideVariable);
    }

    void ruleNeedsASetWithoutRowsFrom2016OnNotYetAskedFor_data()
    {
        QTest::addColumn<bool>("hasSet");
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("alreadyAsked");
        QTest::addColumn<bool>("needsLookup");
        QTest::newRow("2016, no rows, not asked") << true << 2016 << 0 << false << true;
        QTest::newRow("2024, no rows, not asked") << true << 2024 << 0 << false << true;
        QTest::newRow("2015") << true << 2015 << 0 << false << false;
        QTest::newRow("year unknown") << true << 0 << 0 << false << false;
        QTest::newRow("one row") << true << 2016 << 1 << false << false;
        QTest::newRow("already asked") << true << 2016 << 0 << true << false;
        QTest::newRow("no set") << false << 2016 << 0 << false << false;
    }

    void ruleNeedsASetWithoutRowsFrom2016OnNotYetAskedFor()
    {
        QFETCH(bool, hasSet);
        QFETCH(int, year);
        QFETCH(int, rows);
        QFETCH(bool, alreadyAsked);
        QFETCH(bool, needsLookup);
        std::optional<CatalogSet> set;
        if (hasSet) {
            set = CatalogSet{};
            set->year = qint16(year);
        }
        QCOMPARE(InstructionLookupGate::needsLookup(set, rows, alreadyAsked), needsLookup);
    }

    void setFrom2015IsNeverAskedFor()
    {
        const CatalogSet set = saveCatalogSet(context(), 2015);
        const BrickSet copy = saveCopy(context(), set.objectID);
        InstructionLookupGate gate;
        QVERIFY(!gate.shouldAsk(context(), copy));
        QVERIFY(!lookUp(gate, recordingFetcher({}), copy));
        QVERIFY(m_asked.isEmpty());
        QVERIFY(!gate.hasAsked());
        QVERIFY(storedRows(*m_store).isEmpty());
    }

    void setFrom2016IsAskedForByItsNumberAndItsBookletsStored()
    {
        const CatalogSet set = saveCatalogSet(context(), 2016, u"10497-1"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        InstructionLookupGate gate;
        QVERIFY(gate.shouldAsk(context(), copy));
        Instruction booklet = instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s);
        booklet.coverImageURL = u"https://www.lego.com/cdn/cover.png"_s;
        QVERIFY(lookUp(gate, recordingFetcher({booklet}), copy));
        QCOMPARE(m_asked, QStringList{u"10497-1"_s});
        const QList<CachedInstructionURL> booklets = CatalogSetAccessors::sortedInstructions(context(), set.objectID);
        QCOMPARE(booklets.size(), 1);
        QCOMPARE(booklets.first().descriptionText, std::optional<QString>(u"Building Instructions"_s));
        QCOMPARE(booklets.first().coverImageURL, std::optional<QString>(u"https://www.lego.com/cdn/cover.png"_s));
    }

    void copyWithoutCatalogSetIsNeverAskedFor()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        InstructionLookupGate gate;
        QVERIFY(!gate.shouldAsk(context(), copy));
        QVERIFY(!lookUp(gate, recordingFetcher({}), copy));
        QVERIFY(m_asked.isEmpty());
    }

    void setWithAnyRowIsNotAskedAgain_data()
    {
        QTest::addColumn<bool>("answerHasBooklet");
        QTest::newRow("marker") << false;
        QTest::newRow("booklet") << true;
    }

    void setWithAnyRowIsNotAskedAgain()
    {
        QFETCH(bool, answerHasBooklet);
        QList<Instruction> firstAnswer;
        if (answerHasBooklet)
            firstAnswer.append(instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s));
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const BrickSet copy = saveCopy(context(), set.objectID);
        InstructionLookupGate firstVisit;
        QVERIFY(lookUp(firstVisit, recordingFetcher(firstAnswer), copy));

        // A later visit, another copy of the same set: each a screen of its own.
        InstructionLookupGate laterVisit;
        const BrickSet otherCopy = saveCopy(context(), set.objectID);
        QVERIFY(!laterVisit.shouldAsk(context(), copy));
        QVERIFY(!laterVisit.shouldAsk(context(), otherCopy));
        QVERIFY(!lookUp(laterVisit, recordingFetcher(firstAnswer), otherCopy));
        QCOMPARE(m_asked.size(), 1);
    }

    void screenFlagStopsASecondAskAfterAFailedFetch()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const BrickSet copy = saveCopy(context(), set.objectID);
        LegoGraphQLStandIn standIn;
        QVERIFY(standIn.listen());
        standIn.pointEndpointsHere();
        standIn.serveRaw("<html>not json</html>");
        LegoInstructionsService service;
        const LegoInstructionsService::Fetcher fetcher = [&service](QString setNumber) {
            return service.fetchInstructions(std::move(setNumber));
        };

        InstructionLookupGate gate;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Looking up the building instructions failed: "_s));
        QVERIFY(!lookUp(gate, fetcher, copy));
        QVERIFY(gate.hasAsked());
        QVERIFY(storedRows(*m_store).isEmpty());

        // The same screen does not ask again, although nothing was stored...
        QVERIFY(!gate.shouldAsk(context(), copy));
        QVERIFY(!lookUp(gate, fetcher, copy));
        QCOMPARE(standIn.requests().size(), 1);
        // ...and the next visit of the screen does.
        InstructionLookupGate nextVisit;
        QVERIFY(nextVisit.shouldAsk(context(), copy));
    }

    void serverErrorLeavesOneMarkerThatStopsFurtherAsks()
    {
        // A passing server error is taken for "no booklets": the marker it leaves keeps the
        // set from being asked for again, until its rows are deleted. Kept so on purpose.
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const BrickSet copy = saveCopy(context(), set.objectID);
        LegoGraphQLStandIn standIn;
        QVERIFY(standIn.listen());
        standIn.pointEndpointsHere();
        standIn.serveRaw("Service Unavailable", 500);
        LegoInstructionsService service;
        const LegoInstructionsService::Fetcher fetcher = [&service](QString setNumber) {
            return service.fetchInstructions(std::move(setNumber));
        };

        InstructionLookupGate gate;
        QTest::ignoreMessage(QtWarningMsg, "LEGO instructions API returned non-200 status");
        QVERIFY(lookUp(gate, fetcher, copy));
        const QList<CachedInstructionURL> rows = storedRows(*m_store);
        QCOMPARE(rows.size(), 1);
        QVERIFY(rows.first().isNoneMarker());
        QVERIFY(CatalogSetAccessors::sortedInstructions(context(), set.objectID).isEmpty());

        // The server is back, but the set is not asked for again.
        standIn.serveBooklets({LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s)});
        InstructionLookupGate nextVisit;
        QVERIFY(!nextVisit.shouldAsk(context(), copy));
        QVERIFY(!lookUp(nextVisit, fetcher, copy));
        QCOMPARE(standIn.requests().size(), 1);
        QCOMPARE(storedRows(*m_store).size(), 1);
    }

    void deletingTheMarkerLetsTheSetBeAskedForAgain()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const BrickSet copy = saveCopy(context(), set.objectID);
        InstructionLookupGate firstVisit;
        QVERIFY(lookUp(firstVisit, recordingFetcher({}), copy));
        const QList<CachedInstructionURL> rows = context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s);
        QCOMPARE(rows.size(), 1);
        context().deleteObject(rows.first());
        context().save();

        InstructionLookupGate nextVisit;
        QVERIFY(nextVisit.shouldAsk(context(), copy));
    }
};

QTEST_GUILESS_MAIN(InstructionLookupGateTest)
#include "InstructionLookupGateTest.moc"
