// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSearchDebounce.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class CatalogSearchDebounceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typingFiresOnceAfterThePauseAndNotBefore()
    {
        CatalogSearchDebounce debounce;
        QSignalSpy due(&debounce, &CatalogSearchDebounce::searchDue);
        QElapsedTimer clock;
        clock.start();
        for (const QString &text : {u"f"_s, u"fa"_s, u"fal"_s, u"falc"_s, u"falcon"_s})
            debounce.textChanged(text);
        QCOMPARE(due.count(), 0);
        QVERIFY(debounce.isWaiting());
        QVERIFY(due.wait(2000));
        // Measured from the first keystroke, so at least one whole pause has passed.
        QVERIFY(clock.elapsed() >= 200);
        QCOMPARE(due.count(), 1);
        QVERIFY(!due.wait(400));
        QCOMPARE(due.count(), 1);
    }

    void eachChangeStartsThePauseAgain()
    {
        CatalogSearchDebounce debounce(300ms);
        QSignalSpy due(&debounce, &CatalogSearchDebounce::searchDue);
        debounce.textChanged(u"f"_s);
        // A keystroke arriving inside the pause: the first wait is given up.
        QVERIFY(!due.wait(150));
        QElapsedTimer sinceSecond;
        sinceSecond.start();
        debounce.textChanged(u"fa"_s);
        QVERIFY(due.wait(2000));
        QVERIFY(sinceSecond.elapsed() >= 300);
        QCOMPARE(due.count(), 1);
    }

    void anEmptiedTextIsDueAtOnceAndDropsTheWait()
    {
        CatalogSearchDebounce debounce;
        QSignalSpy due(&debounce, &CatalogSearchDebounce::searchDue);
        debounce.textChanged(u"castle"_s);
        debounce.textChanged(QString());
        QCOMPARE(due.count(), 1);
        QVERIFY(!debounce.isWaiting());
        QVERIFY(!due.wait(400));
        QCOMPARE(due.count(), 1);
    }

    void cancellingDropsTheWaitOnItsWay()
    {
        CatalogSearchDebounce debounce;
        QSignalSpy due(&debounce, &CatalogSearchDebounce::searchDue);
        debounce.textChanged(u"castle"_s);
        debounce.cancel();
        QVERIFY(!debounce.isWaiting());
        QVERIFY(!due.wait(400));
        QCOMPARE(due.count(), 0);
    }
};

QTEST_GUILESS_MAIN(CatalogSearchDebounceTest)
#include "CatalogSearchDebounceTest.moc"
