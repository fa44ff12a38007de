// SPDX-License-Identifier: GPL-3.0-or-later
#include "Logging.h"

Q_LOGGING_CATEGORY(lcApp, "com.tessaloom.app")
Q_LOGGING_CATEGORY(lcPersistence, "com.tessaloom.app.persistence")
Q_LOGGING_CATEGORY(lcSync, "com.tessaloom.app.sync")
Q_LOGGING_CATEGORY(lcCache, "com.tessaloom.app.cache")
Q_LOGGING_CATEGORY(lcInstructions, "com.tessaloom.app.instructions")
Q_LOGGING_CATEGORY(lcCatalog, "com.tessaloom.app.catalog")
Q_LOGGING_CATEGORY(lcCatalogDB, "com.tessaloom.app.catalogDB")
Q_LOGGING_CATEGORY(lcPricing, "com.tessaloom.app.pricing")
Q_LOGGING_CATEGORY(lcNetwork, "com.tessaloom.app.network")
