// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Endpoints.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "ViewModels/CollectionTrash.h"
#include "Views/EmptyStateView.h"
#include "Views/TranslationLoader.h"
#include "Views/TrashDetailView.h"
#include "Views/TrashListView.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {
// Noon UTC: the same day in every time zone a test machine is likely to have.
QDateTime noon(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(12, 0), Qt::UTC);
}
} // namespace

// The trash's two screens offscreen, over a real store file: the list with its order,
// rows, empty state and the emptying of the trash, and the detail of one trashed copy.
class TrashScreensTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    std::unique_ptr<CollectionTrash> m_trash;
    std::unique_ptr<QWidget> m_window;
    TrashListView *m_list = nullptr;
    TrashDetailView *m_detail = nullptr;
    // What the confirmation seam was asked, and what it answers.
    QList<DestructiveConfirmation> m_asked;
    bool m_answer = true;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    BrickSet trashedCopy(const std::optional<ObjectID> &catalogSet, const QDateTime &trashed,
                         const std::function<void(BrickSet &)> &configure = {})
    {
        return saveCopy(context(), catalogSet, [&](BrickSet &copy) {
            copy.isTrashed = true;
            copy.trashedDate = trashed;
            if (configure)
                configure(copy);
        });
    }

    qint64 trashedCount() { return context().count(FetchRequest<BrickSet>(BrickSetQueries::trashed())); }

    void showWindow()
    {
        m_window->resize(1000, 700);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void clickRow(int row)
    {
        QListView *list = m_list->list();
        const QRect rect = list->visualRect(list->model()->index(row, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // Pictures and their fallbacks are asked of a closed port on this machine: refused at once.
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;bricklinkImages=http://127.0.0.1:9");
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
        m_trash = std::make_unique<CollectionTrash>(context());
        m_window = std::make_unique<QWidget>();
        auto *layout = new QHBoxLayout(m_window.get());
        m_list = new TrashListView(*m_store, *m_trash, m_window.get());
        m_detail = new TrashDetailView(context(), *m_trash, m_window.get());
        layout->addWidget(m_list);
        layout->addWidget(m_detail);
        m_asked.clear();
        m_answer = true;
        const auto asker = [this](QWidget *, const DestructiveConfirmation &confirmation) {
            m_asked.append(confirmation);
            return m_answer;
        };
        m_list->setConfirmation(asker);
        m_detail->setConfirmation(asker);
        // As the window wires them: the list's selection is the detail's copy.
        connect(m_list, &TrashListView::copySelected, m_detail, &TrashDetailView::setBrickSet);
    }

    void cleanup()
    {
        m_window.reset();
        m_trash.reset();
        m_store.reset();
        m_folder.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void anEmptyTrashShowsItsEmptyState()
    {
        showWindow();
        QCOMPARE(m_list->titleLabel()->text(), u"Trash"_s);
        QCOMPARE(m_list->currentPage(), m_list->emptyState());
        QCOMPARE(m_list->emptyState()->symbolName(), u"trash"_s);
        QCOMPARE(m_list->emptyState()->title(), u"Trash is Empty"_s);
        QVERIFY(!m_list->emptyTrashAction()->isEnabled());
        QCOMPARE(m_list->emptyTrashButton()->text(), u"Empty Trash"_s);
    }

    void theListShowsTheLatestTrashedFirstWithNameNumberAndDate()
    {
        const CatalogSet castle = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        CatalogSet nameless = catalogSet(u"6080-1"_s, QString());
        nameless.name.reset();
        nameless = context().insert(nameless);
        context().save();
        trashedCopy(castle.objectID, noon(2026, 3, 5));
        trashedCopy(std::nullopt, noon(2026, 11, 20));
        trashedCopy(nameless.objectID, noon(2026, 7, 1));
        saveCopy(context(), castle.objectID); // in the collection: not listed

        QCOMPARE(m_list->trashedSets()->count(), 3);
        QCOMPARE(m_list->currentPage(), m_list->list());
        QCOMPARE(m_list->rowAt(0), (TrashRow{QString(), u"Unknown Set"_s, QString(), u"Trashed 11/20/26"_s}));
        QCOMPARE(m_list->rowAt(1).name, u"6080-1"_s);
        QCOMPARE(m_list->rowAt(1).setNumber, u"6080-1"_s);
        QCOMPARE(m_list->rowAt(1).trashedText, u"Trashed 7/1/26"_s);
        QCOMPARE(m_list->rowAt(2).name, u"Lion Knights' Castle"_s);
        QCOMPARE(m_list->rowAt(2).setNumber, u"10305-1"_s);
        QCOMPARE(m_list->rowAt(2).trashedText, u"Trashed 3/5/26"_s);
        QVERIFY(m_list->emptyTrashAction()->isEnabled());
    }

    void theRowShowsTheSmallPictureFirst()
    {
        CatalogSet set = catalogSet(u"21318-1"_s, u"Tree House"_s);
        set.imageURL = u"http://127.0.0.1:9/media/sets/21318-1.jpg"_s;
        set.thumbnailURL = u"http://127.0.0.1:9/media/thumbs/sets/21318-1.jpg"_s;
        set = context().insert(set);
        context().save();
        trashedCopy(set.objectID, noon(2026, 1, 2));
        QCOMPARE(m_list->rowAt(0).pictureURL, *set.thumbnailURL);
    }

    void aCopyMovedToTheTrashElsewhereAppearsAtOnce()
    {
        const CatalogSet set = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        context().save();
        const BrickSet copy = saveCopy(context(), set.objectID);
        QCOMPARE(m_list->trashedSets()->count(), 0);
        m_trash->moveToTrash(copy.objectID);
        QCOMPARE(m_list->trashedSets()->count(), 1);
        QCOMPARE(m_list->currentPage(), m_list->list());
    }

    void theConfirmationNamesTheNumberOfCopies()
    {
        trashedCopy(std::nullopt, noon(2026, 1, 1));
        DestructiveConfirmation one = m_list->emptyTrashConfirmation();
        QCOMPARE(one.title, u"Empty Trash?"_s);
        QCOMPARE(one.message,
                 u"The sets in the trash will be deleted permanently, with their parts checklists. This cannot be undone."_s);
        QCOMPARE(one.destructiveButtonText, u"Delete 1 Set"_s);
        trashedCopy(std::nullopt, noon(2026, 1, 2));
        trashedCopy(std::nullopt, noon(2026, 1, 3));
        QCOMPARE(m_list->emptyTrashConfirmation().destructiveButtonText, u"Delete 3 Sets"_s);
    }

    void emptyingTheTrashWithThreeCopiesSavesOnceAndLeavesNoSelection()
    {
        const CatalogSet set = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        context().save();
        for (int day = 1; day <= 3; ++day)
            trashedCopy(set.objectID, noon(2026, 2, day));
        const BrickSet kept = saveCopy(context(), set.objectID);
        showWindow();
        QSignalSpy selected(m_list, &TrashListView::copySelected);
        clickRow(1);
        QCOMPARE(selected.size(), 1);
        QVERIFY(m_list->selectedCopy());
        QCOMPARE(m_detail->brickSet(), m_list->selectedCopy());
        QSignalSpy commits(m_store.get(), &PersistentContainer::objectsDidChange);

        m_list->emptyTrashButton()->click();

        QCOMPARE(m_asked.size(), 1);
        QCOMPARE(m_asked.first().destructiveButtonText, u"Delete 3 Sets"_s);
        QCOMPARE(commits.size(), 1);
        QCOMPARE(trashedCount(), qint64(0));
        QVERIFY(context().existingObject<BrickSet>(kept.objectID));
        QCOMPARE(context().count(FetchRequest<CatalogSet>()), qint64(1));
        QVERIFY(!m_list->selectedCopy());
        QVERIFY(selected.last().first().value<std::optional<ObjectID>>() == std::nullopt);
        QVERIFY(m_list->list()->selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(!m_detail->brickSet());
        QCOMPARE(m_list->currentPage(), m_list->emptyState());
    }

    void decliningTheConfirmationKeepsTheTrash()
    {
        trashedCopy(std::nullopt, noon(2026, 1, 1));
        trashedCopy(std::nullopt, noon(2026, 1, 2));
        m_answer = false;
        QSignalSpy commits(m_store.get(), &PersistentContainer::objectsDidChange);
        m_list->emptyTrashAction()->trigger();
        QCOMPARE(m_asked.size(), 1);
        QCOMPARE(commits.size(), 0);
        QCOMPARE(trashedCount(), qint64(2));
    }

    void theEmptyTrashShortcutAsksToo()
    {
        trashedCopy(std::nullopt, noon(2026, 1, 1));
        showWindow();
        m_list->list()->setFocus();
        QCOMPARE(m_list->emptyTrashAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backspace));
        QTest::keyClick(m_list->list(), Qt::Key_Backspace, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_asked.size(), 1);
        QCOMPARE(trashedCount(), qint64(0));
    }

    void aSelectedCopyRestoredElsewhereIsNoLongerSelected()
    {
        const BrickSet copy = trashedCopy(std::nullopt, noon(2026, 1, 1));
        m_list->setSelectedCopy(copy.objectID);
        QCOMPARE(m_list->list()->selectionModel()->selectedIndexes().size(), 1);
        QSignalSpy selected(m_list, &TrashListView::copySelected);
        m_trash->restore(copy.objectID);
        QCOMPARE(selected.size(), 1);
        QVERIFY(selected.first().first().value<std::optional<ObjectID>>() == std::nullopt);
        QVERIFY(!m_list->selectedCopy());
    }

    void restoringAnotherCopyKeepsTheSelection()
    {
        const BrickSet older = trashedCopy(std::nullopt, noon(2026, 1, 1));
        const BrickSet newer = trashedCopy(std::nullopt, noon(2026, 1, 2));
        showWindow();
        clickRow(1);
        QCOMPARE(m_list->selectedCopy(), std::optional<ObjectID>(older.objectID));
        QSignalSpy selected(m_list, &TrashListView::copySelected);
        m_trash->restore(newer.objectID);
        QCOMPARE(selected.size(), 0);
        QCOMPARE(m_list->selectedCopy(), std::optional<ObjectID>(older.objectID));
        QCOMPARE(m_list->list()->selectionModel()->selectedIndexes().size(), 1);
        QCOMPARE(m_list->list()->selectionModel()->selectedIndexes().first().row(), 0);
    }

    void theDetailShowsTheCopysFacts()
    {
        CatalogSet set = catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s);
        set.imageURL = u"http://127.0.0.1:9/media/sets/10305-1.jpg"_s;
        set = context().insert(set);
        context().save();
        const BrickSet copy = trashedCopy(set.objectID, noon(2026, 4, 9), [](BrickSet &copy) {
            copy.overallCondition = u"new"_s;
            copy.pricePaid = Decimal::fromString(u"399.99"_s);
            copy.priceCurrency = u"USD"_s;
        });
        m_detail->setBrickSet(copy.objectID);
        QCOMPARE(m_detail->titleLabel()->text(), u"Trashed Set"_s);
        QCOMPARE(m_detail->name(), u"Lion Knights' Castle"_s);
        QCOMPARE(m_detail->setNumber(), u"10305-1"_s);
        QCOMPARE(m_detail->trashedText(), u"Trashed 4/9/26"_s);
        const QList<std::pair<QString, QString>> facts{{u"Condition"_s, u"New/Sealed"_s}, {u"Price Paid"_s, u"$399.99"_s}};
        QCOMPARE(m_detail->facts(), facts);
        QCOMPARE(m_detail->restoreButton()->text(), u"Restore"_s);
        QCOMPARE(m_detail->deleteButton()->text(), u"Delete Permanently"_s);
        QVERIFY(m_detail->restoreButton()->isEnabled());
    }

    void theRestoreButtonBringsTheCopyBackUnchanged()
    {
        const QDateTime added = noon(2024, 12, 24);
        const BrickSet copy = trashedCopy(std::nullopt, noon(2026, 1, 1), [&added](BrickSet &copy) {
            copy.dateAdded = added;
            copy.notes = u"A gift"_s;
        });
        showWindow();
        clickRow(0);
        QCOMPARE(m_detail->brickSet(), std::optional<ObjectID>(copy.objectID));
        QSignalSpy selected(m_list, &TrashListView::copySelected);

        QTest::mouseClick(m_detail->restoreButton(), Qt::LeftButton);

        const std::optional<BrickSet> back = context().existingObject<BrickSet>(copy.objectID);
        QVERIFY(back);
        QVERIFY(!back->isTrashed);
        QVERIFY(!back->trashedDate);
        QCOMPARE(back->dateAdded, std::optional<QDateTime>(added));
        QCOMPARE(back->notes, copy.notes);
        QVERIFY(!context().hasChanges());
        // It left the trash, so nothing of the trash is selected any more.
        QCOMPARE(m_list->trashedSets()->count(), 0);
        QCOMPARE(selected.size(), 1);
        QVERIFY(!m_detail->brickSet());
    }

    void deletingPermanentlyAsksFirst()
    {
        const CatalogSet set = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        context().save();
        const BrickSet copy = trashedCopy(set.objectID, noon(2026, 1, 1));
        m_detail->setBrickSet(copy.objectID);
        m_answer = false;
        m_detail->deleteButton()->click();
        QCOMPARE(m_asked.size(), 1);
        QCOMPARE(m_asked.first().title, u"Delete “Lion Knights' Castle” Permanently?"_s);
        QCOMPARE(m_asked.first().destructiveButtonText, u"Delete Permanently"_s);
        QVERIFY(context().existingObject<BrickSet>(copy.objectID));

        m_answer = true;
        QSignalSpy deleted(m_trash.get(), &CollectionTrash::copiesDeleted);
        m_detail->deleteButton()->click();
        QCOMPARE(deleted.size(), 1);
        QVERIFY(!context().existingObject<BrickSet>(copy.objectID));
        QVERIFY(context().existingObject<CatalogSet>(set.objectID));
        QVERIFY(!m_detail->deleteButton()->isEnabled());
    }

    void theDetailsShortcutsRestoreAndDelete()
    {
        const BrickSet first = trashedCopy(std::nullopt, noon(2026, 1, 1));
        const BrickSet second = trashedCopy(std::nullopt, noon(2026, 1, 2));
        showWindow();
        m_list->setSelectedCopy(first.objectID);
        m_detail->setBrickSet(first.objectID);
        m_list->list()->setFocus();
        QTest::keyClick(m_list->list(), Qt::Key_R, Qt::ControlModifier);
        QVERIFY(!context().existingObject<BrickSet>(first.objectID)->isTrashed);

        m_detail->setBrickSet(second.objectID);
        QTest::keyClick(m_list->list(), Qt::Key_Backspace, Qt::ControlModifier);
        QCOMPARE(m_asked.size(), 1);
        QVERIFY(!context().existingObject<BrickSet>(second.objectID));
    }
};

QTEST_MAIN(TrashScreensTest)
#include "TrashScreensTest.moc"
