// SPDX-License-Identifier: GPL-3.0-or-later
// The status bar's account of a refresh of all prices: PriceRefreshProgress, fed by hand
// through its Run as the refresh feeds it, on a clock of the test's own, and the
// PriceRefreshStatusView that shows it, as real widgets under the offscreen platform.
#include "TestEnvironment.h"

#include "Services/PriceRefreshProgress.h"
#include "Views/PriceRefreshStatusView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class PriceRefreshStatusViewTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PriceRefreshProgress> m_progress;
    qint64 m_now = 0;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        m_now = 1'000'000;
        m_progress = std::make_unique<PriceRefreshProgress>();
        m_progress->setClock([this] { return m_now; });
    }

    void cleanup() { m_progress.reset(); }

    // PriceRefreshProgress

    void progressCountsTargetsAndSetsDoneWhileARunLasts()
    {
        QSignalSpy running(m_progress.get(), &PriceRefreshProgress::runningChanged);
        {
            PriceRefreshProgress::Run run(*m_progress, 480);
            QVERIFY(m_progress->isRunning());
            QCOMPARE(m_progress->targetCount(), 480);
            run.setDone();
            run.setDone();
            QCOMPARE(m_progress->setsDone(), 2);
        }
        QVERIFY(!m_progress->isRunning());
        QCOMPARE(running.size(), 2);
    }

    void estimateIsTheAverageTimePerSetTimesTheSetsLeft()
    {
        PriceRefreshProgress::Run run(*m_progress, 10);
        QVERIFY(!m_progress->estimatedTimeLeft());
        m_now += 4'000;
        run.setDone();
        m_now += 2'000;
        run.setDone();
        // 6 s for 2 sets: 3 s each, 8 sets left.
        const std::optional<std::chrono::milliseconds> left = m_progress->estimatedTimeLeft();
        QVERIFY(left);
        QVERIFY2(*left == 24'000ms, qPrintable(QString::number(left->count())));
    }

    void overlappingRefreshesShareOneAccount()
    {
        auto first = std::make_unique<PriceRefreshProgress::Run>(*m_progress, 3);
        first->setDone();
        {
            PriceRefreshProgress::Run second(*m_progress, 2);
            QCOMPARE(m_progress->targetCount(), 5);
            QCOMPARE(m_progress->setsDone(), 1);
        }
        QVERIFY(m_progress->isRunning());
        first.reset();
        QVERIFY(!m_progress->isRunning());
    }

    void cancelHoldsUntilTheRefreshEnds()
    {
        {
            const PriceRefreshProgress::Run run(*m_progress, 3);
            m_progress->cancel();
            QVERIFY(run.isCancelled());
        }
        QVERIFY(!m_progress->isCancelRequested());
        const PriceRefreshProgress::Run next(*m_progress, 3);
        QVERIFY(!next.isCancelled());
    }

    void cancelWhileNothingRunsDoesNothing()
    {
        QSignalSpy changed(m_progress.get(), &PriceRefreshProgress::progressChanged);
        m_progress->cancel();
        QVERIFY(!m_progress->isCancelRequested());
        QCOMPARE(changed.size(), 0);
    }

    // PriceRefreshStatusView

    void viewIsHiddenWhileNoRefreshRuns()
    {
        QWidget window;
        auto *view = new PriceRefreshStatusView(*m_progress, &window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!view->isVisible());
    }

    void viewShowsTheSetsDoneOfTheTargetsWhileARefreshRuns()
    {
        QWidget window;
        auto *view = new PriceRefreshStatusView(*m_progress, &window);
        window.show();
        PriceRefreshProgress::Run run(*m_progress, 480);
        QVERIFY(view->isVisible());
        QCOMPARE(view->label()->text(), u"Prices 0 of 480"_s);
        QVERIFY(view->cancelButton()->isEnabled());
        QCOMPARE(view->cancelButton()->text(), u"Cancel"_s);
    }

    void viewShowsTheTimeLeftInHours()
    {
        QWidget window;
        auto *view = new PriceRefreshStatusView(*m_progress, &window);
        window.show();
        PriceRefreshProgress::Run run(*m_progress, 480);
        // 15 s a set: 468 sets left take 1 h 57 min.
        for (int set = 0; set < 12; ++set) {
            m_now += 15'000;
            run.setDone();
        }
        QCOMPARE(view->label()->text(), u"Prices 12 of 480 — about 2 h left"_s);
    }

    void viewHidesWhenTheRefreshEnds()
    {
        QWidget window;
        auto *view = new PriceRefreshStatusView(*m_progress, &window);
        window.show();
        {
            PriceRefreshProgress::Run run(*m_progress, 2);
            QVERIFY(view->isVisible());
        }
        QVERIFY(!view->isVisible());
    }

    void cancelButtonCancelsTheRefreshOnce()
    {
        QWidget window;
        auto *view = new PriceRefreshStatusView(*m_progress, &window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const PriceRefreshProgress::Run run(*m_progress, 2);
        QTest::mouseClick(view->cancelButton(), Qt::LeftButton);
        QVERIFY(run.isCancelled());
        QVERIFY(!view->cancelButton()->isEnabled());
    }

    void shortTimesLeftAreWholeMinutesRoundedUp()
    {
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        QCOMPARE(PriceRefreshStatusView::statusText(3, 10, 150'000ms, english), u"Prices 3 of 10 — about 3 min left"_s);
        QCOMPARE(PriceRefreshStatusView::statusText(9, 10, 2'000ms, english), u"Prices 9 of 10 — about 1 min left"_s);
        QCOMPARE(PriceRefreshStatusView::statusText(1, 10, 5'400'000ms, english), u"Prices 1 of 10 — about 2 h left"_s);
    }

    void numbersFollowTheLocale()
    {
        const QLocale german(QLocale::German, QLocale::Germany);
        QCOMPARE(PriceRefreshStatusView::statusText(1234, 5000, std::nullopt, german), u"Prices 1.234 of 5.000"_s);
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        QCOMPARE(PriceRefreshStatusView::statusText(1234, 5000, std::nullopt, english), u"Prices 1,234 of 5,000"_s);
    }

    // Last, as it ends the application's event loop.
    void quittingTheApplicationCancelsTheRefresh()
    {
        const PriceRefreshProgress::Run run(*m_progress, 3);
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        QVERIFY(run.isCancelled());
    }
};

QTEST_MAIN(PriceRefreshStatusViewTest)
#include "PriceRefreshStatusViewTest.moc"
