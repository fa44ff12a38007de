// SPDX-License-Identifier: GPL-3.0-or-later
// For the import test only: imports a text whose header names one column twice into the
// store at argv[1]. The import stops the process; the test checks how, and that the
// store is as it was.
#include "Services/CSVExportImportService.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().size() != 2)
        return 2;
    const std::unique_ptr<PersistentContainer> store = PersistentContainer::open(application.arguments().at(1));
    const std::shared_ptr<ManagedObjectContext> context = store->newBackgroundContext();
    const QString text = u"id,set_number,notes,notes\n8D5B2C4E-0F1A-4B7C-9E3D-2A6F1B0C9D8E,10497-1,a,b"_s;
    context->performAndWait([&text](ManagedObjectContext &target) { return CSVExportImportService::importCSV(text, target); });
    // Reaching this line means the header was accepted.
    return 0;
}
