// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/ErrorExplanation.h"

#include <QCoroTask>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <stop_token>

// The state machine around a catalog build: downloads the dumps, builds the database
// beside the live file, swaps it in atomically, checks that it reads, reloads the shared
// catalog and tells the application. One instance for the process, on the main thread;
// only the build itself runs on a worker thread.
//
// The live "rebrickable.sqlite" is touched by one step only, the swap: a failure or a
// cancellation before it leaves the catalog in service untouched and open. Right before
// the swap the catalog in service is kept as "rebrickable.sqlite.previous" (one
// generation), so that a new catalog which turns out empty or unreadable can be undone.
class CatalogDatabaseService : public QObject
{
    Q_OBJECT

public:
    struct State
    {
        enum class Kind { idle, working, completed, failed };
        Kind kind = Kind::idle;
        QString status;       // working
        double progress = 0;  // working, 0.0 to 1.0
        QString errorText;    // failed

        static State idle() { return {}; }
        static State working(const QString &status, double progress) { return {Kind::working, status, progress, {}}; }
        static State completed() { return {Kind::completed, {}, 0, {}}; }
        static State failed(const QString &text) { return {Kind::failed, {}, 0, text}; }
        friend bool operator==(const State &, const State &) = default;
    };

    // Errors found after the swap; their sentences are what the set-up screen shows.
    enum class BuildError { databaseNotLoadable, emptyDatabase };
    static QString description(BuildError error);

    static CatalogDatabaseService &shared();
    // `applicationDirectory` holds the live file, the file under construction and the dumps;
    // `downloadBaseUrl` is the host the dumps come from.
    CatalogDatabaseService(QString applicationDirectory, QUrl downloadBaseUrl, QObject *parent = nullptr);
    ~CatalogDatabaseService() override;

    State state() const { return m_state; }
    // Whether a download and build started by startBuild() is under way; a mere check for
    // updates also reports working but is not a build.
    bool isBuilding() const { return m_building; }
    // The last failed build as the user is told of it: a sentence of what happened and what
    // to do, the state's error text as its details. Empty until a build has failed.
    ErrorExplanation lastFailure() const { return m_lastFailure; }

    // Whether the published dumps differ from those of the built catalog. Never fails: a
    // failed check logs and answers false.
    QCoro::Task<bool> checkForUpdates();
    // Starts a build unless one is running; returns at once.
    void startBuild();
    // Cancels the build started last; no effect when it has finished.
    void cancelCurrentTask();
    bool hasCurrentTask() const { return bool(m_stopSource); }

    // Puts the previous catalog back in service in one rename, reloads the shared catalog
    // and forgets the stored dumps' date, so that the next daily check builds again.
    // Refused while a build works, and when there is no previous catalog or it does not
    // read or holds no sets; then nothing changes. The outcome's text is for the user.
    struct RestoreOutcome
    {
        bool restored = false;
        QString text;
    };
    RestoreOutcome restorePreviousCatalog();
    bool hasPreviousCatalog() const;
    // Whether the catalog in service failed the reading check of a build (it is absent,
    // another file stands in for it, or it holds no sets) while a previous one is kept:
    // the moment to offer the previous catalog back.
    bool shouldOfferPreviousCatalog() const;

    // Removes what an interrupted build left behind: the file under construction, the
    // dumps' folder and half-kept previous catalogs. Does nothing while a build works.
    // Folders are moved aside at once and deleted on a worker thread.
    void removeLeftoversOfInterruptedBuild();

    std::optional<QDateTime> lastBuildDate() const;
    std::optional<qint64> databaseFileSize() const;

    QString applicationDirectory() const { return m_applicationDirectory; }
    QString liveDatabasePath() const;
    QString buildingDatabasePath() const;
    QString csvDirectory() const;
    QString previousDatabasePath() const;

Q_SIGNALS:
    void stateChanged(const CatalogDatabaseService::State &state);
    // After each successful build, once the new catalog is the shared one.
    void catalogDatabaseDidUpdate();

private:
    QCoro::Task<> build(std::stop_token stopToken);
    QCoro::Task<> runBuildSteps(std::stop_token stopToken);
    QCoro::Task<> buildDatabase(std::stop_token stopToken);
    void keepLiveAsPrevious();
    void swapInBuiltFile();
    void removeLeftovers();
    void removeDirectoryInBackground(const QString &path);
    void setState(const State &state);

    QString m_applicationDirectory;
    QUrl m_downloadBaseUrl;
    State m_state;
    ErrorExplanation m_lastFailure;
    std::optional<std::stop_source> m_stopSource;
    std::optional<QCoro::Task<>> m_currentTask;
    bool m_building = false;
};

Q_DECLARE_METATYPE(CatalogDatabaseService::State)
