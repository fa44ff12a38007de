// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/CollectionGridViewSetting.h"

#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

class CollectionGridViewSettingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init() { QSettings().clear(); }

    void withoutAStoredKeyTheCopiesShowAsAGrid()
    {
        QVERIFY(CollectionGridViewSetting().isGridView());
    }

    void aStoredFalseIsReadAsATableNotTakenForAnAbsentKey()
    {
        QSettings().setValue(u"collectionIsGridView"_s, false);
        QVERIFY(!CollectionGridViewSetting().isGridView());
    }

    void aChangeIsWrittenUnderCollectionIsGridViewAndReadBack()
    {
        CollectionGridViewSetting setting;
        QVERIFY(setting.setGridView(false));
        QCOMPARE(QSettings().value(u"collectionIsGridView"_s), QVariant(false));
        QVERIFY(!CollectionGridViewSetting().isGridView());
        QVERIFY(setting.setGridView(true));
        QVERIFY(CollectionGridViewSetting().isGridView());
    }

    void settingTheValueAlreadyThereWritesNothing()
    {
        CollectionGridViewSetting setting;
        QVERIFY(!setting.setGridView(true));
        QVERIFY(!QSettings().contains(u"collectionIsGridView"_s));
    }
};

QTEST_GUILESS_MAIN(CollectionGridViewSettingTest)
#include "CollectionGridViewSettingTest.moc"
