// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSearchRunner.h"

#include <QSemaphore>
#include <QTest>
#include <QThreadPool>

#include <map>

using namespace Qt::StringLiterals;

namespace {

// Searches that wait on the pool until the test lets each one go, so that the test decides
// in which order they land. Each finds one set numbered after its text and names its
// request's theme after the text too.
class HeldSearches
{
public:
    void hold(const QString &text) { m_gates.emplace(text, std::make_unique<Gate>()); }
    void release(const QString &text) { m_gates.at(text)->open.release(); }
    bool sawCancellation(const QString &text) const { return m_gates.at(text)->sawCancellation.load(); }
    // Lets every search go, so that a test that failed half-way leaves no thread waiting.
    void releaseAll()
    {
        for (const auto &[text, gate] : m_gates)
            gate->open.release();
    }

    CatalogSearchRunner::Search search()
    {
        return [this](const CatalogSetSearch::Request &request, const std::atomic_bool &cancelled) {
            Gate &gate = *m_gates.at(request.text);
            gate.open.acquire();
            gate.sawCancellation = cancelled.load();
            CatalogSetSearch::Outcome outcome;
            CatalogSetResult result;
            result.setNum = request.text + u"-1"_s;
            outcome.results = {result};
            outcome.themeNames.insert(request.themeID.value_or(0), request.text);
            return outcome;
        };
    }

private:
    struct Gate
    {
        QSemaphore open;
        std::atomic_bool sawCancellation = false;
    };
    // Filled before any search starts, then only read from the pool.
    std::map<QString, std::unique_ptr<Gate>> m_gates;
};

CatalogSetSearch::Request request(const QString &text, int themeID)
{
    return {text, themeID, {}, {}};
}

} // namespace

class CatalogSearchRunnerTest : public QObject
{
    Q_OBJECT

private:
    HeldSearches m_searches;
    std::unique_ptr<CatalogSearchRunner> m_runner;
    QStringList m_published;              // the first set number of each published result
    QList<CatalogSetSearch::ThemeNames> m_names; // each hand-over of theme names

private Q_SLOTS:
    void initTestCase()
    {
        // Room for every held search at once.
        QThreadPool::globalInstance()->setMaxThreadCount(4);
    }

    void init()
    {
        m_searches = HeldSearches();
        m_published.clear();
        m_names.clear();
        m_runner = std::make_unique<CatalogSearchRunner>(m_searches.search());
        connect(m_runner.get(), &CatalogSearchRunner::resultsReady, this,
                [this](const QList<CatalogSetResult> &results) { m_published << results.value(0).setNum; });
        connect(m_runner.get(), &CatalogSearchRunner::themeNamesFound, this,
                [this](const CatalogSetSearch::ThemeNames &names) { m_names << names; });
    }

    void cleanup()
    {
        m_runner.reset();
        m_searches.releaseAll();
        QThreadPool::globalInstance()->waitForDone();
    }

    void theCurrentSearchPublishesItsResultsAndNamesOnce()
    {
        m_searches.hold(u"falcon"_s);
        m_runner->start(request(u"falcon"_s, 1));
        QVERIFY(m_runner->isRunning());
        m_searches.release(u"falcon"_s);
        QTRY_COMPARE(m_published, QStringList{u"falcon-1"_s});
        QVERIFY(!m_runner->isRunning());
        QCOMPARE(m_names.size(), 1);
        QCOMPARE(m_names.first().value(1), std::optional<QString>(u"falcon"_s));
    }

    void aStaleSearchLandingAfterTheNewerOneIsDropped()
    {
        m_searches.hold(u"falcon"_s);
        m_searches.hold(u"castle"_s);
        m_runner->start(request(u"falcon"_s, 1));
        m_runner->start(request(u"castle"_s, 5));
        m_searches.release(u"castle"_s);
        QTRY_COMPARE(m_published, QStringList{u"castle-1"_s});
        m_searches.release(u"falcon"_s);
        // The stale search still hands over its theme names: they stay true.
        QTRY_COMPARE(m_names.size(), 2);
        QCOMPARE(m_names.last().value(1), std::optional<QString>(u"falcon"_s));
        QCOMPARE(m_published, QStringList{u"castle-1"_s});
        QVERIFY(m_searches.sawCancellation(u"falcon"_s));
    }

    void aStaleSearchLandingBeforeTheNewerOneIsDropped()
    {
        m_searches.hold(u"falcon"_s);
        m_searches.hold(u"castle"_s);
        m_runner->start(request(u"falcon"_s, 1));
        m_runner->start(request(u"castle"_s, 5));
        m_searches.release(u"falcon"_s);
        QTRY_COMPARE(m_names.size(), 1);
        QVERIFY(m_published.isEmpty());
        QVERIFY(m_runner->isRunning());
        m_searches.release(u"castle"_s);
        QTRY_COMPARE(m_published, QStringList{u"castle-1"_s});
        QVERIFY(!m_runner->isRunning());
    }

    void aCancelledSearchPublishesNothingAndSeesItsFlag()
    {
        m_searches.hold(u"falcon"_s);
        m_runner->start(request(u"falcon"_s, 1));
        m_runner->cancel();
        QVERIFY(!m_runner->isRunning());
        m_searches.release(u"falcon"_s);
        QTRY_COMPARE(m_names.size(), 1);
        QVERIFY(m_published.isEmpty());
        QVERIFY(m_searches.sawCancellation(u"falcon"_s));
    }

    void aSearchOutlivingTheRunnerEndsUnseen()
    {
        m_searches.hold(u"falcon"_s);
        m_runner->start(request(u"falcon"_s, 1));
        m_runner.reset();
        m_searches.release(u"falcon"_s);
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(m_searches.sawCancellation(u"falcon"_s));
        QVERIFY(m_names.isEmpty());
        QVERIFY(m_published.isEmpty());
    }
};

QTEST_GUILESS_MAIN(CatalogSearchRunnerTest)
#include "CatalogSearchRunnerTest.moc"
