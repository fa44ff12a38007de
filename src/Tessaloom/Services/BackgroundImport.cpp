// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/BackgroundImport.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoroFuture>
#include <QObject>

using namespace Qt::StringLiterals;
using CSVExportImportService::ImportProgress;
using CSVExportImportService::ImportResult;

QCoro::Task<ImportResult> BackgroundImport::run(PersistentContainer &container, Work work, ImportProgress progress)
{
    // Progress reports travel to the main thread as queued calls on this object. It is made
    // before the context, so it is destroyed after it: the context's destruction waits for
    // its block, and no report can be posted to an object already gone.
    const auto receiver = std::make_unique<QObject>();
    const std::shared_ptr<ManagedObjectContext> context = container.newBackgroundContext();
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    context->setName(u"backgroundContext"_s);

    ImportProgress relay;
    if (progress) {
        relay = [target = receiver.get(), progress](qint64 done, qint64 total) {
            QMetaObject::invokeMethod(target, [progress, done, total] { progress(done, total); }, Qt::QueuedConnection);
        };
    }
    // Named before it is awaited: GCC 12 destroys the captures of a lambda written inside
    // a co_await expression twice.
    QFuture<ImportResult> importing = context->perform(
        [work = std::move(work), relay](ManagedObjectContext &store) { return work(store, relay); });
    co_return co_await importing;
}
