// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "Store/WishlistItem.h"
#include "ViewModels/CollectionUndoStack.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// Taking back an add, a move to the trash and a restore, on a real store.
class CollectionUndoStackTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CollectionUndoStack> m_undo;
    CatalogSet m_set;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

    qint64 copies() { return context().count(FetchRequest<BrickSet>()); }

    BrickSet reread(const ObjectID &id)
    {
        const std::optional<BrickSet> copy = context().existingObject<BrickSet>(id);
        if (!copy)
            qFatal("the copy is gone");
        return *copy;
    }

    // Moves `copy` to the trash as the screens do and records it.
    QDateTime trash(const ObjectID &id)
    {
        BrickSet copy = reread(id);
        copy.isTrashed = true;
        copy.trashedDate = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC);
        context().update(copy);
        context().save();
        m_undo->recordMovedToTrash(id);
        return *copy.trashedDate;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        m_store = PersistenceController::open(QString(), true);
        m_set = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        context().save();
        m_undo = std::make_unique<CollectionUndoStack>(context());
    }

    void cleanup()
    {
        m_undo.reset();
        m_store.reset();
    }

    void undoingAnAddRemovesThatCopyAndNothingElse()
    {
        const BrickSet older = saveCopy(context(), m_set.objectID);
        context().insert(guide(m_set.objectID, u"new"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        WishlistItem wanted;
        wanted.setNumber = u"75192-1"_s;
        wanted.dateAdded = QDateTime::currentDateTimeUtc();
        context().insert(wanted);
        context().save();

        const BrickSet added = saveCopy(context(), m_set.objectID);
        m_undo->recordAddedCopy(added.objectID);
        QCOMPARE(copies(), 2);

        m_undo->undo();
        QCOMPARE(copies(), 1);
        QVERIFY(!context().existingObject<BrickSet>(added.objectID));
        QVERIFY(context().existingObject<BrickSet>(older.objectID));
        QVERIFY(context().existingObject<CatalogSet>(m_set.objectID));
        QCOMPARE(context().count(FetchRequest<CachedPriceGuide>()), 1);
        QCOMPARE(context().count(FetchRequest<WishlistItem>()), 1);
        QVERIFY(!context().hasChanges()); // saved, not only changed
    }

    void redoingAnAddBringsBackACopyWithTheSameFields()
    {
        const BrickSet added = saveCopy(context(), m_set.objectID, [](BrickSet &copy) { copy.notes = u"gift"_s; });
        m_undo->recordAddedCopy(added.objectID);
        m_undo->undo();
        QCOMPARE(copies(), 0);

        m_undo->stack()->redo();
        const QList<BrickSet> again = context().fetch(FetchRequest<BrickSet>());
        QCOMPARE(again.size(), 1);
        QCOMPARE(again.first().id, added.id);
        QCOMPARE(again.first().notes, u"gift"_s);
        QCOMPARE(again.first().dateAdded, added.dateAdded);
        QCOMPARE(again.first().catalogSet, m_set.objectID);
    }

    void undoingAMoveToTheTrashRestoresTheCopy()
    {
        const BrickSet copy = saveCopy(context(), m_set.objectID);
        trash(copy.objectID);

        m_undo->undo();
        const BrickSet back = reread(copy.objectID);
        QVERIFY(!back.isTrashed);
        QVERIFY(!back.trashedDate);
        QCOMPARE(back.dateAdded, copy.dateAdded);
    }

    void redoingAMoveToTheTrashKeepsItsDate()
    {
        const BrickSet copy = saveCopy(context(), m_set.objectID);
        const QDateTime trashedAt = trash(copy.objectID);
        m_undo->undo();
        m_undo->stack()->redo();
        const BrickSet again = reread(copy.objectID);
        QVERIFY(again.isTrashed);
        QCOMPARE(again.trashedDate, trashedAt);
    }

    void undoingARestorePutsTheCopyBackInTheTrashWithItsDate()
    {
        const QDateTime trashedAt(QDate(2025, 12, 31), QTime(23, 59), Qt::UTC);
        BrickSet copy = saveCopy(context(), m_set.objectID, [&](BrickSet &c) {
            c.isTrashed = true;
            c.trashedDate = trashedAt;
        });
        copy.isTrashed = false;
        copy.trashedDate.reset();
        context().update(copy);
        context().save();
        m_undo->recordRestored(copy.objectID, trashedAt);

        m_undo->undo();
        const BrickSet back = reread(copy.objectID);
        QVERIFY(back.isTrashed);
        QCOMPARE(back.trashedDate, trashedAt);
    }

    void eachRecordIsNamedWithTheSetNumber()
    {
        QSignalSpy recorded(m_undo.get(), &CollectionUndoStack::actionRecorded);
        const BrickSet copy = saveCopy(context(), m_set.objectID);
        m_undo->recordAddedCopy(copy.objectID);
        trash(copy.objectID);
        m_undo->recordRestored(copy.objectID, std::nullopt);
        QCOMPARE(recorded.size(), 3);
        QCOMPARE(recorded.at(0).first().toString(), u"Added 75192-1 to the collection"_s);
        QCOMPARE(recorded.at(1).first().toString(), u"Moved 75192-1 to the trash"_s);
        QCOMPARE(recorded.at(2).first().toString(), u"Restored 75192-1 from the trash"_s);
        QCOMPARE(m_undo->lastActionText(), u"Restored 75192-1 from the trash"_s);
        QCOMPARE(m_undo->stack()->undoText(), u"Restore from Trash"_s);
    }

    void aCopyWithoutCatalogSetIsNamedUnknownSet()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        QCOMPARE(m_undo->copyName(copy.objectID), u"Unknown Set"_s);
    }

    void undoTakesBackOnlyTheLatestStep()
    {
        const BrickSet first = saveCopy(context(), m_set.objectID);
        const BrickSet second = saveCopy(context(), m_set.objectID);
        trash(first.objectID);
        trash(second.objectID);

        QSignalSpy undone(m_undo.get(), &CollectionUndoStack::actionUndone);
        m_undo->undo();
        QVERIFY(reread(first.objectID).isTrashed);
        QVERIFY(!reread(second.objectID).isTrashed);
        QCOMPARE(undone.size(), 1);
        QCOMPARE(undone.first().first().toString(), u"Moved 75192-1 to the trash"_s);
        QVERIFY(m_undo->lastActionText().isEmpty());
    }

    void aCopyDeletedForGoodIsNotBroughtBackByUndo()
    {
        const BrickSet copy = saveCopy(context(), m_set.objectID);
        trash(copy.objectID);
        context().deleteObject(copy.objectID);
        context().save();

        m_undo->undo();
        QCOMPARE(copies(), 0);
        // The step that had nothing left to act on is dropped, not kept for a redo.
        QVERIFY(!m_undo->stack()->canRedo());
        QVERIFY(!m_undo->stack()->canUndo());
    }

    void undoWithNothingRecordedChangesNothing()
    {
        saveCopy(context(), m_set.objectID);
        QSignalSpy undone(m_undo.get(), &CollectionUndoStack::actionUndone);
        m_undo->undo();
        QCOMPARE(undone.size(), 0);
        QCOMPARE(copies(), 1);
    }
};

QTEST_MAIN(CollectionUndoStackTest)
#include "CollectionUndoStackTest.moc"
