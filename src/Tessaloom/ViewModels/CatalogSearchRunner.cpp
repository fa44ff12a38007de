// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSearchRunner.h"

#include <QFutureWatcher>
#include <QtConcurrent>

CatalogSearchRunner::CatalogSearchRunner(QObject *parent)
    : CatalogSearchRunner(&CatalogSetSearch::run, parent)
{
}

CatalogSearchRunner::CatalogSearchRunner(Search search, QObject *parent)
    : QObject(parent)
    , m_search(std::move(search))
{
}

CatalogSearchRunner::~CatalogSearchRunner()
{
    // A search on its way finds its flag set and stops early; its watcher goes with this
    // object, so what it finds is never seen.
    cancel();
}

void CatalogSearchRunner::start(const CatalogSetSearch::Request &request)
{
    cancel();
    auto cancelled = std::make_shared<std::atomic_bool>(false);
    m_current = cancelled;
    // The watcher is a child of this runner: a search still on its way when the runner goes
    // lands on nothing. The task holds copies of the request, the search and the flag.
    auto *watcher = new QFutureWatcher<CatalogSetSearch::Outcome>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, cancelled] {
        watcher->deleteLater();
        const CatalogSetSearch::Outcome outcome = watcher->result();
        if (!outcome.themeNames.isEmpty())
            Q_EMIT themeNamesFound(outcome.themeNames);
        if (cancelled != m_current || cancelled->load())
            return;
        m_current.reset();
        Q_EMIT resultsReady(outcome.results, outcome.totalCount);
    });
    watcher->setFuture(
        QtConcurrent::run([search = m_search, request, cancelled] { return search(request, *cancelled); }));
}

void CatalogSearchRunner::cancel()
{
    if (m_current) {
        m_current->store(true);
        m_current.reset();
    }
}
