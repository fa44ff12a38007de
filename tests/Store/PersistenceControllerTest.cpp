// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileDigest.h"
#include "StoreFixtures.h"
#include "StoreTestProcesses.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"

#include <QFile>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class PersistenceControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void storeFileLivesInTheApplicationDataFolder()
    {
        const QString path = PersistenceController::defaultStorePath();
        QCOMPARE(path, QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Tessaloom/Tessaloom.sqlite"_s);
        auto controller = PersistenceController::open(path);
        QVERIFY(QFile::exists(path));
        QCOMPARE(controller->container().viewContext().name(), u"viewContext"_s);
    }

    void inMemoryStoresArePrivateAndSharedWithTheirBackgroundContexts()
    {
        PersistenceController first(true);
        PersistenceController second(true);
        auto &context = first.container().viewContext();
        const auto set = context.insert(catalogSet(u"1-1"_s, u"Only here"_s));
        context.save();
        QCOMPARE(second.container().viewContext().count(FetchRequest<CatalogSet>()), qint64(0));
        auto background = first.container().newBackgroundContext();
        QVERIFY(background->performAndWait(
            [&](ManagedObjectContext &other) { return other.existingObject<CatalogSet>(set.objectID).has_value(); }));
        QVERIFY(!QFile::exists(first.container().path()));
    }

    void fileThatIsNotADatabaseIsRefusedWithItsPathAndLeftUntouched()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        writeFile(path, QByteArray("These are my notes, not a database.\n").repeated(200));
        const QByteArray before = FileDigest::of(path);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::notADatabase);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QCOMPARE(FileDigest::of(path), before);
        QVERIFY(!QFile::exists(path + u"-wal"_s));
    }

    void readOnlyFileIsRefusedWithItsPathAndLeftUntouched()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        {
            auto store = PersistentContainer::open(path);
            store->viewContext().insert(catalogSet(u"1-1"_s, u"Mine"_s));
            store->viewContext().save();
        }
        QVERIFY(!QFile::exists(path + u"-wal"_s)); // the last connection checkpointed and removed it
        QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
        const QByteArray before = FileDigest::of(path);
        if (!StoreTestProcesses::canOpenAsAnOrdinaryUser())
            QSKIP("running as the superuser without setpriv to drop privileges");
        StoreTestProcesses::verifyRefusedToAnOrdinaryUser(QStringLiteral(STORE_WRITER_PROCESS), folder.path(), path,
                                                          StoreError::Kind::readOnly);
        QCOMPARE(FileDigest::of(path), before);
    }

    void folderThatCannotBeCreatedIsRefusedWithItsPath()
    {
        QTemporaryDir folder;
        const QString blocker = folder.filePath(u"plain-file"_s);
        writeFile(blocker, "a file where a folder should be");
        const QString path = blocker + u"/Tessaloom/Tessaloom.sqlite"_s;
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::directoryNotCreatable);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
    }

    void failureTextsCarryTheErrorAndItsDetails()
    {
        const StoreError error(StoreError::Kind::notADatabase, u"(/x/Tessaloom.sqlite) file is not a database"_s, 26);
        const QString log = PersistenceController::loadFailureLogText(error, u"/x/Tessaloom.sqlite"_s);
        QVERIFY(log.startsWith(u"Failed to load persistent stores: "_s + error.description() + u", "_s));
        QVERIFY(log.contains(u"/x/Tessaloom.sqlite"_s));
        const QString fatal = PersistenceController::unresolvedErrorText(error, u"/x/Tessaloom.sqlite"_s);
        QVERIFY(fatal.startsWith(u"Unresolved error "_s + error.description() + u", "_s));
    }

    void sharedStoreThatCannotOpenLogsAndEndsTheProgram()
    {
        QTemporaryDir home;
        const QString path = home.filePath(u"data/Tessaloom/Tessaloom.sqlite"_s);
        QDir().mkpath(QFileInfo(path).absolutePath());
        writeFile(path, "not a database at all, but precious");
        const QByteArray before = FileDigest::of(path);

        const auto finished = StoreTestProcesses::run(
            QStringLiteral(STORE_WRITER_PROCESS), {u"open-shared"_s},
            {{u"XDG_DATA_HOME"_s, home.filePath(u"data"_s)},
             {u"QT_LOGGING_RULES"_s, u"com.tessaloom.app.persistence.debug=true"_s}});
        QVERIFY(finished.ended);
        const QString &errors = finished.errors;
        QCOMPARE(finished.exitStatus, QProcess::CrashExit);
        QVERIFY(!finished.output.contains(u"opened"_s));
        QVERIFY2(errors.contains(u"Failed to load persistent stores: "_s), qPrintable(errors));
        QVERIFY2(errors.contains(u"Unresolved error "_s), qPrintable(errors));
        QVERIFY2(errors.contains(path), qPrintable(errors));
        QCOMPARE(FileDigest::of(path), before);
    }

private:
    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

QTEST_GUILESS_MAIN(PersistenceControllerTest)
#include "PersistenceControllerTest.moc"
