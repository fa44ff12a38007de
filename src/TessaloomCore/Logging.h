// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Structured logging: one category per area, all under the subsystem "com.tessaloom.app",
// so that `QT_LOGGING_RULES="com.tessaloom.app.cache.debug=true"` narrows the output to
// one area.

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcApp)          // "com.tessaloom.app": start-up and main window
Q_DECLARE_LOGGING_CATEGORY(lcPersistence)  // "com.tessaloom.app.persistence"
Q_DECLARE_LOGGING_CATEGORY(lcSync)         // "com.tessaloom.app.sync"
Q_DECLARE_LOGGING_CATEGORY(lcCache)        // "com.tessaloom.app.cache"
Q_DECLARE_LOGGING_CATEGORY(lcInstructions) // "com.tessaloom.app.instructions"
Q_DECLARE_LOGGING_CATEGORY(lcCatalog)      // "com.tessaloom.app.catalog"
Q_DECLARE_LOGGING_CATEGORY(lcCatalogDB)    // "com.tessaloom.app.catalogDB"
Q_DECLARE_LOGGING_CATEGORY(lcPricing)      // "com.tessaloom.app.pricing"
Q_DECLARE_LOGGING_CATEGORY(lcNetwork)      // "com.tessaloom.app.network": connectivity, updates
