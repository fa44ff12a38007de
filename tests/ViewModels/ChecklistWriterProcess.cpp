// SPDX-License-Identifier: GPL-3.0-or-later
// A separate process for the checklist's crash test: opens the store and the catalog it is
// given, loads the checklist of the store's only copy, prints "marking", marks every part
// complete, prints "marked" and waits to be killed. With a commit moment as a fourth
// argument it stops itself inside that save's COMMIT (CommitPointShim) instead.
//
//   ChecklistWriterProcess <store path> <catalog path> [commit moment]

#include "CommitPointShim.h"

#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/PartsChecklistViewModel.h"

#include <QCoreApplication>
#include <QTest>

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void say(const char *line)
{
    std::printf("%s\n", line);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: ChecklistWriterProcess <store> <catalog> [moment]\n");
        return 2;
    }
    CommitPointShim::Moment moment{};
    const bool atMoment = arguments.size() > 3;
    if (atMoment) {
        if (!CommitPointShim::parseMoment(argv[3], moment)) {
            std::fprintf(stderr, "unknown moment %s\n", argv[3]);
            return 2;
        }
        CommitPointShim::install();
    }

    auto store = PersistentContainer::open(arguments.at(1));
    auto catalog = RebrickableCatalog::openFile(arguments.at(2));
    if (!store || !catalog)
        return 3;
    RebrickableCatalog::replaceShared(catalog);
    ManagedObjectContext &context = store->viewContext();
    const QList<BrickSet> copies = context.fetch(FetchRequest<BrickSet>());
    if (copies.size() != 1)
        return 4;

    PartsChecklistViewModel model(copies.first(), context);
    model.loadItems();
    if (!QTest::qWaitFor([&model] { return !model.isLoading(); }, 60000) || model.items().isEmpty())
        return 5;

    say("marking");
    if (atMoment)
        CommitPointShim::arm(moment);
    model.markAllComplete();
    if (context.hasChanges())
        return 6; // the save did not go through
    say("marked");
    for (;;)
        ::pause();
}
