// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/StoredSortSetting.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using Column = StoredSortSetting::Column;
using List = StoredSortSetting::List;

class StoredSortSettingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init() { QSettings().clear(); }

    void withoutStoredKeysCopiesSortByNameAndCatalogByYearBothAscending()
    {
        const StoredSortSetting collection(List::collection);
        QCOMPARE(collection.column(), Column::name);
        QVERIFY(collection.ascending());
        const StoredSortSetting catalog(List::catalog);
        QCOMPARE(catalog.column(), Column::year);
        QVERIFY(catalog.ascending());
    }

    void storedKeysOfEachListAreReadBack()
    {
        QSettings settings;
        settings.setValue(u"collectionSortColumn"_s, u"pieces"_s);
        settings.setValue(u"collectionSortAscending"_s, false);
        settings.setValue(u"catalogSortColumn"_s, u"setNumber"_s);
        settings.setValue(u"catalogSortAscending"_s, false);
        const StoredSortSetting collection(List::collection);
        QCOMPARE(collection.column(), Column::pieces);
        QVERIFY(!collection.ascending());
        const StoredSortSetting catalog(List::catalog);
        QCOMPARE(catalog.column(), Column::setNumber);
        QVERIFY(!catalog.ascending());
    }

    void unknownStoredColumnFallsBackToTheListsDefault()
    {
        QSettings().setValue(u"collectionSortColumn"_s, u"colour"_s);
        QSettings().setValue(u"catalogSortColumn"_s, u"Pieces"_s);
        QCOMPARE(StoredSortSetting(List::collection).column(), Column::name);
        QCOMPARE(StoredSortSetting(List::catalog).column(), Column::year);
    }

    void aChangeWritesBothKeysOfItsListOnly()
    {
        StoredSortSetting collection(List::collection);
        collection.setColumn(Column::dateAdded);
        const QSettings settings;
        QCOMPARE(settings.value(u"collectionSortColumn"_s).toString(), u"dateAdded"_s);
        QCOMPARE(settings.value(u"collectionSortAscending"_s).toBool(), true);
        QVERIFY(!settings.contains(u"catalogSortColumn"_s));
        QVERIFY(!settings.contains(u"catalogSortAscending"_s));
        StoredSortSetting catalog(List::catalog);
        catalog.setAscending(false);
        QCOMPARE(settings.value(u"catalogSortColumn"_s).toString(), u"year"_s);
        QCOMPARE(settings.value(u"catalogSortAscending"_s).toBool(), false);
        QCOMPARE(StoredSortSetting(List::catalog).ascending(), false);
    }

    void settingTheValueAlreadyThereNeitherWritesNorSignals()
    {
        StoredSortSetting collection(List::collection);
        QSignalSpy changed(&collection, &StoredSortSetting::changed);
        collection.setColumn(Column::name);
        collection.setAscending(true);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!QSettings().contains(u"collectionSortColumn"_s));
        collection.setAscending(false);
        QCOMPARE(changed.count(), 1);
    }

    void eachListShowsItsOwnComparators()
    {
        StoredSortSetting collection(List::collection);
        collection.setColumn(Column::year);
        QCOMPARE(collection.comparators(),
                 (QList<SortDescriptor>{{u"catalogSet.year"_s, true}, {u"catalogSet.name"_s, true}}));
        const StoredSortSetting catalog(List::catalog);
        QCOMPARE(catalog.comparators(), (QList<SortDescriptor>{{u"year"_s, true}, {u"name"_s, true}}));
    }

    void aHeaderClickTakesTheFirstComparatorAndAnUnknownKeyChangesNothing()
    {
        StoredSortSetting catalog(List::catalog);
        QSignalSpy changed(&catalog, &StoredSortSetting::changed);
        catalog.setComparators({{u"numParts"_s, false}, {u"name"_s, true}});
        QCOMPARE(catalog.column(), Column::pieces);
        QVERIFY(!catalog.ascending());
        QCOMPARE(QSettings().value(u"catalogSortColumn"_s).toString(), u"pieces"_s);
        catalog.setComparators({{u"colour"_s, true}});
        catalog.setComparators({});
        QCOMPARE(catalog.column(), Column::pieces);
        QCOMPARE(changed.count(), 1);
    }
};

QTEST_GUILESS_MAIN(StoredSortSettingTest)
#include "StoredSortSettingTest.moc"
