// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "ViewModels/CollectionFetchRequest.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class CollectionFetchRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    CatalogSet m_falcon;
    CatalogSet m_oldFalcon;
    CatalogSet m_castle;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

    // The set numbers that the request fetches, in its order; "?" for a copy without a set.
    QStringList fetched(const FetchRequest<BrickSet> &request)
    {
        QStringList numbers;
        for (const BrickSetWithCatalogSet &row : context().fetchBrickSetsWithCatalogSets(request))
            numbers << (row.catalogSet ? row.catalogSet->setNumber.value_or(QString()) : u"?"_s);
        return numbers;
    }

    QStringList fetched(const QString &itemID, const QString &searchText = QString(),
                        const CollectionFetchRequest::Filters &filters = {},
                        const QDateTime &now = QDateTime::currentDateTime())
    {
        return fetched(CollectionFetchRequest::build(SetListSelection::fromItemID(itemID), searchText, filters,
                                                     {{u"catalogSet.name"_s, true}, {u"catalogSet.setNumber"_s, true}},
                                                     now));
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void init()
    {
        m_store = PersistenceController::open(QString(), true);
        m_falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        m_oldFalcon = context().insert(catalogSet(u"7965-1"_s, u"Millennium Falcon"_s, 2011));
        CatalogSet castle = catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022);
        castle.themeName = u"Castle"_s;
        m_castle = context().insert(castle);
        context().save();
    }

    void cleanup() { m_store.reset(); }

    void everyTokenMustMatchSomeField()
    {
        saveCopy(context(), m_falcon.objectID);
        saveCopy(context(), m_oldFalcon.objectID);
        saveCopy(context(), m_castle.objectID);
        QCOMPARE(fetched(u"all_sets"_s, u"falcon 75192"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetched(u"all_sets"_s, u"2011"_s), QStringList{u"7965-1"_s});
        QVERIFY(fetched(u"all_sets"_s, u"castle 75192"_s).isEmpty());
    }

    void theSearchTextIsLeftOutOverACatalogSelection()
    {
        saveCopy(context(), m_falcon.objectID);
        saveCopy(context(), m_castle.objectID);
        QCOMPARE(fetched(u"catalog_all"_s, u"castle"_s).size(), 2);
        QCOMPARE(fetched(u"catalog_theme_5"_s, u"castle"_s).size(), 2);
    }

    void noSelectionFetchesTheCopiesOutsideTheTrashAndTheTrashOnlyThoseInIt()
    {
        saveCopy(context(), m_falcon.objectID);
        saveCopy(context(), m_castle.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        QCOMPARE(fetched(QString()), QStringList{u"75192-1"_s});
        QCOMPARE(fetched(u"trash"_s), QStringList{u"10305-1"_s});
    }

    void eachFilterNarrowsTheCopies()
    {
        saveCopy(context(), m_falcon.objectID, [](BrickSet &copy) { copy.overallCondition = u"new"_s; });
        saveCopy(context(), m_oldFalcon.objectID, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        saveCopy(context(), m_castle.objectID, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        QCOMPARE(fetched(u"all_sets"_s, QString(), {u"Castle"_s, std::nullopt, std::nullopt}),
                 QStringList{u"10305-1"_s});
        QCOMPARE(fetched(u"all_sets"_s, QString(), {std::nullopt, qint16(2011), std::nullopt}),
                 QStringList{u"7965-1"_s});
        QCOMPARE(fetched(u"all_sets"_s, QString(), {std::nullopt, std::nullopt, OverallCondition::used}),
                 (QStringList{u"10305-1"_s, u"7965-1"_s}));
        QCOMPARE(fetched(u"all_sets"_s, u"falcon"_s, {std::nullopt, std::nullopt, OverallCondition::used}),
                 QStringList{u"7965-1"_s});
    }

    void recentlyAddedIsMeasuredFromTheMomentGiven()
    {
        const QDateTime now = QDateTime::currentDateTime();
        saveCopy(context(), m_falcon.objectID, [&](BrickSet &copy) { copy.dateAdded = now.addDays(-10); });
        QCOMPARE(fetched(u"recently_added"_s, QString(), {}, now), QStringList{u"75192-1"_s});
        QVERIFY(fetched(u"recently_added"_s, QString(), {}, now.addDays(25)).isEmpty());
    }

    void theRequestCarriesTheSortGiven()
    {
        const QList<SortDescriptor> order{{u"catalogSet.year"_s, false}, {u"catalogSet.name"_s, true}};
        const FetchRequest<BrickSet> request =
            CollectionFetchRequest::build(SetListSelection::fromItemID(u"all_sets"_s), QString(), {}, order);
        QCOMPARE(request.sortDescriptors, order);
        saveCopy(context(), m_falcon.objectID);
        saveCopy(context(), m_castle.objectID);
        saveCopy(context(), m_oldFalcon.objectID);
        QCOMPARE(fetched(request), (QStringList{u"10305-1"_s, u"75192-1"_s, u"7965-1"_s}));
    }
};

QTEST_GUILESS_MAIN(CollectionFetchRequestTest)
#include "CollectionFetchRequestTest.moc"
