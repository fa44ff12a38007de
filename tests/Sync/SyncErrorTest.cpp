// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "Services/SyncError.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QFuture>
#include <QTest>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

// The sentences of SyncError, through the English table compiled into the program.
class SyncErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void setNotFoundNamesTheNumber()
    {
        const SyncError error = SyncError::setNotFound(u"75192-1"_s);
        QCOMPARE(error.kind(), SyncError::Kind::setNotFound);
        QCOMPARE(error.description(), u"Set 75192-1 not found"_s);
    }

    void syncFailedNamesTheStageAndTheCause()
    {
        const SyncError error = SyncError::syncFailed(u"parts"_s, u"The disk is full."_s);
        QCOMPARE(error.kind(), SyncError::Kind::syncFailed);
        QCOMPARE(error.description(), u"Sync failed at parts: The disk is full."_s);
    }

    void placeholdersInsideTheStageStayText()
    {
        QCOMPARE(SyncError::syncFailed(u"step %2"_s, u"cause"_s).description(), u"Sync failed at step %2: cause"_s);
    }

    void catalogUnavailableHasItsFixedSentence()
    {
        const SyncError error = SyncError::catalogUnavailable();
        QCOMPARE(error.kind(), SyncError::Kind::catalogUnavailable);
        QCOMPARE(error.description(), u"Rebrickable catalog database not available"_s);
    }

    void whatCarriesTheSentence()
    {
        QCOMPARE(QByteArray(SyncError::setNotFound(u"21-1"_s).what()), QByteArray("Set 21-1 not found"));
    }

    void errorCrossesAFutureWithItsType()
    {
        QFuture<void> future = QtConcurrent::run([] { throw SyncError::setNotFound(u"10305-1"_s); });
        bool caught = false;
        try {
            future.waitForFinished();
        } catch (const SyncError &error) {
            caught = error.kind() == SyncError::Kind::setNotFound && error.setNumber() == u"10305-1"_s;
        }
        QVERIFY(caught);
    }
};

QTEST_GUILESS_MAIN(SyncErrorTest)
#include "SyncErrorTest.moc"
