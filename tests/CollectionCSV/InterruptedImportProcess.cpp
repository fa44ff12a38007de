// SPDX-License-Identifier: GPL-3.0-or-later
// For the interrupted import test only: imports the CSV file at argv[2] into the store at
// argv[1] as the main window does, on a background context named "backgroundContext" with
// the property-by-property merge policy, and tells the test how far it has come so that the
// test can kill it at a moment of its choosing. Prints "progress <rows>" for each progress
// report and "done created <n> updated <n> errors <n>" once the import has returned, each
// line flushed at once.
#include "Services/CSVExportImportService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3)
        return 2;
    QFile file(arguments.at(2));
    if (!file.open(QIODevice::ReadOnly))
        return 3;
    const QString text = QString::fromUtf8(file.readAll());
    // No catalog: its look-ups would only fill in image addresses, and the test is about
    // what the store keeps of a save that was cut, not about the catalog.
    RebrickableCatalog::replaceShared(nullptr);

    const std::unique_ptr<PersistentContainer> store = PersistentContainer::open(arguments.at(1));
    const std::shared_ptr<ManagedObjectContext> context = store->newBackgroundContext();
    context->setName(u"backgroundContext"_s);
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    // Reported on the import's own thread, straight to the pipe: the test reacts to each
    // line while the import goes on, so nothing may wait in a buffer.
    const CSVExportImportService::ImportProgress report = [](qint64 rowsDone, qint64) {
        std::printf("progress %lld\n", static_cast<long long>(rowsDone));
        std::fflush(stdout);
    };
    const CSVExportImportService::ImportResult result = context->performAndWait(
        [&text, &report](ManagedObjectContext &target) { return CSVExportImportService::importCSV(text, target, report); });
    std::printf("done created %lld updated %lld errors %lld\n", static_cast<long long>(result.created),
                static_cast<long long>(result.updated), static_cast<long long>(result.errors.size()));
    std::fflush(stdout);
    return 0;
}
