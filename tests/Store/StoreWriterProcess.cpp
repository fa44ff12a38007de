// SPDX-License-Identifier: GPL-3.0-or-later
// A separate process for the tests that must watch a store from outside:
//
//   StoreWriterProcess write <path> <copies>   commits 10 copies, prints "baseline", then
//                                              prints "saving" and saves <copies> more in
//                                              one save, and prints "saved"
//   StoreWriterProcess commit-point <path> <copies> <moment>
//                                              like write, but the large save stops inside
//                                              its COMMIT at <moment> (see CommitPointShim),
//                                              prints "blocked <moment>" and waits to be
//                                              killed
//   StoreWriterProcess open-shared             opens the shared store as start-up does,
//                                              and prints "opened" if that did not end it
//   StoreWriterProcess open <path>             opens the store at <path>; on failure
//                                              prints "kind=<n> <error>" to stderr, exit 2

#include "CommitPointShim.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"

#include <QCoreApplication>
#include <QUuid>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void say(const char *line)
{
    std::fputs(line, stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void addCopies(ManagedObjectContext &context, int count)
{
    for (int index = 0; index < count; ++index) {
        CatalogSet set;
        set.setNumber = QString::number(10000 + index) + u"-1"_s;
        set.name = u"Set number %1 with a name long enough to fill pages"_s.arg(index);
        const CatalogSet inserted = context.insert(set);
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc();
        copy.catalogSet = inserted.objectID;
        copy.setAcquisitionType(AcquisitionType::purchased);
        copy.notes = u"Written by the writer process, copy %1"_s.arg(index);
        context.insert(copy);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() >= 2 && arguments[1] == u"open-shared"_s) {
        PersistenceController::shared();
        say("opened");
        return 0;
    }
    if (arguments.size() >= 3 && arguments[1] == u"open"_s) {
        try {
            PersistenceController::open(arguments[2]);
            say("opened");
            return 0;
        } catch (const StoreError &error) {
            std::fprintf(stderr, "kind=%d %s\n", int(error.kind()), error.what());
            return 2;
        }
    }
    const bool stopInsideCommit = arguments.size() >= 5 && arguments[1] == u"commit-point"_s;
    if ((arguments.size() >= 4 && arguments[1] == u"write"_s) || stopInsideCommit) {
        CommitPointShim::Moment moment{};
        if (stopInsideCommit) {
            if (!CommitPointShim::parseMoment(argv[4], moment)) {
                std::fprintf(stderr, "unknown moment %s\n", argv[4]);
                return 1;
            }
            CommitPointShim::install();
        }
        try {
            auto controller = PersistenceController::open(arguments[2]);
            auto &context = controller->container().viewContext();
            addCopies(context, 10);
            context.save();
            say("baseline");
            addCopies(context, arguments[3].toInt());
            say("saving");
            if (stopInsideCommit)
                CommitPointShim::arm(moment);
            context.save();
            say("saved");
            return 0;
        } catch (const StoreError &error) {
            std::fprintf(stderr, "%s\n", error.what());
            return 2;
        }
    }
    std::fprintf(stderr, "usage: StoreWriterProcess write <path> <copies> | commit-point <path> <copies> <moment> | open <path> "
                         "| open-shared\n");
    return 1;
}
