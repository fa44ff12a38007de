// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "Views/CollectionFileCommands.h"
#include "Views/MainWindow.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// File → Export… and File → Import… with the file dialog and the alert replaced.
class CollectionFileCommandsTest : public QObject
{
    Q_OBJECT

private:
    struct Alert
    {
        QString title;
        QString text;
        bool isFailure = false;
    };

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<QWidget> m_window;
    CollectionFileCommands *m_commands = nullptr;
    QString m_chosenPath;
    QList<std::pair<CollectionFileCommands::FileDialogMode, QString>> m_dialogs;
    QList<Alert> m_alerts;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    QString pathOf(const QString &name) const { return m_folder->filePath(name); }

    void writeFile(const QString &name, const QByteArray &bytes)
    {
        QFile file(pathOf(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    void importAndWait(const QString &name)
    {
        m_chosenPath = pathOf(name);
        QSignalSpy finished(m_commands, &CollectionFileCommands::importFinished);
        m_commands->importAction()->trigger();
        // A file that cannot be read ends the import before the trigger returns.
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 10'000);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = PersistenceController::open(QString(), true);
        const CatalogSet set = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        context().save();
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.notes = u"Gift, from \"Grandma\""_s; });
        m_window = std::make_unique<QWidget>();
        m_commands = new CollectionFileCommands(m_store->container(), m_window.get());
        m_dialogs.clear();
        m_alerts.clear();
        m_chosenPath.clear();
        m_commands->setFileChooser([this](CollectionFileCommands::FileDialogMode mode, const QString &suggested) {
            m_dialogs.append({mode, suggested});
            return m_chosenPath;
        });
        m_commands->setAlertPresenter([this](const QString &title, const QString &text, bool isFailure) {
            m_alerts.append({title, text, isFailure});
        });
    }

    void cleanup()
    {
        m_window.reset();
        m_store.reset();
        m_folder.reset();
    }

    void theCommandsHaveTheirTextsAndShortcuts()
    {
        QCOMPARE(m_commands->exportAction()->text(), u"Export…"_s);
        QCOMPARE(m_commands->exportAction()->shortcut(), QKeySequence(u"Ctrl+E"_s));
        QCOMPARE(m_commands->importAction()->text(), u"Import…"_s);
        QCOMPARE(m_commands->importAction()->shortcut(), QKeySequence(u"Ctrl+I"_s));
    }

    void theMainWindowsFileMenuHoldsBoth()
    {
        auto catalogService = std::make_unique<CatalogDatabaseService>(TestEnvironment::temporaryRoot() + u"/app"_s,
                                                                       QUrl(u"http://127.0.0.1:9"_s));
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        MainWindow window(m_store->container(), *catalogService, updates);
        QMenu *fileMenu = window.menuBar()->actions().first()->menu();
        QVERIFY(fileMenu);
        QVERIFY(fileMenu->actions().contains(window.fileCommands()->exportAction()));
        QVERIFY(fileMenu->actions().contains(window.fileCommands()->importAction()));
        QMenu *exportAs = fileMenu->findChild<QMenu *>(u"exportAsMenu"_s);
        QVERIFY(exportAs);
        QCOMPARE(exportAs->title(), u"Export As"_s);
        QVERIFY(fileMenu->actions().contains(exportAs->menuAction()));
        QCOMPARE(exportAs->actions(), QList<QAction *>{window.fileCommands()->exportSetListAction()});
        QCOMPARE(window.fileCommands()->exportSetListAction()->text(), u"Rebrickable Set List…"_s);
    }

    void exportSuggestsBrickInventoryAndWritesTheCollection()
    {
        m_chosenPath = pathOf(u"out.csv"_s);
        m_commands->exportAction()->trigger();
        QCOMPARE(m_dialogs.size(), 1);
        QCOMPARE(m_dialogs.first().first, CollectionFileCommands::FileDialogMode::save);
        QCOMPARE(m_dialogs.first().second, u"Brick-Inventory"_s);
        QFile file(m_chosenPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY(text.startsWith(CSVExportImportService::columnNames().join(u',')));
        QVERIFY(text.contains(u"75192-1"_s));
        QVERIFY(text.contains(u"\"Gift, from \"\"Grandma\"\"\""_s));
        QVERIFY(m_alerts.isEmpty());
    }

    void aCancelledExportWritesNothing()
    {
        QVERIFY(!m_commands->exportData());
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files).size(), 0);
    }

    void aFailedExportIsLoggedAndNotShown()
    {
        m_chosenPath = pathOf(u"no/such/folder/out.csv"_s);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^CSV export failed: "_s));
        QVERIFY(!m_commands->exportData());
        QVERIFY(m_alerts.isEmpty());
    }

    void importingTheExportedFileUpdatesTheCopyAndSaysSo()
    {
        m_chosenPath = pathOf(u"out.csv"_s);
        QVERIFY(m_commands->exportData());
        QSignalSpy status(m_commands, &CollectionFileCommands::statusMessage);
        importAndWait(u"out.csv"_s);
        QCOMPARE(m_dialogs.last().first, CollectionFileCommands::FileDialogMode::open);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Complete"_s);
        QCOMPARE(m_alerts.first().text, u"1 set(s) updated."_s);
        QVERIFY(!m_alerts.first().isFailure);
        // The status bar heard of the import and was cleared at its end.
        QVERIFY(status.size() >= 2);
        QCOMPARE(status.first().first().toString(), u"Importing “out.csv”…"_s);
        QCOMPARE(status.last().first().toString(), QString());
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 1);
        QVERIFY(m_commands->importAction()->isEnabled());
    }

    void aBinaryFileEndsInTheFailedAlertAndChangesNothing()
    {
        writeFile(u"picture.csv"_s, QByteArray("\x89PNG\r\n\x1a\n\xff\xfe\x00\x01", 12));
        importAndWait(u"picture.csv"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Failed"_s);
        QVERIFY(m_alerts.first().isFailure);
        QVERIFY(m_alerts.first().text.contains(u"picture.csv"_s));
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 1);
    }

    void aFileWithoutSetNumbersEndsInTheFailedAlert()
    {
        writeFile(u"other.csv"_s, "name,price\nFalcon,799.99\n");
        importAndWait(u"other.csv"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Failed"_s);
        QCOMPARE(m_alerts.first().text, u"The CSV file is missing required columns (id, set_number)."_s);
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 1);
    }

    void aMissingFileEndsInTheFailedAlert()
    {
        importAndWait(u"gone.csv"_s);
        QCOMPARE(m_alerts.size(), 1);
        QVERIFY(m_alerts.first().isFailure);
        QVERIFY(m_alerts.first().text.contains(u"gone.csv"_s));
    }

    void exportAsRebrickableSetListWritesTheSetsTheUserHas()
    {
        // A copy in the trash is not one the user has.
        const CatalogSet other = context().insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s, 2022));
        context().save();
        saveCopy(context(), other.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        m_chosenPath = pathOf(u"rebrickable.csv"_s);
        QVERIFY(m_commands->exportRebrickableSetList());
        QCOMPARE(m_dialogs.size(), 1);
        QCOMPARE(m_dialogs.first().first, CollectionFileCommands::FileDialogMode::save);
        QCOMPARE(m_dialogs.first().second, u"Brick-Inventory-Rebrickable"_s);
        QFile file(m_chosenPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("Set Number,Quantity,Includes Spares,Inventory Ver\n75192-1,1,True,1\n"));
        QVERIFY(m_alerts.isEmpty());
    }

    void theRebrickableSetListComesBackThroughTheImportAsNewCopies()
    {
        m_chosenPath = pathOf(u"rebrickable.csv"_s);
        m_commands->exportSetListAction()->trigger();
        importAndWait(u"rebrickable.csv"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Complete"_s);
        QCOMPARE(m_alerts.first().text, u"1 set(s) added."_s);
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 2);
    }

    void aBrickLinkInventorySaysWhatWasAddedAndWhatSkipped()
    {
        writeFile(u"wanted.xml"_s, "<?xml version=\"1.0\"?>\n<INVENTORY>\n"
                                   "<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID><MINQTY>2</MINQTY></ITEM>\n"
                                   "<ITEM><ITEMTYPE>P</ITEMTYPE><ITEMID>3001</ITEMID><MINQTY>10</MINQTY></ITEM>\n"
                                   "</INVENTORY>\n");
        importAndWait(u"wanted.xml"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Complete"_s);
        QCOMPARE(m_alerts.first().text, u"2 set(s) added, 1 row(s) skipped."_s);
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 3);
    }

    void aBrokenBrickLinkInventoryEndsInTheFailedAlertAndChangesNothing()
    {
        writeFile(u"broken.xml"_s, "<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE></INVENTORY>");
        importAndWait(u"broken.xml"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Failed"_s);
        QVERIFY(m_alerts.first().isFailure);
        QVERIFY2(m_alerts.first().text.startsWith(u"The BrickLink inventory file couldn’t be read: "_s),
                 qPrintable(m_alerts.first().text));
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 1);
    }

    void aFileAboveTheSizeLimitEndsInTheFailedAlert()
    {
        {
            QFile huge(pathOf(u"huge.csv"_s));
            QVERIFY(huge.open(QIODevice::WriteOnly));
            QVERIFY(huge.resize(qint64(200) * 1024 * 1024));
        }
        importAndWait(u"huge.csv"_s);
        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Failed"_s);
        QCOMPARE(m_alerts.first().text, u"The file “huge.csv” couldn’t be opened because it is larger than 64 MB."_s);
        QCOMPARE(context().count(FetchRequest<BrickSet>()), 1);
    }

    void aCancelledImportDoesNothing()
    {
        QSignalSpy finished(m_commands, &CollectionFileCommands::importFinished);
        m_commands->importData();
        QCOMPARE(m_dialogs.size(), 1);
        QCOMPARE(finished.size(), 0);
        QVERIFY(m_alerts.isEmpty());
        QVERIFY(!m_commands->isImporting());
    }
};

QTEST_MAIN(CollectionFileCommandsTest)
#include "CollectionFileCommandsTest.moc"
