// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "Store/StoreChanges.h"

#include <QMutex>
#include <QObject>
#include <QWaitCondition>
#include <QString>

#include <array>
#include <memory>
#include <vector>

class ManagedObjectContext;
class QThreadPool;
class StoreConnection;

// The collection store: one SQLite file (or a private in-memory database), its view
// context for the main thread, background contexts on demand, and the change notices.
// Every commit, from any context, is announced once by objectsDidChange() on the thread
// the container lives on (the main thread), after the commit.
class PersistentContainer : public QObject
{
    Q_OBJECT

public:
    // Opens the store at `path`, creating the file and its folder when absent, and runs
    // the migrations. With `inMemory`, `path` only names a private in-memory database
    // that disappears with the container. Throws StoreError; the file is left as it was.
    static std::unique_ptr<PersistentContainer> open(const QString &path, bool inMemory = false,
                                                     QObject *parent = nullptr);
    ~PersistentContainer() override;

    QString path() const { return m_path; }
    bool isInMemory() const { return m_inMemory; }

    // The main-thread context, named "viewContext"; screens read and write through it.
    ManagedObjectContext &viewContext() const { return *m_viewContext; }
    // A fresh context with a connection of its own, whose perform() runs on a worker
    // thread of its own, named "backgroundContext" with the property-by-property merge
    // policy. Keep it alive while its work runs. The connection and the worker are lent
    // from small pools and come back when the context ends (see lendConnection()).
    std::shared_ptr<ManagedObjectContext> newBackgroundContext();

    // For the contexts: a new connection to this store (throws StoreError), a primary key
    // for a new object (unique in this process, thread-safe), and the notice of a commit.
    std::unique_ptr<StoreConnection> openConnection() const;
    // Opening a connection costs a file open, its pragmas and the preparing of every
    // statement again, more than a small background context's whole work. A connection
    // that a background context gave back is lent to the next one instead, with its
    // prepared statements; it comes back only clean (see takeBackConnection()).
    // Thread-safe; lendConnection() throws StoreError when it has to open one and fails.
    std::unique_ptr<StoreConnection> lendConnection();
    void takeBackConnection(std::unique_ptr<StoreConnection> connection);
    // Likewise the single worker thread of a background context: starting and joining a
    // thread per context is spared. A worker comes back only idle. Thread-safe.
    std::unique_ptr<QThreadPool> lendWorker();
    void takeBackWorker(std::unique_ptr<QThreadPool> worker);
    qint64 allocatePrimaryKey(EntityType entity);
    // After the store's rows were replaced as a whole (a backup restored), keys continue
    // above `largestKey`, so that a new object never takes the key of a row brought in.
    // Keys never go down: one already handed out stays unique. Thread-safe.
    void reserveKeysUpTo(EntityType entity, qint64 largestKey);
    void postChanges(const StoreChanges &changes);

    // Contexts of this process take turns at the store's single write lock in the order
    // they ask, rather than racing SQLite's busy retries, which a context that keeps
    // reading its pending changes would win every time. Background contexts wait for
    // their turn; the view context never waits on the main thread: it takes the turn only
    // when nobody holds it or waits for it (tryAcquireWriteTurn()), and otherwise asks to
    // be told when the turn is free (requestWriteTurnForViewContext()).
    void acquireWriteTurn();
    bool tryAcquireWriteTurn();
    void releaseWriteTurn();
    // When the turn is next free, the view context's queued save runs on the main thread,
    // through a queued call. Thread-safe.
    void requestWriteTurnForViewContext();

Q_SIGNALS:
    void objectsDidChange(const StoreChanges &changes);
    // A save of the view context that had to wait for another context's write ran: it
    // committed (after its objectsDidChange()), or it failed and its changes are still
    // pending in the view context.
    void queuedSaveDidFinish();
    void queuedSaveDidFail(const QString &description);

private:
    PersistentContainer(QString path, bool inMemory, QObject *parent);
    // Posts the queued save to the main thread when the turn is free and one is wanted.
    // Called with m_turnMutex held.
    void offerFreeTurnToViewContext();
    void runQueuedViewContextSave();

    QString m_path;
    bool m_inMemory;
    std::unique_ptr<StoreConnection> m_anchor; // keeps an in-memory database alive
    std::shared_ptr<ManagedObjectContext> m_viewContext;
    QMutex m_keyMutex;
    QMutex m_turnMutex;
    QWaitCondition m_turnChanged;
    quint64 m_nextTurn = 0;
    quint64 m_servingTurn = 0;
    bool m_viewContextWantsTurn = false;
    std::array<qint64, 9> m_lastKeys{};
    QMutex m_poolMutex;
    // Idle connections and workers of ended background contexts, at most a few each:
    // enough for the contexts that run at once, not a connection per context ever made.
    std::vector<std::unique_ptr<StoreConnection>> m_idleConnections;
    std::vector<std::unique_ptr<QThreadPool>> m_idleWorkers;
};
