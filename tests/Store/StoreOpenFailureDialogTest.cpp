// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileDigest.h"
#include "StoreTestProcesses.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "Views/StoreOpenFailureDialog.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(StoreError::Kind)

// What the user sees when the collection store does not open: a dialog that names the
// file, says why in plain words, that the file was not changed and what to do, shown
// before the program ends as it always did.
class StoreOpenFailureDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void messageNamesTheFileTheReasonThatItWasNotChangedAndWhatToDo_data()
    {
        QTest::addColumn<StoreError::Kind>("kind");
        QTest::addColumn<QString>("reasonWords");
        QTest::addColumn<QString>("adviceWords");
        QTest::addRow("not a database") << StoreError::Kind::notADatabase << u"not a database"_s
                                        << u"restore it from a backup"_s;
        QTest::addRow("damaged") << StoreError::Kind::damaged << u"damaged"_s << u"restore it from a backup"_s;
        QTest::addRow("a folder") << StoreError::Kind::pathIsFolder << u"A folder"_s << u"Move or rename the folder"_s;
        QTest::addRow("unreadable") << StoreError::Kind::unreadable << u"not allowed to read"_s << u"permission"_s;
        QTest::addRow("read-only") << StoreError::Kind::readOnly << u"not allowed to write"_s << u"permission"_s;
        QTest::addRow("another program's file") << StoreError::Kind::foreignFile << u"another program"_s
                                                << u"Move the file to another folder"_s;
        QTest::addRow("newer version") << StoreError::Kind::newerVersion << u"newer version"_s
                                       << u"newer version of Tessaloom instead"_s;
        QTest::addRow("folder not creatable") << StoreError::Kind::directoryNotCreatable
                                              << u"folder for the file could not be created"_s
                                              << u"Make sure the folder can be created"_s;
        QTest::addRow("migration failed") << StoreError::Kind::migrationFailed << u"brought up to date"_s
                                          << u"free space"_s;
    }

    void messageNamesTheFileTheReasonThatItWasNotChangedAndWhatToDo()
    {
        QFETCH(StoreError::Kind, kind);
        QFETCH(QString, reasonWords);
        QFETCH(QString, adviceWords);
        const QString path = u"/home/someone/.local/share/Tessaloom/Tessaloom.sqlite"_s;
        const QString message = StoreOpenFailureDialog::message(StoreError(kind, u"detail"_s), path);
        QVERIFY2(message.contains(QDir::toNativeSeparators(path)), qPrintable(message));
        QVERIFY2(message.contains(reasonWords), qPrintable(message));
        QVERIFY2(message.contains(u"not changed"_s), qPrintable(message));
        QVERIFY2(message.contains(adviceWords), qPrintable(message));
        QVERIFY2(message.contains(u"start Tessaloom again"_s), qPrintable(message));
        QVERIFY2(!message.contains(u"storeFailure."_s), qPrintable(message)); // no bare key
    }

    void eachRefusalHasItsOwnReason()
    {
        const QList<StoreError::Kind> kinds{
            StoreError::Kind::directoryNotCreatable, StoreError::Kind::pathIsFolder, StoreError::Kind::unreadable,
            StoreError::Kind::readOnly,     StoreError::Kind::notADatabase,  StoreError::Kind::damaged,
            StoreError::Kind::foreignFile,  StoreError::Kind::newerVersion,
        };
        QSet<QString> reasons;
        for (StoreError::Kind kind : kinds)
            reasons.insert(StoreOpenFailureDialog::reason(kind));
        QCOMPARE(reasons.size(), kinds.size());
    }

    void dialogShowsTheMessageWithTheTechnicalDetailsAndAQuitButton()
    {
        const QString path = u"/data/a <b> & c/Tessaloom.sqlite"_s;
        const StoreError error(StoreError::Kind::foreignFile, StoreError::detailFor(path, u"tables [notes]"_s));
        const StoreOpenFailureDialog dialog(error, path);
        QCOMPARE(dialog.windowTitle(), u"Tessaloom Cannot Open Your Collection"_s);
        QCOMPARE(dialog.icon(), QMessageBox::Critical);
        // The informative text is rich text for its paragraphs; the file name is escaped.
        QVERIFY2(dialog.informativeText().contains(QDir::toNativeSeparators(path).toHtmlEscaped()),
                 qPrintable(dialog.informativeText()));
        QVERIFY(dialog.informativeText().contains(StoreOpenFailureDialog::reason(error.kind())));
        QVERIFY(dialog.detailedText().startsWith(u"Unresolved error "_s + error.description()));
        QCOMPARE(dialog.defaultButton()->text(), u"Quit"_s);
        QCOMPARE(dialog.buttonRole(dialog.defaultButton()), QMessageBox::AcceptRole);
        QCOMPARE(dialog.escapeButton(), dialog.defaultButton());
    }

    void presentShowsTheDialogModallyAndReturnsOnceAnswered()
    {
        const QString path = u"/tmp/Tessaloom.sqlite"_s;
        QString shownMessage;
        bool wasModal = false;
        QTimer answer;
        // present() runs its own event loop until the dialog is answered; the timer looks
        // for the dialog from inside that loop and answers it as a user would.
        connect(&answer, &QTimer::timeout, this, [&] {
            auto *dialog = qobject_cast<StoreOpenFailureDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            wasModal = dialog->isModal();
            shownMessage = dialog->informativeText();
            dialog->defaultButton()->click();
        });
        answer.start(10);
        StoreOpenFailureDialog::present(StoreError(StoreError::Kind::damaged, u"detail"_s), path);
        answer.stop();
        QVERIFY(wasModal);
        QVERIFY2(shownMessage.contains(path), qPrintable(shownMessage));
        QVERIFY(shownMessage.contains(StoreOpenFailureDialog::reason(StoreError::Kind::damaged)));
        QVERIFY(!QApplication::activeModalWidget());
    }

    // The whole path in a process of its own, since it ends in the fatal error: a foreign
    // database at the store's place, the dialog, then the log line and the fatal message.
    void failureShowsTheDialogThenLogsAndEndsTheProgram()
    {
        QTemporaryDir home;
        const QString path = home.filePath(u"data/Tessaloom/Tessaloom.sqlite"_s);
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        createForeignDatabase(path);
        const QByteArray before = FileDigest::of(path);

        const QString output = runFailureProcess(u"gui"_s, home.filePath(u"data"_s));
        const qsizetype dialogAt = output.indexOf(u"dialog shown modal\n"_s);
        const qsizetype logAt = output.indexOf(u"Failed to load persistent stores: "_s);
        const qsizetype fatalAt = output.indexOf(u"Unresolved error "_s);
        QVERIFY2(dialogAt >= 0, qPrintable(output));
        QVERIFY2(logAt > dialogAt, qPrintable(output));
        QVERIFY2(fatalAt > logAt, qPrintable(output));
        QVERIFY2(output.contains(u"title: Tessaloom Cannot Open Your Collection\n"_s), qPrintable(output));
        const QString message = output.mid(output.indexOf(u"message: "_s)).section(u'\n', 0, 0);
        QVERIFY2(message.contains(path), qPrintable(message));
        QVERIFY2(message.contains(StoreOpenFailureDialog::reason(StoreError::Kind::foreignFile)), qPrintable(message));
        QVERIFY2(message.contains(StoreOpenFailureDialog::advice(StoreError::Kind::foreignFile).toHtmlEscaped()),
                 qPrintable(message));
        QVERIFY2(output.section(u"Unresolved error "_s, 1).startsWith(StoreError::sentence(StoreError::Kind::foreignFile)),
                 qPrintable(output));
        QVERIFY(!output.contains(u"opened\n"_s));
        QCOMPARE(FileDigest::of(path), before);
    }

    void withoutAGraphicalApplicationTheFailureEndsWithoutADialog()
    {
        QTemporaryDir home;
        const QString path = home.filePath(u"data/Tessaloom/Tessaloom.sqlite"_s);
        QVERIFY(QDir().mkpath(path)); // a folder where the file should be
        const QString output = runFailureProcess(u"core"_s, home.filePath(u"data"_s));
        QVERIFY2(!output.contains(u"dialog shown"_s), qPrintable(output));
        QVERIFY2(output.contains(u"Failed to load persistent stores: "_s
                                 + StoreError::sentence(StoreError::Kind::pathIsFolder)),
                 qPrintable(output));
        QVERIFY2(output.contains(u"Unresolved error "_s), qPrintable(output));
        QVERIFY(QFileInfo(path).isDir());
    }

private:
    // Runs the failure process against the store under `dataHome`; returns what it printed,
    // standard output and error in the order written, after it ended by the fatal error.
    static QString runFailureProcess(const QString &mode, const QString &dataHome)
    {
        const auto finished = StoreTestProcesses::run(QStringLiteral(STORE_OPEN_FAILURE_PROCESS), {mode},
                                                      {{u"XDG_DATA_HOME"_s, dataHome}, {u"QT_QPA_PLATFORM"_s, u"offscreen"_s}},
                                                      QProcess::MergedChannels, std::chrono::milliseconds(60000));
        if (!finished.ended)
            return u"the process did not end"_s;
        if (finished.exitStatus != QProcess::CrashExit)
            return u"the process ended without the fatal error: "_s + finished.output;
        return finished.output;
    }

    static void createForeignDatabase(const QString &path)
    {
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
        const int result = sqlite3_exec(database, "CREATE TABLE notes (body TEXT); INSERT INTO notes VALUES ('mine');",
                                        nullptr, nullptr, nullptr);
        sqlite3_close(database);
        QCOMPARE(result, SQLITE_OK);
    }
};

QTEST_MAIN(StoreOpenFailureDialogTest)
#include "StoreOpenFailureDialogTest.moc"
