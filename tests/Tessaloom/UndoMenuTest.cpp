// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CollectionUndoStack.h"
#include "Views/ContentView.h"
#include "Views/MainWindow.h"
#include "Views/TranslationLoader.h"
#include "Views/UndoStatusNotice.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QSettings>
#include <QTest>
#include <QTextDocumentFragment>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// Edit → Undo and the status bar's notice in the main window.
class UndoMenuTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<AppUpdateService> m_updates;
    std::unique_ptr<MainWindow> m_window;
    BrickSet m_copy;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    bool isTrashed() { return context().existingObject<BrickSet>(m_copy.objectID)->isTrashed; }

    void trashTheCopy()
    {
        BrickSet copy = *context().existingObject<BrickSet>(m_copy.objectID);
        copy.isTrashed = true;
        copy.trashedDate = QDateTime::currentDateTimeUtc();
        context().update(copy);
        context().save();
        m_window->contentView()->undoStack().recordMovedToTrash(copy.objectID);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        m_catalogService = std::make_unique<CatalogDatabaseService>(TestEnvironment::temporaryRoot() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
        m_updates = std::make_unique<AppUpdateService>(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
    }

    void init()
    {
        QSettings().clear();
        m_store = PersistenceController::open(QString(), true);
        const CatalogSet set = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        context().save();
        m_copy = saveCopy(context(), set.objectID);
        m_window = std::make_unique<MainWindow>(m_store->container(), *m_catalogService, *m_updates);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        m_store.reset();
    }

    void undoIsDisabledUntilSomethingIsDone()
    {
        QVERIFY(!m_window->undoAction()->isEnabled());
        QCOMPARE(m_window->undoAction()->text(), u"&Undo"_s);
        QCOMPARE(m_window->undoAction()->shortcut(), QKeySequence(QKeySequence::Undo));
        QVERIFY(!m_window->undoNotice()->isVisible());
    }

    void theUndoItemNamesTheLatestStep()
    {
        trashTheCopy();
        QVERIFY(m_window->undoAction()->isEnabled());
        QCOMPARE(m_window->undoAction()->text(), u"&Undo Move to Trash"_s);
    }

    void theStatusBarNamesWhatWasDoneWithAnUndoLink()
    {
        trashTheCopy();
        UndoStatusNotice *notice = m_window->undoNotice();
        QVERIFY(notice->isVisible());
        QCOMPARE(notice->statusText(), u"Moved 75192-1 to the trash"_s);
        QCOMPARE(QTextDocumentFragment::fromHtml(notice->label()->text()).toPlainText(),
                 u"Moved 75192-1 to the trash — Undo"_s);
    }

    void ctrlZUndoesTheLatestStep()
    {
        trashTheCopy();
        QVERIFY(isTrashed());
        m_window->activateWindow();
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!isTrashed());
        QVERIFY(!m_window->undoAction()->isEnabled());
        QCOMPARE(m_window->undoNotice()->statusText(), u"Undone: Moved 75192-1 to the trash"_s);
    }

    void theUndoLinkUndoesTheLatestStep()
    {
        trashTheCopy();
        Q_EMIT m_window->undoNotice()->label()->linkActivated(u"undo"_s);
        QVERIFY(!isTrashed());
    }

    void redoDoesTheStepAgain()
    {
        trashTheCopy();
        m_window->undoAction()->trigger();
        QVERIFY(m_window->redoAction()->isEnabled());
        QCOMPARE(m_window->redoAction()->text(), u"&Redo Move to Trash"_s);
        m_window->redoAction()->trigger();
        QVERIFY(isTrashed());
    }

    void theNoticeGoesAfterAWhile()
    {
        m_window->undoNotice()->setShowTime(std::chrono::milliseconds(50));
        trashTheCopy();
        QVERIFY(m_window->undoNotice()->isVisible());
        QTRY_VERIFY(!m_window->undoNotice()->isVisible());
        QVERIFY(m_window->undoNotice()->statusText().isEmpty());
        // The step itself can still be undone from the menu.
        QVERIFY(m_window->undoAction()->isEnabled());
    }
};

QTEST_MAIN(UndoMenuTest)
#include "UndoMenuTest.moc"
