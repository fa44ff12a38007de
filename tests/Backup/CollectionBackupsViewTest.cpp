// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupFixtures.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "Services/CollectionBackupService.h"
#include "Views/CollectionBackupsView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace BackupFixtures;

// The list of backups and "Restore…", offscreen, over a real store and real backups.
class CollectionBackupsViewTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_container;
    std::unique_ptr<CollectionBackupService> m_service;
    std::unique_ptr<CollectionBackupsView> m_view;
    QDateTime m_now;
    QList<DestructiveConfirmation> m_asked;
    bool m_answer = false;
    QList<CollectionBackup> m_made;

    QString storePath() const { return m_folder->filePath(u"Tessaloom.sqlite"_s); }

    void backUpAt(const QDateTime &time)
    {
        m_now = time;
        const auto outcome = waitForOutcome(m_service->backUp());
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        m_made.append(**outcome.value);
    }

    void select(int row) { m_view->list()->setCurrentItem(m_view->list()->topLevelItem(row)); }

    bool clickRestoreAndWait()
    {
        QSignalSpy finished(m_view.get(), &CollectionBackupsView::restoreFinished);
        QTest::mouseClick(m_view->restoreButton(), Qt::LeftButton);
        if (finished.isEmpty() && !finished.wait(20'000))
            return false;
        return finished.first().first().toBool();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_container = StoreFixtures::openStore(*m_folder);
        m_service = std::make_unique<CollectionBackupService>(*m_container);
        m_service->setClock([this] { return m_now; });
        m_made.clear();
        fillCollection(m_container->viewContext(), 2, 1, u"first"_s);
        backUpAt(QDateTime(QDate(2026, 11, 23), QTime(8, 15, 0)));
        fillCollection(m_container->viewContext(), 40, 10, u"second"_s);
        backUpAt(QDateTime(QDate(2026, 11, 24), QTime(8, 15, 0)));
        m_view = std::make_unique<CollectionBackupsView>(*m_service);
        m_asked.clear();
        m_view->setConfirmationAsker([this](QWidget *, const DestructiveConfirmation &confirmation) {
            m_asked.append(confirmation);
            return m_answer;
        });
        m_view->show();
        QTRY_COMPARE(m_view->list()->topLevelItemCount(), 2);
    }

    void cleanup()
    {
        m_view.reset();
        m_service.reset();
        m_container.reset();
        m_folder.reset();
    }

    void theListShowsTheBackupsNewestFirstWithDateAndSize()
    {
        const QTreeWidgetItem *newest = m_view->list()->topLevelItem(0);
        const CollectionBackup &second = m_made.last();
        QCOMPARE(newest->text(0), QLocale().toString(second.createdAt, QLocale::LongFormat));
        QVERIFY(newest->text(0).contains(u"November 24, 2026"_s));
        QCOMPARE(newest->text(1), QLocale().formattedDataSize(second.size));
        QCOMPARE(m_view->list()->topLevelItem(1)->text(0), QLocale().toString(m_made.first().createdAt, QLocale::LongFormat));
        QCOMPARE(m_view->list()->headerItem()->text(0), u"Backup"_s);
        QCOMPARE(m_view->list()->headerItem()->text(1), u"Size"_s);
        QCOMPARE(m_view->restoreButton()->text(), u"Restore…"_s);
        QVERIFY(!m_view->restoreButton()->isEnabled()); // nothing chosen yet
        select(0);
        QVERIFY(m_view->restoreButton()->isEnabled());
    }

    void aNewBackupJoinsTheListAtTheTop()
    {
        backUpAt(QDateTime(QDate(2026, 11, 25), QTime(7, 0, 0)));
        QTRY_COMPARE(m_view->list()->topLevelItemCount(), 3);
        QVERIFY(m_view->list()->topLevelItem(0)->text(0).contains(u"November 25, 2026"_s));
    }

    void restoreAsksFirstAndCancelKeepsTheCollection()
    {
        const QStringList rowsBefore = storeRows(storePath());
        QSignalSpy restored(m_service.get(), &CollectionBackupService::storeRestored);
        select(1);
        m_answer = false;
        QTest::mouseClick(m_view->restoreButton(), Qt::LeftButton);
        QCOMPARE(m_asked.size(), 1);
        const QString date = m_view->list()->topLevelItem(1)->text(0);
        QCOMPARE(m_asked.first(), CollectionBackupsView::restoreConfirmation(date));
        QCOMPARE(m_asked.first().title, u"Restore the Backup?"_s);
        QCOMPARE(m_asked.first().message, u"The collection will be replaced by the backup of %1. A backup of the "
                                          "collection as it is now is made first."_s.arg(date));
        QCOMPARE(m_asked.first().destructiveButtonText, u"Restore"_s);
        QTest::qWait(50);
        QCOMPARE(restored.size(), 0);
        QCOMPARE(storeRows(storePath()), rowsBefore);
        QCOMPARE(m_view->message(), QString());
    }

    void aConfirmedRestoreBringsTheBackupBackAndSaysSo()
    {
        select(1); // the older backup: two copies and one wish
        const QString date = m_view->list()->topLevelItem(1)->text(0);
        m_answer = true;
        QVERIFY(clickRestoreAndWait());
        QCOMPARE(storeRows(storePath()), storeRows(m_made.first().path));
        QCOMPARE(m_view->message(), u"The collection was restored from the backup of %1."_s.arg(date));
        // The backup made just before the restore is listed too.
        QTRY_COMPARE(m_view->list()->topLevelItemCount(), 3);
        QVERIFY(m_view->restoreButton()->isEnabled());
    }

    void aRefusedRestoreSaysWhyAndKeepsTheCollection()
    {
        QFile impostor(m_folder->filePath(u"Backups/Tessaloom 2026-11-25 09-00-00.sqlite"_s));
        QVERIFY(impostor.open(QIODevice::WriteOnly));
        impostor.write(QByteArray("These are not the pages you are looking for.\n").repeated(100));
        impostor.close();
        QVERIFY(QMetaObject::invokeMethod(m_view.get(), [this] { m_view->refresh(); }));
        QTRY_COMPARE(m_view->list()->topLevelItemCount(), 3);
        const QStringList rowsBefore = storeRows(storePath());
        select(0);
        m_answer = true;
        QVERIFY(!clickRestoreAndWait());
        QCOMPARE(m_view->message(), u"The chosen file is not a backup of a collection."_s);
        QCOMPARE(storeRows(storePath()), rowsBefore);
        QCOMPARE(m_view->list()->topLevelItemCount(), 3); // and no backup was made for it
    }
};

QTEST_MAIN(CollectionBackupsViewTest)
#include "CollectionBackupsViewTest.moc"
