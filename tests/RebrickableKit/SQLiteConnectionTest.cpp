// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include <RebrickableKit/SQLiteConnection.h>

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

class SQLiteConnectionTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString path(const QString &name) const { return m_directory.filePath(name); }

    std::unique_ptr<SQLiteConnection> tableOfPeople(const QString &name)
    {
        auto connection = std::make_unique<SQLiteConnection>(path(name), SQLiteConnection::OpenMode::create);
        connection->execute(u"CREATE TABLE people (name TEXT, nickname TEXT, age INTEGER, active INTEGER)"_s);
        return connection;
    }

    static int openStatements(const SQLiteConnection &connection)
    {
        int count = 0;
        for (sqlite3_stmt *statement = sqlite3_next_stmt(connection.handle(), nullptr); statement;
             statement = sqlite3_next_stmt(connection.handle(), statement))
            ++count;
        return count;
    }

    static void throwFromHandler(sqlite3 *database)
    {
        throw std::runtime_error(sqlite3_errmsg(database));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_directory.isValid());
    }

    void openModesHandSQLiteTheirFlags()
    {
        QCOMPARE(SQLiteConnection::openFlags(SQLiteConnection::OpenMode::readOnly), 1);
        QCOMPARE(SQLiteConnection::openFlags(SQLiteConnection::OpenMode::readWrite), 2);
        QCOMPARE(SQLiteConnection::openFlags(SQLiteConnection::OpenMode::create), 6);
    }

    void openingAMissingFileReadOnlyFailsWithSQLitesMessage()
    {
        try {
            SQLiteConnection connection(path(u"missing-ro.sqlite"_s), SQLiteConnection::OpenMode::readOnly);
            QFAIL("opening a missing file read-only succeeded");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::openFailed);
            QCOMPARE(error.message(), u"unable to open database file"_s);
            QCOMPARE(error.description(), u"Failed to open database: unable to open database file"_s);
        }
        QVERIFY(!QFileInfo::exists(path(u"missing-ro.sqlite"_s)));
    }

    void openingAMissingFileReadWriteFailsWithSQLitesMessage()
    {
        try {
            SQLiteConnection connection(path(u"missing-rw.sqlite"_s), SQLiteConnection::OpenMode::readWrite);
            QFAIL("opening a missing file read-write succeeded");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::openFailed);
            QCOMPARE(error.message(), u"unable to open database file"_s);
            QCOMPARE(error.description(), u"Failed to open database: unable to open database file"_s);
        }
        QVERIFY(!QFileInfo::exists(path(u"missing-rw.sqlite"_s)));
    }

    void openingAMissingFileInCreateModeCreatesIt()
    {
        SQLiteConnection connection(path(u"created.sqlite"_s), SQLiteConnection::OpenMode::create);
        QVERIFY(connection.handle());
        QVERIFY(QFileInfo::exists(path(u"created.sqlite"_s)));
    }

    void executeRunsEveryStatementOfAScript()
    {
        auto connection = tableOfPeople(u"script.sqlite"_s);
        connection->execute(u"INSERT INTO people (name) VALUES ('a'); INSERT INTO people (name) VALUES ('b');"_s);
        QCOMPARE(connection->queryOne(u"SELECT COUNT(*) FROM people"_s, [](SQLiteStatement &row) { return row.integer(0); }),
                 2);
    }

    void executeStopsAtASyntaxErrorInTheThirdStatementAfterRunningTheFirstTwo()
    {
        SQLiteConnection connection(path(u"syntax.sqlite"_s), SQLiteConnection::OpenMode::create);
        try {
            connection.execute(u"CREATE TABLE first (x); CREATE TABLE second (x); CREATE TABLE (; CREATE TABLE fourth (x);"_s);
            QFAIL("a script with a syntax error ran");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::executeFailed);
            QVERIFY(error.description().startsWith(u"SQL execution failed: "_s));
            QVERIFY(error.message().contains(u"syntax error"_s));
        }
        const auto tables = connection.query(u"SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"_s,
                                             [](SQLiteStatement &row) { return row.string(0); });
        QCOMPARE(tables, (QList<QString>{u"first"_s, u"second"_s}));
    }

    void preparingAnEmptyTextFails()
    {
        SQLiteConnection connection(path(u"empty.sqlite"_s), SQLiteConnection::OpenMode::create);
        try {
            connection.prepare(QString());
            QFAIL("an empty text prepared");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::prepareFailed);
            QVERIFY(error.description().startsWith(u"Failed to prepare statement: "_s));
        }
    }

    void preparingACommentOnlyTextFails()
    {
        SQLiteConnection connection(path(u"comment.sqlite"_s), SQLiteConnection::OpenMode::create);
        QVERIFY_THROWS_EXCEPTION(SQLiteError, connection.prepare(u"-- nothing here"_s));
    }

    void queryPassesAPrepareErrorThrough()
    {
        SQLiteConnection connection(path(u"badquery.sqlite"_s), SQLiteConnection::OpenMode::create);
        QVERIFY_THROWS_EXCEPTION(SQLiteError,
                                 connection.query(u"SELECT * FROM nowhere"_s, [](SQLiteStatement &row) { return row.integer(0); }));
    }

    void bindsMoveThroughTheParametersInOrder()
    {
        auto connection = tableOfPeople(u"bind.sqlite"_s);
        SQLiteStatement insert = connection->prepare(u"INSERT INTO people (name, nickname, age, active) VALUES (?, ?, ?, ?)"_s);
        QCOMPARE(insert.bindIndex(), 1);
        insert.bind(u"Ann"_s);
        insert.bind(std::optional<QString>());
        insert.bind(qint64(1) << 40);
        insert.bind(true);
        QCOMPARE(insert.bindIndex(), 5);
        QVERIFY(!insert.step()); // an INSERT gives no row
        insert.finalize();
        QCOMPARE(connection->changes(), 1);
        const auto row = connection->queryOne(u"SELECT name, nickname, age, active FROM people"_s, [](SQLiteStatement &row) {
            return std::tuple(row.string(0), row.optionalString(1), row.integer(2), row.boolean(3));
        });
        QVERIFY(row);
        QCOMPARE(std::get<0>(*row), u"Ann"_s);
        QCOMPARE(std::get<1>(*row), std::nullopt);
        QCOMPARE(std::get<2>(*row), qint64(1) << 40);
        QCOMPARE(std::get<3>(*row), true);
    }

    void aTextIsCutAtAnEmbeddedNul()
    {
        auto connection = tableOfPeople(u"nul.sqlite"_s);
        connection->query(u"INSERT INTO people (name) VALUES (?)"_s,
                          [](SQLiteStatement &statement) { statement.bind(QString(u"ab\0cd"_s)); },
                          [](SQLiteStatement &) { return 0; });
        QCOMPARE(connection->queryOne(u"SELECT name FROM people"_s, [](SQLiteStatement &row) { return row.string(0); }),
                 u"ab"_s);
    }

    void resetMakesTheNextBindLandOnTheFirstParameterAndLeavesTheRestNull()
    {
        auto connection = tableOfPeople(u"reset.sqlite"_s);
        SQLiteStatement insert = connection->prepare(u"INSERT INTO people (name, nickname, age) VALUES (?, ?, ?)"_s);
        insert.bind(u"first"_s);
        insert.bind(u"nick"_s);
        insert.bind(qint64(7));
        insert.step();
        insert.reset();
        QCOMPARE(insert.bindIndex(), 1);
        insert.bind(u"second"_s);
        insert.step();
        insert.finalize();
        const auto second = connection->queryOne(u"SELECT nickname, age FROM people WHERE name = 'second'"_s,
                                                 [](SQLiteStatement &row) { return std::pair(row.optionalString(0), row.optionalInt(1)); });
        QVERIFY(second);
        QCOMPARE(second->first, std::nullopt);
        QCOMPARE(second->second, std::nullopt);
    }

    void stringOfANullColumnIsEmptyAndOptionalStringIsAbsent()
    {
        SQLiteConnection connection(path(u"nullcolumn.sqlite"_s), SQLiteConnection::OpenMode::create);
        const auto row = connection.queryOne(u"SELECT NULL"_s, [](SQLiteStatement &row) {
            return std::tuple(row.string(0), row.optionalString(0), row.integer(0), row.optionalInt(0), row.boolean(0));
        });
        QVERIFY(row);
        QCOMPARE(std::get<0>(*row), QString());
        QVERIFY(std::get<0>(*row).isEmpty());
        QCOMPARE(std::get<1>(*row), std::nullopt);
        QCOMPARE(std::get<2>(*row), 0);
        QCOMPARE(std::get<3>(*row), std::nullopt);
        QCOMPARE(std::get<4>(*row), false);
    }

    void invalidUtf8InAColumnIsRepairedNotRejected()
    {
        SQLiteConnection connection(path(u"badutf8.sqlite"_s), SQLiteConnection::OpenMode::create);
        const auto text = connection.queryOne(u"SELECT CAST(X'61FF62' AS TEXT)"_s, [](SQLiteStatement &row) { return row.string(0); });
        QCOMPARE(text, QString(u"a\uFFFDb"_s));
    }

    void queryOnAnEmptyTableGivesNoRowsAndQueryOneGivesNothing()
    {
        auto connection = tableOfPeople(u"emptytable.sqlite"_s);
        const auto all = connection->query(u"SELECT name FROM people"_s, [](SQLiteStatement &row) { return row.string(0); });
        QVERIFY(all.isEmpty());
        const auto one = connection->queryOne(u"SELECT name FROM people"_s, [](SQLiteStatement &row) { return row.string(0); });
        QCOMPARE(one, std::nullopt);
    }

    void queryOneStepsOnceAndIgnoresFurtherRows()
    {
        auto connection = tableOfPeople(u"one.sqlite"_s);
        connection->execute(u"INSERT INTO people (name) VALUES ('a'), ('b'), ('c')"_s);
        int calls = 0;
        const auto first = connection->queryOne(u"SELECT name FROM people ORDER BY name"_s, [&calls](SQLiteStatement &row) {
            ++calls;
            return row.string(0);
        });
        QCOMPARE(first, u"a"_s);
        QCOMPARE(calls, 1);
    }

    void anErrorFromMapDropsTheRowsAndFinalisesTheStatement()
    {
        {
            auto connection = tableOfPeople(u"maperror.sqlite"_s);
            connection->execute(u"INSERT INTO people (name) VALUES ('a'), ('b')"_s);
            QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                                     connection->query(u"SELECT name FROM people"_s, [](SQLiteStatement &row) -> QString {
                                         if (row.string(0) == u"b"_s)
                                             throw std::runtime_error("refused");
                                         return row.string(0);
                                     }));
            // Every statement was finalised, so nothing remains open on the connection.
            QCOMPARE(sqlite3_next_stmt(connection->handle(), nullptr), nullptr);
        }
    }

    void anErrorFromBindFinalisesTheStatement()
    {
        auto connection = tableOfPeople(u"binderror.sqlite"_s);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                                 connection->query(
                                     u"SELECT name FROM people WHERE name = ?"_s,
                                     [](SQLiteStatement &) { throw std::runtime_error("no value"); },
                                     [](SQLiteStatement &row) { return row.string(0); }));
        QCOMPARE(sqlite3_next_stmt(connection->handle(), nullptr), nullptr);
    }

    void aStepThatFailsEndsTheRowsWithoutAnError()
    {
        SQLiteConnection connection(path(u"stepfail.sqlite"_s), SQLiteConnection::OpenMode::create);
        // abs() of the smallest integer overflows at run time, on the third row.
        connection.execute(u"CREATE TABLE numbers (n INTEGER); INSERT INTO numbers VALUES (1), (2), (-9223372036854775808), (4);"_s);
        const auto values = connection.query(u"SELECT abs(n) FROM numbers ORDER BY rowid"_s,
                                             [](SQLiteStatement &row) { return row.integer(0); });
        QCOMPARE(values, (QList<qint64>{1, 2}));
    }

    void errorsCarrySQLitesResultCode()
    {
        try {
            SQLiteConnection connection(path(u"missing-code.sqlite"_s), SQLiteConnection::OpenMode::readOnly);
            QFAIL("opening a missing file read-only succeeded");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.code(), SQLITE_CANTOPEN);
        }
        auto connection = tableOfPeople(u"codes.sqlite"_s);
        try {
            connection->prepare(u"SELECT * FROM nowhere"_s);
            QFAIL("a statement on a missing table prepared");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::prepareFailed);
            QCOMPARE(error.code(), SQLITE_ERROR);
            QCOMPARE(error.message(), u"no such table: nowhere"_s);
            QCOMPARE(error.description(), u"Failed to prepare statement: no such table: nowhere"_s);
        }
        connection->execute(u"CREATE TABLE keyed (id INTEGER PRIMARY KEY); INSERT INTO keyed VALUES (1);"_s);
        try {
            connection->execute(u"INSERT INTO keyed VALUES (1)"_s);
            QFAIL("a repeated key was stored");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::executeFailed);
            QCOMPARE(error.code(), SQLITE_CONSTRAINT_PRIMARYKEY);
            QCOMPARE(error.message(), u"UNIQUE constraint failed: keyed.id"_s);
        }
    }

    void openingWithExplicitFlagsTakesAUriName()
    {
        const QByteArray uri = "file:explicit?mode=memory&cache=shared";
        SQLiteConnection first(uri, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI);
        first.execute(u"CREATE TABLE shared (x); INSERT INTO shared VALUES (42);"_s);
        SQLiteConnection second(uri, SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI);
        QCOMPARE(second.queryOne(u"SELECT x FROM shared"_s, [](SQLiteStatement &row) { return row.integer(0); }), 42);
        QVERIFY(!QFileInfo::exists(u"explicit"_s));
    }

    void openingWithExplicitFlagsFailsLikeAMode()
    {
        try {
            SQLiteConnection connection(path(u"missing-flags.sqlite"_s).toUtf8(), SQLITE_OPEN_READONLY);
            QFAIL("opening a missing file read-only succeeded");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::openFailed);
            QCOMPARE(error.message(), u"unable to open database file"_s);
        }
    }

    void aStatementIsFinalisedWhenItEnds()
    {
        auto connection = tableOfPeople(u"raii.sqlite"_s);
        connection->execute(u"INSERT INTO people (name) VALUES ('a'), ('b')"_s);
        {
            SQLiteStatement rows = connection->prepare(u"SELECT name FROM people"_s);
            QVERIFY(rows.step()); // left in the middle of its rows
            QCOMPARE(openStatements(*connection), 1);
        }
        QCOMPARE(openStatements(*connection), 0);
    }

    void aStatementThatEndsReleasesItsReadLock()
    {
        auto reader = tableOfPeople(u"lock.sqlite"_s);
        reader->execute(u"INSERT INTO people (name) VALUES ('a'), ('b')"_s);
        SQLiteConnection writer(path(u"lock.sqlite"_s), SQLiteConnection::OpenMode::readWrite);
        {
            SQLiteStatement rows = reader->prepare(u"SELECT name FROM people"_s);
            QVERIFY(rows.step());
            // A statement in the middle of its rows holds the file's shared lock.
            QVERIFY_THROWS_EXCEPTION(SQLiteError, writer.execute(u"BEGIN EXCLUSIVE"_s));
        }
        writer.execute(u"BEGIN EXCLUSIVE; COMMIT;"_s);
    }

    void finalizeEndsTheStatementEarly()
    {
        auto connection = tableOfPeople(u"early.sqlite"_s);
        SQLiteStatement rows = connection->prepare(u"SELECT name FROM people"_s);
        rows.finalize();
        QCOMPARE(rows.handle(), nullptr);
        QCOMPARE(openStatements(*connection), 0);
    }

    void aMovedFromStatementHoldsNothing()
    {
        auto connection = tableOfPeople(u"moved.sqlite"_s);
        connection->execute(u"INSERT INTO people (name) VALUES ('a')"_s);
        SQLiteStatement original = connection->prepare(u"SELECT name FROM people"_s);
        sqlite3_stmt *const handle = original.handle();
        SQLiteStatement moved = std::move(original);
        QCOMPARE(original.handle(), nullptr);
        QCOMPARE(moved.handle(), handle);
        original.finalize(); // does nothing: the statement belongs to `moved`
        QCOMPARE(openStatements(*connection), 1);
        QVERIFY(moved.step());
        QCOMPARE(moved.string(0), u"a"_s);
    }

    void movingOntoAStatementEndsTheOneItHeld()
    {
        auto connection = tableOfPeople(u"moveassign.sqlite"_s);
        SQLiteStatement target = connection->prepare(u"SELECT name FROM people"_s);
        SQLiteStatement source = connection->prepare(u"SELECT age FROM people"_s);
        QCOMPARE(openStatements(*connection), 2);
        target = std::move(source);
        QCOMPARE(openStatements(*connection), 1);
        QCOMPARE(QString::fromUtf8(sqlite3_sql(target.handle())), u"SELECT age FROM people"_s);
    }

    void aBorrowedStatementIsResetAndClearedWhenItEnds()
    {
        auto connection = tableOfPeople(u"borrowed.sqlite"_s);
        connection->execute(u"INSERT INTO people (name, age) VALUES ('a', 1), ('b', 2)"_s);
        SQLiteStatement kept = connection->prepareForReuse(u"SELECT name FROM people WHERE age >= ? ORDER BY name"_s);
        {
            SQLiteStatement use = kept.borrow();
            QVERIFY(use.isBorrowed());
            use.bind(qint64(2));
            QVERIFY(use.step());
            QCOMPARE(use.string(0), u"b"_s);
        }
        QCOMPARE(openStatements(*connection), 1); // still prepared, for the next use
        QCOMPARE(sqlite3_stmt_busy(kept.handle()), 0);
        // The binding went with the last use: the parameter is NULL again, so no row matches.
        SQLiteStatement again = kept.borrow();
        QVERIFY(!again.step());
    }

    void numberedBindsLandOnTheirParameterAndTheNextBindFollows()
    {
        auto connection = tableOfPeople(u"numbered.sqlite"_s);
        SQLiteStatement insert = connection->prepare(u"INSERT INTO people (name, nickname, age, active) VALUES (?, ?, ?, ?)"_s);
        insert.bindText(1, QString(u"a\0b"_s));
        insert.bindNull(2);
        QCOMPARE(insert.bindIndex(), 3);
        insert.bind(true); // parameter 4 is numbered next, so this lands on 3
        insert.bindInteger(4, -5);
        QCOMPARE(insert.bindIndex(), 5);
        insert.run();
        const auto row = connection->queryOne(u"SELECT name, nickname, age, active FROM people"_s, [](SQLiteStatement &row) {
            return std::tuple(row.string(0), row.isNull(1), row.integer(2), row.integer(3), row.isNull(0));
        });
        QVERIFY(row);
        QCOMPARE(std::get<0>(*row), QString(u"a\0b"_s)); // the whole text, NUL and all
        QCOMPARE(std::get<1>(*row), true);
        QCOMPARE(std::get<2>(*row), 1);
        QCOMPARE(std::get<3>(*row), -5);
        QCOMPARE(std::get<4>(*row), false);
    }

    void stepWithResultTellsTheEndOfTheRowsFromAFailure()
    {
        SQLiteConnection connection(path(u"stepresult.sqlite"_s), SQLiteConnection::OpenMode::create);
        connection.execute(u"CREATE TABLE keyed (id INTEGER PRIMARY KEY)"_s);
        SQLiteStatement insert = connection.prepare(u"INSERT INTO keyed (id) VALUES (1)"_s);
        QCOMPARE(insert.stepWithResult(), SQLiteStatement::StepResult::done);
        insert.reset();
        QCOMPARE(insert.stepWithResult(), SQLiteStatement::StepResult::failed);
        SQLiteStatement select = connection.prepare(u"SELECT id FROM keyed"_s);
        QCOMPARE(select.stepWithResult(), SQLiteStatement::StepResult::row);
        QCOMPARE(select.stepWithResult(), SQLiteStatement::StepResult::done);
    }

    void aFailureHandlerHearsOfAFailedStepAndMayThrow()
    {
        SQLiteConnection connection(path(u"handler.sqlite"_s), SQLiteConnection::OpenMode::create);
        connection.execute(u"CREATE TABLE keyed (id INTEGER PRIMARY KEY); INSERT INTO keyed VALUES (1);"_s);
        SQLiteStatement kept = connection.prepareForReuse(u"INSERT INTO keyed (id) VALUES (?)"_s);
        kept.setFailureHandler(&throwFromHandler);
        {
            SQLiteStatement use = kept.borrow(); // the handler comes along
            use.bind(qint64(2));
            use.run();
        }
        SQLiteStatement use = kept.borrow();
        use.bind(qint64(1));
        try {
            use.run();
            QFAIL("a failed step did not reach the handler");
        } catch (const std::runtime_error &error) {
            QCOMPARE(QString::fromUtf8(error.what()), u"UNIQUE constraint failed: keyed.id"_s);
        }
    }

    void bindingAndSteppingNeverThrowOnAConstraintFailure()
    {
        SQLiteConnection connection(path(u"constraint.sqlite"_s), SQLiteConnection::OpenMode::create);
        connection.execute(u"CREATE TABLE keyed (id INTEGER PRIMARY KEY)"_s);
        SQLiteStatement insert = connection.prepare(u"INSERT INTO keyed (id) VALUES (?)"_s);
        insert.bind(qint64(1));
        QVERIFY(!insert.step());
        insert.reset();
        insert.bind(qint64(1));
        QVERIFY(!insert.step());
        insert.reset();
        insert.finalize();
        QCOMPARE(connection.queryOne(u"SELECT COUNT(*) FROM keyed"_s, [](SQLiteStatement &row) { return row.integer(0); }), 1);
    }
};

QTEST_GUILESS_MAIN(SQLiteConnectionTest)
#include "SQLiteConnectionTest.moc"
