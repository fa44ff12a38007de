// SPDX-License-Identifier: GPL-3.0-or-later
// InstructionCacheWriter on a real store file: what an answer leaves as CachedInstructionURL
// rows of a catalog set, and that nothing is left when the set is gone or the fetch failed.
#include "InstructionsStoreFixture.h"

#include "EnglishTexts.h"
#include "NetworkTransportError.h"
#include "Services/InstructionCacheWriter.h"
#include "Store/CatalogSetAccessors.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace InstructionsStoreFixture;

namespace {

QCoro::Task<QList<Instruction>> deleteSetThenAnswer(ManagedObjectContext *context, ObjectID catalogSet,
                                                    QList<Instruction> instructions)
{
    // The set goes while the answer is on its way.
    context->deleteObject(catalogSet);
    context->save();
    co_return instructions;
}

QCoro::Task<QList<Instruction>> failTransfer()
{
    throw NetworkTransportError(NetworkTransportError::Kind::failed, QNetworkReply::ConnectionRefusedError,
                                u"Connection refused"_s);
    co_return {};
}

} // namespace

class InstructionCacheWriterTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;

    ManagedObjectContext &context() { return m_store->viewContext(); }

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
    }

    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void bookletsAreStoredWithTheirTitlesAndCovers()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const QDateTime now = QDateTime::fromMSecsSinceEpoch(1'760'000'000'000, Qt::UTC);
        Instruction second = instruction(2, 2, u"https://www.lego.com/cdn/6200002.pdf"_s);
        second.coverImageURL = u"https://www.lego.com/cdn/cover2.png"_s;
        const Instruction first = instruction(1, 2, u"https://www.lego.com/cdn/6200001.pdf"_s);

        QVERIFY(InstructionCacheWriter::store(context(), set.objectID, {first, second}, now));

        const QList<CachedInstructionURL> rows = storedRows(*m_store);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0).pdfURL, std::optional<QString>(u"https://www.lego.com/cdn/6200001.pdf"_s));
        QCOMPARE(rows.at(0).descriptionText, std::optional<QString>(u"Book 1 of 2"_s));
        QCOMPARE(rows.at(0).coverImageURL, std::nullopt);
        QCOMPARE(rows.at(0).lastFetchDate, std::optional<QDateTime>(now));
        QCOMPARE(rows.at(0).catalogSet, std::optional<ObjectID>(set.objectID));
        QCOMPARE(rows.at(1).pdfURL, std::optional<QString>(u"https://www.lego.com/cdn/6200002.pdf"_s));
        QCOMPARE(rows.at(1).descriptionText, std::optional<QString>(u"Book 2 of 2"_s));
        QCOMPARE(rows.at(1).coverImageURL, std::optional<QString>(u"https://www.lego.com/cdn/cover2.png"_s));
    }

    void singleAndAdditionalBookletsAreStoredUnderTheirTitles()
    {
        const CatalogSet set = saveCatalogSet(context(), 2021);
        Instruction additional = instruction(2, 1, u"https://www.lego.com/cdn/extra.pdf"_s);
        additional.isAdditional = true;
        QVERIFY(InstructionCacheWriter::store(context(), set.objectID,
                                              {instruction(1, 1, u"https://www.lego.com/cdn/main.pdf"_s), additional}));
        const QList<CachedInstructionURL> booklets = CatalogSetAccessors::sortedInstructions(context(), set.objectID);
        QCOMPARE(booklets.size(), 2);
        QCOMPARE(booklets.at(0).descriptionText, std::optional<QString>(u"Additional Info"_s));
        QCOMPARE(booklets.at(1).descriptionText, std::optional<QString>(u"Building Instructions"_s));
    }

    void emptyAnswerLeavesExactlyOneMarkerRow()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const QDateTime now = QDateTime::fromMSecsSinceEpoch(1'760'000'000'000, Qt::UTC);
        QVERIFY(InstructionCacheWriter::store(context(), set.objectID, {}, now));

        const QList<CachedInstructionURL> rows = storedRows(*m_store);
        QCOMPARE(rows.size(), 1);
        QVERIFY(rows.first().isNoneMarker());
        QCOMPARE(rows.first().pdfURL, std::optional<QString>(u"none"_s));
        QCOMPARE(rows.first().descriptionText, std::nullopt);
        QCOMPARE(rows.first().coverImageURL, std::nullopt);
        QCOMPARE(rows.first().lastFetchDate, std::optional<QDateTime>(now));
        QCOMPARE(rows.first().catalogSet, std::optional<ObjectID>(set.objectID));
    }

    void markerRowIsNeverInSortedInstructions()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        QVERIFY(InstructionCacheWriter::store(context(), set.objectID, {}));
        QCOMPARE(context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).size(), 1);
        QVERIFY(CatalogSetAccessors::sortedInstructions(context(), set.objectID).isEmpty());

        // Beside a booklet stored later (by hand, as a lookup never adds to a set that has rows).
        QVERIFY(InstructionCacheWriter::store(context(), set.objectID,
                                              {instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s)}));
        const QList<CachedInstructionURL> booklets = CatalogSetAccessors::sortedInstructions(context(), set.objectID);
        QCOMPARE(booklets.size(), 1);
        QCOMPARE(booklets.first().pdfURL, std::optional<QString>(u"https://www.lego.com/cdn/6200001.pdf"_s));
    }

    void storedRowsBelongOnlyToTheirSet()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020, u"10497-1"_s);
        const CatalogSet other = saveCatalogSet(context(), 2020, u"75192-1"_s);
        QVERIFY(InstructionCacheWriter::store(context(), set.objectID,
                                              {instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s)}));
        QCOMPARE(context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).size(), 1);
        QVERIFY(context().related<CachedInstructionURL>(other.objectID, u"cachedInstructions"_s).isEmpty());
    }

    void catalogSetDeletedBeforeTheAnswerLandsStoresNothing()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const QList<Instruction> answer{instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s)};
        ManagedObjectContext *viewContext = &context();
        const ObjectID id = set.objectID;
        const LegoInstructionsService::Fetcher fetcher = [viewContext, id, answer](QString) {
            return deleteSetThenAnswer(viewContext, id, answer);
        };

        const auto outcome = waitForOutcome(InstructionCacheWriter::fetchAndStore(fetcher, context(), id, u"10497-1"_s));
        QCOMPARE(outcome.value, std::optional<bool>(false));
        QVERIFY(!context().existingObject<CatalogSet>(id));
        QVERIFY(storedRows(*m_store).isEmpty());
    }

    void identifierOfAnotherEntityStoresNothing()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        BrickSet copy = context().insert(copyOf(set.objectID));
        context().save();
        QVERIFY(!InstructionCacheWriter::store(context(), copy.objectID, {}));
        QVERIFY(storedRows(*m_store).isEmpty());
    }

    void failedFetchStoresNothing()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        const LegoInstructionsService::Fetcher fetcher = [](QString) { return failTransfer(); };
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(u"^Looking up the building instructions failed: "_s));
        const auto outcome =
            waitForOutcome(InstructionCacheWriter::fetchAndStore(fetcher, context(), set.objectID, u"10497-1"_s));
        QCOMPARE(outcome.value, std::optional<bool>(false));
        QVERIFY(storedRows(*m_store).isEmpty());
        QVERIFY(!context().hasChanges());
    }

    void answerFetchedForTheGivenNumberIsStored()
    {
        const CatalogSet set = saveCatalogSet(context(), 2020);
        QStringList asked;
        const LegoInstructionsService::Fetcher fetcher = [&asked](QString setNumber) {
            asked.append(setNumber);
            return answerWith({instruction(1, 1, u"https://www.lego.com/cdn/6200001.pdf"_s)});
        };
        const auto outcome =
            waitForOutcome(InstructionCacheWriter::fetchAndStore(fetcher, context(), set.objectID, u"10497-1"_s));
        QCOMPARE(outcome.value, std::optional<bool>(true));
        QCOMPARE(asked, QStringList{u"10497-1"_s});
        QCOMPARE(storedRows(*m_store).size(), 1);
    }
};

QTEST_GUILESS_MAIN(InstructionCacheWriterTest)
#include "InstructionCacheWriterTest.moc"
