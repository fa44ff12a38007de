// SPDX-License-Identifier: GPL-3.0-or-later
// For the price sync test only: puts two owned CatalogSet objects with one set number into
// a new store at argv[1] and refreshes all prices through a source with a bulk call. The
// refresh stops the process; the test checks how.
#include "PriceSyncFixture.h"

#include "Services/CatalogSyncService.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().size() != 2)
        return 2;
    const std::unique_ptr<PersistenceController> controller = PersistenceController::open(application.arguments().at(1));
    PriceStore store{controller->container().viewContext()};
    store.addOwnedSet(u"10497-1"_s);
    store.addOwnedSet(u"10497-1"_s);
    const std::unique_ptr<PricingProviderRegistry> registry = registryOf({{u"bulk"_s, true}});
    CatalogSyncService service(*controller, *registry);
    QCoro::waitFor(service.refreshAllPrices());
    // Reaching this line means the refresh went on with a guess.
    return 0;
}
