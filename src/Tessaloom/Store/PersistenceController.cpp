// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/PersistenceController.h"

#include "Logging.h"

#include <QDir>
#include <QStandardPaths>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<PersistentContainer> openOrDie(const QString &path, bool inMemory)
{
    try {
        return PersistentContainer::open(path, inMemory);
    } catch (const StoreError &error) {
        PersistenceController::failToLoad(error, path);
    }
}

QString privateMemoryName()
{
    return u"tessaloom-memory-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

// What the platform calls the error's user info: the file and SQLite's result code.
QString errorDetails(const StoreError &error, const QString &path)
{
    return u"{path: \"%1\", sqliteCode: %2}"_s.arg(QDir::toNativeSeparators(path)).arg(error.sqliteCode());
}

PersistenceController::LoadFailurePresenter &loadFailurePresenter()
{
    static PersistenceController::LoadFailurePresenter presenter;
    return presenter;
}

} // namespace

PersistenceController::PersistenceController(std::unique_ptr<PersistentContainer> container)
    : m_container(std::move(container))
{
}

PersistenceController::PersistenceController(bool inMemory)
    : PersistenceController(openOrDie(inMemory ? privateMemoryName() : defaultStorePath(), inMemory))
{
}

PersistenceController &PersistenceController::shared()
{
    static PersistenceController instance = [] {
        PersistenceController opened(false);
        qCInfo(lcPersistence).noquote() << "Collection store opened:" << QDir::toNativeSeparators(defaultStorePath());
        return opened;
    }();
    return instance;
}

std::unique_ptr<PersistenceController> PersistenceController::open(const QString &path, bool inMemory)
{
    return std::unique_ptr<PersistenceController>(
        new PersistenceController(PersistentContainer::open(inMemory ? privateMemoryName() : path, inMemory)));
}

QString PersistenceController::defaultStorePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Tessaloom/Tessaloom.sqlite"_s;
}

QString PersistenceController::loadFailureLogText(const StoreError &error, const QString &path)
{
    return u"Failed to load persistent stores: %1, %2"_s.arg(error.description(), errorDetails(error, path));
}

QString PersistenceController::unresolvedErrorText(const StoreError &error, const QString &path)
{
    return u"Unresolved error "_s + error.description() + u", "_s + errorDetails(error, path);
}

void PersistenceController::setLoadFailurePresenter(LoadFailurePresenter presenter)
{
    loadFailurePresenter() = std::move(presenter);
}

void PersistenceController::failToLoad(const StoreError &error, const QString &path)
{
    if (const LoadFailurePresenter &presenter = loadFailurePresenter()) {
        // Whatever goes wrong while telling the user, the program still ends as below.
        try {
            presenter(error, path);
        } catch (...) {
            qCWarning(lcPersistence) << "Showing why the collection store did not open failed";
        }
    }
    qCCritical(lcPersistence).noquote() << loadFailureLogText(error, path);
    qFatal("%s", qUtf8Printable(unresolvedErrorText(error, path)));
}
