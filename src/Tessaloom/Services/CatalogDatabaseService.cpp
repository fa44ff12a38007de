// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogDatabaseService.h"

#include "AddressRedaction.h"
#include "Endpoints.h"
#include "Logging.h"
#include "RebrickableKit/CancellationError.h"
#include "RebrickableKit/RebrickableDatabaseBuilder.h"
#include "RebrickableKit/RebrickableDownloader.h"
#include "Services/RebrickableCatalog.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QSettings>
#include <QStandardPaths>
#include <QThreadPool>
#include <QUuid>
#include <QtConcurrent>

#include <exception>
#include <filesystem>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDatabaseBuilder;
using RebrickableKit::RebrickableDownloader;

namespace {

const QString lastModifiedHeaderKey = u"catalog.lastModifiedHeader"_s;
const QString lastBuildDateKey = u"catalog.lastBuildDate"_s;

// A previous catalog being put in place, and dump folders on their way out: names that
// only exist while an operation runs, and that an interrupted one leaves behind.
const QString stagingSuffix = u".staging"_s;
const QString removingInfix = u".removing-"_s;

// The build's steps as the status bar and the set-up sheet show them.
QString checkingStatus()
{
    //% "Checking for updates..."
    return qtTrId("catalogBuild.status.checking");
}

// Error texts and log lines carry the addresses of outside hosts; never their secrets.
QString readableError(const std::exception &error)
{
    return AddressRedaction::redactAddressesIn(QString::fromUtf8(error.what()));
}

// An error of a build step, with the sentence the set-up screen shows.
class BuildFailure : public std::exception
{
public:
    explicit BuildFailure(QString text, ErrorExplanation::Kind kind = ErrorExplanation::Kind::other)
        : m_text(std::move(text))
        , m_kind(kind)
        , m_what(m_text.toUtf8())
    {
    }
    QString text() const { return m_text; }
    ErrorExplanation::Kind kind() const { return m_kind; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_text;
    ErrorExplanation::Kind m_kind;
    QByteArray m_what;
};

// Our own build failures already say what happened and what to do.
ErrorExplanation explanationOf(const std::exception &error, const QString &text)
{
    if (const auto *failure = dynamic_cast<const BuildFailure *>(&error))
        return ErrorExplanation(failure->kind(), failure->text(), QString());
    return ErrorExplanation::fromException(error, text, ErrorExplanation::Server::catalog);
}

void throwIfStopped(const std::stop_token &stopToken)
{
    if (stopToken.stop_requested())
        throw RebrickableKit::CancellationError();
}

QString applicationDataDirectory()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return base.isEmpty() ? QDir::tempPath() : QString(base + u"/Tessaloom"_s);
}

std::optional<QString> storedLastModifiedHeader()
{
    const QVariant stored = QSettings().value(lastModifiedHeaderKey);
    if (!stored.isValid() || stored.typeId() != QMetaType::QString)
        return std::nullopt;
    return stored.toString();
}

} // namespace

CatalogDatabaseService &CatalogDatabaseService::shared()
{
    static CatalogDatabaseService *instance = new CatalogDatabaseService(
        applicationDataDirectory(), Endpoints::baseUrl(Endpoints::Service::rebrickable), QCoreApplication::instance());
    return *instance;
}

CatalogDatabaseService::CatalogDatabaseService(QString applicationDirectory, QUrl downloadBaseUrl, QObject *parent)
    : QObject(parent)
    , m_applicationDirectory(std::move(applicationDirectory))
    , m_downloadBaseUrl(std::move(downloadBaseUrl))
{
    qRegisterMetaType<CatalogDatabaseService::State>();
}

CatalogDatabaseService::~CatalogDatabaseService()
{
    if (m_stopSource)
        m_stopSource->request_stop();
}

QString CatalogDatabaseService::description(BuildError error)
{
    switch (error) {
    case BuildError::databaseNotLoadable:
        return u"The catalog database was built but could not be opened. Try rebuilding from Settings."_s;
    case BuildError::emptyDatabase:
        return u"The catalog database was built but contains no sets. The downloaded data may be corrupt. "
               "Try rebuilding from Settings."_s;
    }
    return {};
}

QString CatalogDatabaseService::liveDatabasePath() const
{
    return m_applicationDirectory + u"/rebrickable.sqlite"_s;
}

QString CatalogDatabaseService::buildingDatabasePath() const
{
    return m_applicationDirectory + u"/rebrickable.sqlite.building"_s;
}

QString CatalogDatabaseService::csvDirectory() const
{
    return m_applicationDirectory + u"/RebrickableCSV"_s;
}

QString CatalogDatabaseService::previousDatabasePath() const
{
    return m_applicationDirectory + u"/rebrickable.sqlite.previous"_s;
}

void CatalogDatabaseService::setState(const State &state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged(m_state);
}

std::optional<QDateTime> CatalogDatabaseService::lastBuildDate() const
{
    const QVariant stored = QSettings().value(lastBuildDateKey);
    if (stored.typeId() != QMetaType::QDateTime)
        return std::nullopt;
    return stored.toDateTime();
}

std::optional<qint64> CatalogDatabaseService::databaseFileSize() const
{
    const QFileInfo file(liveDatabasePath());
    if (!file.exists())
        return std::nullopt;
    return file.size();
}

QCoro::Task<bool> CatalogDatabaseService::checkForUpdates()
{
    setState(State::working(checkingStatus(), 0));
    QPointer<CatalogDatabaseService> self(this);
    bool hasUpdates = false;
    try {
        RebrickableDownloader downloader(csvDirectory(), m_downloadBaseUrl);
        const auto result = co_await downloader.checkForUpdates(storedLastModifiedHeader());
        hasUpdates = result.hasUpdates;
    } catch (const std::exception &error) {
        qCCritical(lcCatalogDB, "Failed to check for updates: %s", qUtf8Printable(readableError(error)));
    }
    if (self && m_state.kind == State::Kind::working)
        setState(State::idle());
    co_return hasUpdates;
}

void CatalogDatabaseService::startBuild()
{
    if (m_state.kind == State::Kind::working)
        return;
    if (m_stopSource)
        m_stopSource->request_stop(); // a finished task; stopping it changes nothing
    m_stopSource.emplace();
    m_building = true;
    m_currentTask.emplace(build(m_stopSource->get_token()));
}

void CatalogDatabaseService::cancelCurrentTask()
{
    if (m_stopSource)
        m_stopSource->request_stop();
}

QCoro::Task<> CatalogDatabaseService::build(std::stop_token stopToken)
{
    // The task outlives nothing: the service lives as long as the process. A guard still
    // keeps a test's short-lived service from being touched after it is gone.
    QPointer<CatalogDatabaseService> self(this);
    try {
        co_await runBuildSteps(stopToken);
        if (!self)
            co_return;
        m_building = false;
        setState(State::completed());
    } catch (const RebrickableKit::CancellationError &) {
        if (!self)
            co_return;
        qCInfo(lcCatalogDB, "Catalog build cancelled");
        removeLeftovers();
        m_building = false;
        setState(State::idle());
    } catch (const std::exception &error) {
        if (!self)
            co_return;
        const QString text = readableError(error);
        qCCritical(lcCatalogDB, "Catalog build failed: %s", qUtf8Printable(text));
        removeLeftovers();
        m_lastFailure = explanationOf(error, text);
        m_building = false;
        setState(State::failed(text));
    }
}

QCoro::Task<> CatalogDatabaseService::runBuildSteps(std::stop_token stopToken)
{
    QPointer<CatalogDatabaseService> self(this);
    if (!QDir().mkpath(m_applicationDirectory))
        throw BuildFailure(u"The folder %1 could not be created."_s.arg(m_applicationDirectory),
                           ErrorExplanation::Kind::notWritable);

    qCInfo(lcCatalogDB, "Starting CSV download to %s", qUtf8Printable(csvDirectory()));
    RebrickableDownloader downloader(csvDirectory(), m_downloadBaseUrl);

    std::optional<QString> lastModified;
    if (const std::optional<QString> stored = storedLastModifiedHeader()) {
        setState(State::working(checkingStatus(), 0));
        // A build that was started always runs: only the header is kept from the check.
        lastModified = (co_await downloader.checkForUpdates(stored, stopToken)).lastModified;
    }

    const RebrickableDownloader::ProgressHandler onDownloadProgress = [self](const QString &name, int index, int total) {
        if (self)
            //% "Downloading %1.csv..."
            self->setState(State::working(qtTrId("catalogBuild.status.downloading").arg(name),
                                          double(index) / double(total) * 0.5));
    };
    co_await downloader.downloadAll(onDownloadProgress, stopToken);
    throwIfStopped(stopToken);

    qCInfo(lcCatalogDB, "Building database at %s", qUtf8Printable(buildingDatabasePath()));
    co_await buildDatabase(stopToken);
    throwIfStopped(stopToken);
    //% "Finalizing..."
    setState(State::working(qtTrId("catalogBuild.status.finalizing"), 0.95));
    keepLiveAsPrevious();
    swapInBuiltFile();

    if (!lastModified) {
        try {
            lastModified = (co_await downloader.checkForUpdates(std::nullopt)).lastModified;
        } catch (const std::exception &error) {
            qCWarning(lcCatalogDB, "Could not learn the dumps' date after the build: %s",
                      qUtf8Printable(readableError(error)));
        }
    }
    QSettings settings;
    if (lastModified)
        settings.setValue(lastModifiedHeaderKey, *lastModified);
    else
        settings.remove(lastModifiedHeaderKey);
    settings.setValue(lastBuildDateKey, QDateTime::currentDateTime());

    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::open();
    RebrickableCatalog::replaceShared(catalog);
    if (!catalog)
        throw BuildFailure(description(BuildError::databaseNotLoadable), ErrorExplanation::Kind::badData);
    const int sets = catalog->setCount();
    if (sets == 0)
        throw BuildFailure(description(BuildError::emptyDatabase), ErrorExplanation::Kind::badData);
    qCInfo(lcCatalogDB, "Catalog validated: %d sets loaded", sets);

    removeDirectoryInBackground(csvDirectory());
    //% "Done"
    setState(State::working(qtTrId("catalogBuild.status.done"), 1.0));
    qCInfo(lcCatalogDB, "Catalog database updated and reloaded");
    Q_EMIT catalogDatabaseDidUpdate();
}

QCoro::Task<> CatalogDatabaseService::buildDatabase(std::stop_token stopToken)
{
    QPointer<CatalogDatabaseService> self(this);
    // Build phases come from the worker thread; each hops to this object's thread, and a
    // phase that lands after the service is gone is dropped.
    const auto onPhase = [self](const RebrickableDatabaseBuilder::BuildPhase &phase) {
        QMetaObject::invokeMethod(self.data(), [self, phase] {
            if (!self)
                return;
            using Kind = RebrickableDatabaseBuilder::BuildPhase::Kind;
            switch (phase.kind) {
            case Kind::importing: {
                //% "Importing data..."
                QString status = qtTrId("catalogBuild.status.importingData");
                if (!phase.tableName.isEmpty()) {
                    //% "Importing %1..."
                    status = qtTrId("catalogBuild.status.importingTable").arg(phase.tableName);
                }
                self->setState(State::working(status, phase.progress * 0.4 + 0.5));
                break;
            }
            case Kind::creatingIndexes:
                //% "Creating indexes..."
                self->setState(State::working(qtTrId("catalogBuild.status.creatingIndexes"), 0.9));
                break;
            case Kind::vacuuming:
                //% "Optimizing..."
                self->setState(State::working(qtTrId("catalogBuild.status.optimizing"), 0.95));
                break;
            case Kind::complete:
                qCInfo(lcCatalogDB, "Database built: %s in %.1fs",
                       qUtf8Printable(QLocale().formattedDataSize(phase.fileSize)), phase.duration);
                break;
            }
        }, Qt::QueuedConnection);
    };

    const QString csv = csvDirectory();
    const QString output = buildingDatabasePath();
    // QtConcurrent only carries QException across threads; any error comes back as a value.
    struct Outcome
    {
        std::exception_ptr failure;
    };
    // Named before it is awaited: GCC 12 destroys the captures of a lambda written inside
    // a co_await expression twice.
    QFuture<Outcome> building = QtConcurrent::run([csv, output, onPhase, stopToken]() -> Outcome {
        try {
            RebrickableDatabaseBuilder::build(csv, output, onPhase, stopToken);
            return {};
        } catch (...) {
            return {std::current_exception()};
        }
    });
    const Outcome outcome = co_await building;
    if (outcome.failure)
        std::rethrow_exception(outcome.failure);
}

// Replaces the live file in one rename, which the file system makes atomic: a reader sees
// the old catalog or the new one, never a mixture. Open connections keep reading the old
// file until they close it.
void CatalogDatabaseService::swapInBuiltFile()
{
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(buildingDatabasePath()).toStdString(),
                            QFile::encodeName(liveDatabasePath()).toStdString(), error);
    if (error)
        throw BuildFailure(u"The new catalog could not be put in place: "_s + QString::fromStdString(error.message()),
                           ErrorExplanation::Kind::notWritable);
}

// A hard link keeps the catalog in service under the previous name at no cost in space or
// time; where the file system has none, a copy does. The previous name is taken in one
// rename either way, so a crash leaves the former previous catalog or the new one whole.
// When the catalog in service cannot be kept, the new one is not put in place: a build
// that turned out bad could otherwise not be undone.
void CatalogDatabaseService::keepLiveAsPrevious()
{
    const QString live = liveDatabasePath();
    if (!QFileInfo::exists(live))
        return;
    const QString staging = previousDatabasePath() + stagingSuffix;
    QFile::remove(staging);
    std::error_code error;
    std::filesystem::create_hard_link(QFile::encodeName(live).toStdString(),
                                      QFile::encodeName(staging).toStdString(), error);
    if (error && !QFile::copy(live, staging)) {
        QFile::remove(staging);
        throw BuildFailure(u"The catalog in service could not be kept as the previous one, so the new catalog "
                           "was not put in place. Check the free disk space and try again."_s,
                           ErrorExplanation::Kind::diskFull);
    }
    std::filesystem::rename(QFile::encodeName(staging).toStdString(),
                            QFile::encodeName(previousDatabasePath()).toStdString(), error);
    if (error) {
        QFile::remove(staging);
        throw BuildFailure(u"The catalog in service could not be kept as the previous one: "_s
                               + QString::fromStdString(error.message()),
                           ErrorExplanation::Kind::notWritable);
    }
}

bool CatalogDatabaseService::hasPreviousCatalog() const
{
    return QFileInfo(previousDatabasePath()).isFile();
}

bool CatalogDatabaseService::shouldOfferPreviousCatalog() const
{
    if (m_state.kind == State::Kind::working || !hasPreviousCatalog())
        return false;
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    return !catalog || catalog->path() != liveDatabasePath() || catalog->setCount() == 0;
}

CatalogDatabaseService::RestoreOutcome CatalogDatabaseService::restorePreviousCatalog()
{
    if (m_state.kind == State::Kind::working) {
        //% "The previous catalog can be restored once the catalog update under way has ended."
        return {false, qtTrId("catalogRestore.busy")};
    }
    if (!hasPreviousCatalog()) {
        //% "There is no previous catalog to restore."
        return {false, qtTrId("catalogRestore.none")};
    }
    // Checked before anything moves: a previous catalog that does not read is no way back.
    {
        const std::shared_ptr<RebrickableCatalog> previous = RebrickableCatalog::openFile(previousDatabasePath());
        if (!previous || previous->setCount() == 0) {
            qCWarning(lcCatalogDB, "Previous catalog not restored: it cannot be read or holds no sets");
            //% "The previous catalog cannot be read either, so nothing was changed. Rebuild the catalog from Settings."
            return {false, qtTrId("catalogRestore.unreadable")};
        }
    }
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(previousDatabasePath()).toStdString(),
                            QFile::encodeName(liveDatabasePath()).toStdString(), error);
    if (error) {
        qCWarning(lcCatalogDB, "Previous catalog not restored: %s", error.message().c_str());
        //% "The previous catalog could not be put back in place: %1"
        return {false, qtTrId("catalogRestore.failed").arg(QString::fromStdString(error.message()))};
    }
    // The dumps' date belonged to the catalog just undone: without it the next daily check
    // finds an update and builds again.
    QSettings().remove(lastModifiedHeaderKey);
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::open();
    RebrickableCatalog::replaceShared(catalog);
    const int sets = catalog ? catalog->setCount() : 0;
    qCInfo(lcCatalogDB, "Previous catalog restored: %d sets loaded", sets);
    setState(State::idle());
    Q_EMIT catalogDatabaseDidUpdate();
    //% "The previous catalog is back in service: %1 sets."
    return {true, qtTrId("catalogRestore.done").arg(QLocale().toString(sets))};
}

void CatalogDatabaseService::removeLeftovers()
{
    QFile::remove(buildingDatabasePath());
    removeDirectoryInBackground(csvDirectory());
}

void CatalogDatabaseService::removeLeftoversOfInterruptedBuild()
{
    if (m_state.kind == State::Kind::working)
        return;
    QFile::remove(buildingDatabasePath());
    QFile::remove(previousDatabasePath() + stagingSuffix);
    removeDirectoryInBackground(csvDirectory());
    // Folders moved aside by a removal that the end of the process cut short.
    const QDir directory(m_applicationDirectory);
    const QString pattern = QFileInfo(csvDirectory()).fileName() + removingInfix + u'*';
    for (const QString &name : directory.entryList({pattern}, QDir::Dirs | QDir::NoDotAndDotDot))
        removeDirectoryInBackground(directory.filePath(name));
}

// The dumps' folder holds some 225 MB in hundreds of thousands of blocks: deleting it takes
// long enough to stall the window. It is renamed away at once, so a build that starts next
// finds the name free, and deleted on a worker thread.
void CatalogDatabaseService::removeDirectoryInBackground(const QString &path)
{
    const QFileInfo folder(path);
    if (!folder.isDir())
        return;
    QString doomed = path;
    if (!folder.fileName().contains(removingInfix)) {
        doomed = path + removingInfix + QUuid::createUuid().toString(QUuid::WithoutBraces);
        if (!QDir().rename(path, doomed)) {
            // Not movable: deleted here and now, since a worker deleting it under its own
            // name could take the files of the next build with it.
            QDir(path).removeRecursively();
            return;
        }
    }
    QThreadPool::globalInstance()->start([doomed] { QDir(doomed).removeRecursively(); });
}
