// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogDatabaseService.h"

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
#include <QtConcurrent>

#include <exception>
#include <filesystem>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDatabaseBuilder;
using RebrickableKit::RebrickableDownloader;

namespace {

const QString lastModifiedHeaderKey = u"catalog.lastModifiedHeader"_s;
const QString lastBuildDateKey = u"catalog.lastBuildDate"_s;

// An error of a build step, with the sentence the set-up screen shows.
class BuildFailure : public std::exception
{
public:
    explicit BuildFailure(QString text)
        : m_text(std::move(text))
        , m_what(m_text.toUtf8())
    {
    }
    QString text() const { return m_text; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_text;
    QByteArray m_what;
};

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
    setState(State::working(u"Checking for updates..."_s, 0));
    QPointer<CatalogDatabaseService> self(this);
    bool hasUpdates = false;
    try {
        RebrickableDownloader downloader(csvDirectory(), m_downloadBaseUrl);
        const auto result = co_await downloader.checkForUpdates(storedLastModifiedHeader());
        hasUpdates = result.hasUpdates;
    } catch (const std::exception &error) {
        qCCritical(lcCatalogDB, "Failed to check for updates: %s", error.what());
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
        setState(State::completed());
    } catch (const RebrickableKit::CancellationError &) {
        if (!self)
            co_return;
        qCInfo(lcCatalogDB, "Catalog build cancelled");
        removeLeftovers();
        setState(State::idle());
    } catch (const std::exception &error) {
        if (!self)
            co_return;
        qCCritical(lcCatalogDB, "Catalog build failed: %s", error.what());
        removeLeftovers();
        setState(State::failed(QString::fromUtf8(error.what())));
    }
}

QCoro::Task<> CatalogDatabaseService::runBuildSteps(std::stop_token stopToken)
{
    QPointer<CatalogDatabaseService> self(this);
    if (!QDir().mkpath(m_applicationDirectory))
        throw BuildFailure(u"The folder %1 could not be created."_s.arg(m_applicationDirectory));

    qCInfo(lcCatalogDB, "Starting CSV download to %s", qUtf8Printable(csvDirectory()));
    RebrickableDownloader downloader(csvDirectory(), m_downloadBaseUrl);

    std::optional<QString> lastModified;
    if (const std::optional<QString> stored = storedLastModifiedHeader()) {
        setState(State::working(u"Checking for updates..."_s, 0));
        // A build that was started always runs: only the header is kept from the check.
        lastModified = (co_await downloader.checkForUpdates(stored)).lastModified;
    }

    const RebrickableDownloader::ProgressHandler onDownloadProgress = [self](const QString &name, int index, int total) {
        if (self)
            self->setState(State::working(u"Downloading "_s + name + u".csv..."_s, double(index) / double(total) * 0.5));
    };
    co_await downloader.downloadAll(onDownloadProgress, stopToken);
    throwIfStopped(stopToken);

    qCInfo(lcCatalogDB, "Building database at %s", qUtf8Printable(buildingDatabasePath()));
    co_await buildDatabase(stopToken);
    throwIfStopped(stopToken);
    setState(State::working(u"Finalizing..."_s, 0.95));
    swapInBuiltFile();

    if (!lastModified) {
        try {
            lastModified = (co_await downloader.checkForUpdates(std::nullopt)).lastModified;
        } catch (const std::exception &error) {
            qCWarning(lcCatalogDB, "Could not learn the dumps' date after the build: %s", error.what());
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
        throw BuildFailure(description(BuildError::databaseNotLoadable));
    const int sets = catalog->setCount();
    if (sets == 0)
        throw BuildFailure(description(BuildError::emptyDatabase));
    qCInfo(lcCatalogDB, "Catalog validated: %d sets loaded", sets);

    QDir(csvDirectory()).removeRecursively();
    setState(State::working(u"Done"_s, 1.0));
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
            case Kind::importing:
                self->setState(State::working(
                    phase.tableName.isEmpty()
                        ? u"Importing data..."_s
                        : QString(u"Importing "_s + phase.tableName + u"..."_s),
                    phase.progress * 0.4 + 0.5));
                break;
            case Kind::creatingIndexes:
                self->setState(State::working(u"Creating indexes..."_s, 0.9));
                break;
            case Kind::vacuuming:
                self->setState(State::working(u"Optimizing..."_s, 0.95));
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
        throw BuildFailure(u"The new catalog could not be put in place: "_s + QString::fromStdString(error.message()));
}

void CatalogDatabaseService::removeLeftovers()
{
    QFile::remove(buildingDatabasePath());
    QDir(csvDirectory()).removeRecursively();
}
