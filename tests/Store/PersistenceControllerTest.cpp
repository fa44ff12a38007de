// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"

#include <QCryptographicHash>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

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
        const QByteArray before = digest(path);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::notADatabase);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QCOMPARE(digest(path), before);
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
        const QByteArray before = digest(path);
        if (::geteuid() != 0) {
            const StoreError error = openFailure(path);
            QCOMPARE(error.kind(), StoreError::Kind::readOnly);
            QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        } else {
            // File permissions do not bind the superuser: open it as an ordinary user.
            const QString setpriv = QStandardPaths::findExecutable(u"setpriv"_s);
            if (setpriv.isEmpty())
                QSKIP("running as the superuser without setpriv to drop privileges");
            QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                                                     | QFileDevice::ReadOther | QFileDevice::ExeOther);
            QProcess process;
            process.start(setpriv, {u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s,
                                    QStringLiteral(STORE_WRITER_PROCESS), u"open"_s, path});
            QVERIFY(process.waitForFinished(30000));
            const QString errors = QString::fromUtf8(process.readAllStandardError());
            QCOMPARE(process.exitCode(), 2);
            QVERIFY2(errors.startsWith(u"kind=%1 "_s.arg(int(StoreError::Kind::readOnly))), qPrintable(errors));
            QVERIFY2(errors.contains(path), qPrintable(errors));
        }
        QCOMPARE(digest(path), before);
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
        const QByteArray before = digest(path);

        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
        environment.insert(u"QT_LOGGING_RULES"_s, u"com.tessaloom.app.persistence.debug=true"_s);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(STORE_WRITER_PROCESS), {u"open-shared"_s});
        QVERIFY(process.waitForFinished(30000));
        const QString errors = QString::fromUtf8(process.readAllStandardError());
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QVERIFY(!process.readAllStandardOutput().contains("opened"));
        QVERIFY2(errors.contains(u"Failed to load persistent stores: "_s), qPrintable(errors));
        QVERIFY2(errors.contains(u"Unresolved error "_s), qPrintable(errors));
        QVERIFY2(errors.contains(path), qPrintable(errors));
        QCOMPARE(digest(path), before);
    }

private:
    static StoreError openFailure(const QString &path)
    {
        try {
            PersistenceController::open(path);
        } catch (const StoreError &error) {
            return error;
        }
        qFatal("opening %s should have failed", qPrintable(path));
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static QByteArray digest(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
    }
};

QTEST_GUILESS_MAIN(PersistenceControllerTest)
#include "PersistenceControllerTest.moc"
