<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="update.error.unreadableFeed">
        <source>The update feed could not be read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.placeholder.title">
        <source>No Set Selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.placeholder.description">
        <source>Select a set to see its details.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.file">
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.quit">
        <source>&amp;Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.help">
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.about">
        <source>About Tessaloom</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.checkForUpdates">
        <source>Check for Updates…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.status.checking">
        <source>Checking for updates…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.upToDate.title">
        <source>You&apos;re Up to Date</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.upToDate.message">
        <source>Tessaloom %1 is the newest version available.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.available.title">
        <source>A New Version Is Available</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.available.message">
        <source>Tessaloom %1 is available; you have %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.available.openPage">
        <source>Open Download Page</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.failed.title">
        <source>Update Check Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="about.message">
        <source>Tessaloom %1
Your LEGO collection, its parts and its value, on your own computer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="image.loading">
        <source>Loading picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="image.unavailable">
        <source>Picture unavailable</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.windowTitle">
        <source>LEGO Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.title">
        <source>Set Up the LEGO Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.download.description">
        <source>Tessaloom keeps a copy of the Rebrickable catalog on this computer: every set, part, colour and theme. It is downloaded once (about 20 MB) and built here in under a minute.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.download.button">
        <source>Download Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.rebuild.description">
        <source>Download the newest Rebrickable data and rebuild the catalog on this computer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.rebuild.button">
        <source>Rebuild Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.completed">
        <source>The catalog is ready.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.retry">
        <source>Try Again</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogSetup.cancel">
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogStatus.working">
        <source>Catalog: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogStatus.completed">
        <source>The catalog is up to date: %1 sets.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogStatus.failed">
        <source>The catalog could not be updated: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sampleCatalog.download">
        <source>Download Full Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sampleCatalog.message">
        <source>You are using the small sample catalog that comes with Tessaloom. Its parts lists are illustrative, not LEGO&apos;s real ones.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.setNumber">
        <source>Set #</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.name">
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.theme">
        <source>Theme</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.year">
        <source>Year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.pieces">
        <source>Pieces</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.themes.column.theme">
        <source>Theme</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.themes.column.sets">
        <source>Sets</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.themes.column.minYear">
        <source>First Year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.themes.column.maxYear">
        <source>Last Year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.condition">
        <source>Condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.value">
        <source>Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.added">
        <source>Added</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.theme.unknown">
        <source>Unknown Theme</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.allSets">
        <source>All Sets</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.favorites">
        <source>Favorites</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.wishlist">
        <source>Wishlist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.recentlyAdded">
        <source>Recently Added</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.unknownAcquisition">
        <source>Unknown Acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.unknownCondition">
        <source>Unknown Condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.retired">
        <source>Retired</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.noPricing">
        <source>No Pricing</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.outdatedPricing">
        <source>Outdated Pricing</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.trash">
        <source>Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.inventory">
        <source>Inventory</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.catalog.allSets">
        <source>All Sets</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.catalog.allThemes">
        <source>All Themes</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.title">
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.myCollection">
        <source>My Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sidebar.catalog">
        <source>Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.themes.search.prompt">
        <source>Search themes or a year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.placeholder.title">
        <source>No Set Selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.placeholder.description">
        <source>Select a set in the trash to restore it or delete it for good.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.placeholder.selectTheme">
        <source>No Theme Selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.placeholder.selectThemeDescription">
        <source>Select a theme to see its sets.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.pieceCount." numerus="yes">
        <source>%Ln piece(s)</source>
        <translation>
            <numerusform>%Ln piece</numerusform>
            <numerusform>%Ln pieces</numerusform>
        </translation>
    </message>
    <message id="catalog.owned">
        <source>In your collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.copyCount." numerus="yes">
        <source>%Ln copies</source>
        <translation>
            <numerusform>%Ln copy</numerusform>
            <numerusform>%Ln copies</numerusform>
        </translation>
    </message>
    <message id="setList.noSets.title">
        <source>No Sets</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.noSets.description">
        <source>Sets you add to your collection appear here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.viewPicker.grid">
        <source>Grid</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.viewPicker.table">
        <source>Table</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.viewPicker">
        <source>View</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.allSets.title">
        <source>All Sets</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.search.prompt">
        <source>Search the catalog by name, number or year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.filter.prompt">
        <source>Filter by name, number or year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.noResults.title">
        <source>No Results</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.noResults.description.">
        <source>No catalog set matches “%1”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.favorited">
        <source>Favorite</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.unchanged.nothingCreated">
        <source>Tessaloom has not changed or created any file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.unchanged.file">
        <source>Tessaloom has not changed the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.unchanged.collection">
        <source>Tessaloom has not changed the collection kept in the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.title">
        <source>Tessaloom Cannot Open Your Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.headline">
        <source>Tessaloom cannot open the file that holds your collection and has to quit.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.quit">
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.file.">
        <source>File: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.directoryNotCreatable">
        <source>The folder for the file could not be created.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.pathIsFolder">
        <source>A folder stands where the file should be.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.unreadable">
        <source>Tessaloom is not allowed to read the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.readOnly">
        <source>Tessaloom is not allowed to write to the file, or the disk it is on is read-only.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.notADatabase">
        <source>The file is not a database. Something else may have been saved under its name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.damaged">
        <source>The file is damaged: parts of it are missing or unreadable, for example because a copy of it stopped half-way.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.foreignFile">
        <source>The file belongs to another program: it is a database, but not a Tessaloom collection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.newerVersion">
        <source>The file was written by a newer version of Tessaloom, which this version cannot read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.reason.other">
        <source>The file could not be opened or brought up to date.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.directoryNotCreatable">
        <source>Make sure the folder can be created (a file with its name, a missing permission or a full disk can prevent it), then start Tessaloom again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.pathIsFolder">
        <source>Move or rename the folder, then start Tessaloom again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.permissions">
        <source>Give your user account permission to read and write the file, or restore it from a backup, then start Tessaloom again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.foreignFile">
        <source>Move the file to another folder (the program it belongs to may still need it), or restore your collection from a backup, then start Tessaloom again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.newerVersion">
        <source>Start the newer version of Tessaloom instead, or restore a backup made with this version, then start Tessaloom again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.moveAside">
        <source>Move the file to another folder or restore it from a backup, then start Tessaloom again. Without the file, Tessaloom starts with a new, empty collection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="storeFailure.advice.other">
        <source>Make sure the disk has free space and can be written to, then start Tessaloom again. If this message comes back, move the file to another folder or restore it from a backup.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="update.error.unreachable">
        <source>The update information could not be fetched. Check your internet connection and try again later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.checking">
        <source>Checking for updates...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.downloading">
        <source>Downloading %1.csv...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.finalizing">
        <source>Finalizing...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.done">
        <source>Done</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.importingData">
        <source>Importing data...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.importingTable">
        <source>Importing %1...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.creatingIndexes">
        <source>Creating indexes...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogBuild.status.optimizing">
        <source>Optimizing...</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogRestore.busy">
        <source>The previous catalog can be restored once the catalog update under way has ended.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogRestore.none">
        <source>There is no previous catalog to restore.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogRestore.unreadable">
        <source>The previous catalog cannot be read either, so nothing was changed. Rebuild the catalog from Settings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogRestore.failed">
        <source>The previous catalog could not be put back in place: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogRestore.done">
        <source>The previous catalog is back in service: %1 sets.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogStatus.restorePrevious">
        <source>Restore the previous catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalogStatus.liveCatalogBroken">
        <source>The catalog in use holds no sets or cannot be read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.spareParts">
        <source>Spare Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.parts">
        <source>Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.loading">
        <source>Loading parts…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.group">
        <source>Group</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.sort">
        <source>Sort</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.filterPrompt">
        <source>Filter parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.noDataShort">
        <source>No parts data for this set.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.uniqueCount." numerus="yes">
        <source>%Ln unique part(s)</source>
        <translation>
            <numerusform>%Ln unique part</numerusform>
            <numerusform>%Ln unique parts</numerusform>
        </translation>
    </message>
    <message id="detail.parts.totalPieces." numerus="yes">
        <source>%Ln piece(s)</source>
        <translation>
            <numerusform>%Ln piece</numerusform>
            <numerusform>%Ln pieces</numerusform>
        </translation>
    </message>
    <message id="detail.parts.sparesCount." numerus="yes">
        <source>%Ln spare(s)</source>
        <translation>
            <numerusform>%Ln spare</numerusform>
            <numerusform>%Ln spares</numerusform>
        </translation>
    </message>
    <message id="parts.quantity.">
        <source>×%L1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.group.none">
        <source>None</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.group.color">
        <source>Color</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.group.category">
        <source>Category</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.sort.name">
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.sort.quantity">
        <source>Quantity</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.sort.partNumber">
        <source>Part Number</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.openPartsChecklist">
        <source>Open Parts Checklist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.completionParts.">
        <source>%1 of %2 parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.completionPieces.">
        <source>%1 of %2 pieces</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.completionPercent.">
        <source>%1% complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.percent.">
        <source>%1%</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.parts.completion.">
        <source>%1 percent complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.status.all">
        <source>All</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.status.incomplete">
        <source>Missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.status.complete">
        <source>Complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.sort.completion">
        <source>Completion</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.parts.decrement">
        <source>Remove one</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.parts.increment">
        <source>Add one</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.parts.complete">
        <source>Complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.ownedOfRequired.">
        <source>%1 / %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.partsChecklist">
        <source>Parts Checklist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.searchPrompt">
        <source>Search parts, numbers, colors</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.status">
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.actions">
        <source>Actions</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.markAllComplete">
        <source>Mark All Complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.resetAll">
        <source>Reset All</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.exportMissing">
        <source>Export Missing Parts…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.copyMissing">
        <source>Copy Missing Parts List</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.colors">
        <source>Colors</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.clearColorFilter">
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.category">
        <source>Category</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.clearCategoryFilter">
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.noData">
        <source>No Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.noDataDescription">
        <source>The catalog lists no parts for this set.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.noMatch">
        <source>No Matching Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.noMatchDescription">
        <source>No part passes the search and filters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.clearFilters">
        <source>Clear Filters</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.partsCount." numerus="yes">
        <source>%Ln part(s)</source>
        <translation>
            <numerusform>%Ln part</numerusform>
            <numerusform>%Ln parts</numerusform>
        </translation>
    </message>
    <message id="detail.parts.exportMissingTitle">
        <source>Export Missing Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.parts.exportFailed.">
        <source>The file could not be written: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="keychain.error.saveFailed.">
        <source>Failed to save to Keychain (status: %1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="keychain.error.loadFailed.">
        <source>Failed to load from Keychain (status: %1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="keychain.error.deleteFailed.">
        <source>Failed to delete from Keychain (status: %1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sync.error.setNotFound">
        <source>Set %1 not found</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sync.error.syncFailed">
        <source>Sync failed at %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="sync.error.catalogUnavailable">
        <source>Rebrickable catalog database not available</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="pricing.brickeconomy.tokenNotConfigured">
        <source>BrickEconomy API token not configured.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.error.http.">
        <source>HTTP error %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.error.decoding.">
        <source>Failed to decode response: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.error.invalidResponse">
        <source>Invalid server response</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.decoding.dataCorrupted">
        <source>The data is not valid JSON.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.decoding.keyNotFound">
        <source>A required value is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.decoding.valueNotFound">
        <source>A required value is null.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.decoding.typeMismatch">
        <source>A value has the wrong type.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.transport.timedOut">
        <source>The request timed out.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="api.transport.cancelled">
        <source>The request was cancelled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="pricing.error.missingCredentials.">
        <source>Missing credentials for %1. Please configure them in Settings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="pricing.error.invalidURL">
        <source>Failed to build API request URL.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.moveToTrash">
        <source>Move to Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.title">
        <source>Trashed Set</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.restore">
        <source>Restore</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.deletePermanently">
        <source>Delete Permanently</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.pricePaid">
        <source>Price Paid</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.deleteConfirm.">
        <source>Delete “%1” Permanently?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.detail.deleteWarning">
        <source>The set and its parts checklist will be deleted. This cannot be undone.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.title">
        <source>Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.empty.button">
        <source>Empty Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.empty">
        <source>Trash is Empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.empty.confirm">
        <source>Empty Trash?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.empty.warning">
        <source>The sets in the trash will be deleted permanently, with their parts checklists. This cannot be undone.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="trash.empty.deleteCount " numerus="yes">
        <source>Delete %Ln Set(s)</source>
        <translation>
            <numerusform>Delete %Ln Set</numerusform>
            <numerusform>Delete %Ln Sets</numerusform>
        </translation>
    </message>
    <message id="trash.trashedDate.">
        <source>Trashed %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="wishlist.empty.title">
        <source>No Wishlist Items</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="wishlist.empty.description">
        <source>Sets you add to your wishlist from the catalog appear here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="wishlist.title">
        <source>Wishlist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="wishlist.viewPicker">
        <source>View</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="wishlist.removeFromWishlist">
        <source>Remove from Wishlist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.action.addToCollection">
        <source>Add to Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.addedToCollection.">
        <source>Added %1 to the collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.action.moveToTrash">
        <source>Move to Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.movedToTrash.">
        <source>Moved %1 to the trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.action.restore">
        <source>Restore from Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.restored.">
        <source>Restored %1 from the trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.inCollection">
        <source>In Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.viewInCollection">
        <source>View in Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.addToCollection">
        <source>Add to Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.addingSet">
        <source>Adding Set…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.showPicture">
        <source>Show the picture larger</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.pieces ">
        <source>%1 pieces</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.setImage.">
        <source>Picture of %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.removeFromWishlist">
        <source>Remove from Wishlist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="catalog.detail.addToWishlist">
        <source>Add to Wishlist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="instructions.title">
        <source>Building Instructions</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="instructions.loading">
        <source>Looking for instructions…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="instructions.viewOnLego">
        <source>View on LEGO.com</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.edit">
        <source>&amp;Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.undo">
        <source>&amp;Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.undo.named.">
        <source>&amp;Undo %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.redo">
        <source>&amp;Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.redo.named.">
        <source>&amp;Redo %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.link">
        <source>Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.accessible.">
        <source>%1. Press Ctrl+Z to undo.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="undo.status.undone.">
        <source>Undone: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.error.unreadable">
        <source>The file “%1” couldn’t be opened.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.error.notText">
        <source>The file “%1” couldn’t be opened because it isn’t in the correct format.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.error.notWritten">
        <source>The file “%1” couldn’t be saved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.error.emptyFile">
        <source>The CSV file is empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.error.missingRequiredColumns">
        <source>The CSV file is missing required columns (id, set_number).</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.result.setsAdded">
        <source>set(s) added</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.result.setsUpdated">
        <source>set(s) updated</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.result.rowsSkipped">
        <source>row(s) skipped</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.result.noChanges">
        <source>No changes were made.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.complete.title">
        <source>Import Complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.failed.title">
        <source>Import Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="general.ok">
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.error.fileAccess">
        <source>Tessaloom could not get access to the selected file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.exportData">
        <source>Export…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.importData">
        <source>Import…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.status.reading.">
        <source>Importing “%1”…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.status.progress.">
        <source>Importing “%1”: %2 of %3 rows</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.filter.csv">
        <source>CSV Files (*.csv);;All Files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.error.tooLarge.">
        <source>The file “%1” couldn’t be opened because it is larger than %2 MB.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.error.unreadableSetList.">
        <source>The BrickLink inventory file couldn’t be read: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.exportAs.rebrickableSetList">
        <source>Rebrickable Set List…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="file.filter.import">
        <source>Collection Files (*.csv *.xml);;CSV Files (*.csv);;BrickLink XML (*.xml);;All Files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.exportAs">
        <source>Export As</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.moveToTrash">
        <source>Move to Trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.acquisition">
        <source>Acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.howAcquired">
        <source>How Acquired</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.pricePaid">
        <source>Price Paid</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.currency">
        <source>Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.date">
        <source>Date</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.sourcePrompt">
        <source>Where it came from</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.source">
        <source>Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.condition">
        <source>Condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.overall">
        <source>Overall</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.completeness">
        <source>Completeness</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.box">
        <source>Box</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.instructions">
        <source>Instructions</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.builtStatus">
        <source>Build Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.stickers">
        <source>Stickers</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.disposal">
        <source>Disposal</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.disposed">
        <source>Disposed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.how">
        <source>How</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.salePrice">
        <source>Sale Price</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.notes">
        <source>Notes</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="status.priceRefresh.hours.">
        <source>%1 h</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="status.priceRefresh.minutes.">
        <source>%1 min</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="status.priceRefresh.cancel">
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="status.priceRefresh.progress.">
        <source>Prices %1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="status.priceRefresh.progressWithTimeLeft.">
        <source>Prices %1 of %2 — about %3 left</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.tab.overview">
        <source>Overview</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.tab.inventory">
        <source>Inventory</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.tab.parts">
        <source>Parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.allPartsComplete">
        <source>All parts complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.partsRatio.">
        <source>%1/%2 parts</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.partsProgress.">
        <source>%1% complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.addCopy">
        <source>Add Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.partsChecklist">
        <source>Parts Checklist</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.selectCopy">
        <source>Select a copy to edit it</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.inventory.ownCount.">
        <source>Copies owned: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.retailPrice">
        <source>Retail Price</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.marketValue">
        <source>Market Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.pricePaid">
        <source>Price Paid</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.priceGuide">
        <source>Price Guide</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.refresh">
        <source>Refresh</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.inventory">
        <source>Inventory</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.inventory.none">
        <source>None in your collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.instructions">
        <source>Instructions</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.notes">
        <source>Notes</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.pieceCount.">
        <source>%1 pieces</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.inventory.inStock.">
        <source>%1 in stock</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.inventory.disposed.">
        <source>%1 disposed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.loadingBooklets">
        <source>Looking for instruction booklets…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.pdfFallback">
        <source>If a booklet does not open here, it opens as a PDF in your browser.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.overview.viewOnLego">
        <source>View on LEGO.com</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="detail.favorite">
        <source>Favorite</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.favorite.remove">
        <source>Remove from Favorites</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="accessibility.favorite.add">
        <source>Add to Favorites</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.folderNotCreatable">
        <source>The folder for backups of the collection could not be created.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.storeUnreadable">
        <source>The collection could not be read for its backup.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.writeFailed">
        <source>The backup of the collection could not be written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.renameFailed">
        <source>The finished backup of the collection could not be named.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.notABackup">
        <source>The chosen file is not a backup of a collection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.damaged">
        <source>The chosen backup is damaged and cannot be restored.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.foreignFile">
        <source>The chosen file belongs to another program and cannot be restored.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.newerVersion">
        <source>The chosen backup was made by a newer version of Tessaloom and cannot be restored.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backup.error.restoreFailed">
        <source>The backup could not be restored; the collection was left as it was.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.column.date">
        <source>Backup</source>
        <extracomment>The date and time a backup of the collection was made</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.column.size">
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.restore">
        <source>Restore…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.confirm.title">
        <source>Restore the Backup?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.confirm.message.">
        <source>The collection will be replaced by the backup of %1. A backup of the collection as it is now is made first.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.confirm.restore">
        <source>Restore</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.status.restoring.">
        <source>Restoring the backup of %1…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="backups.status.restored.">
        <source>The collection was restored from the backup of %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.status.backingUp.">
        <source>Backing up the collection before importing “%1”…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="import.backupFailed.">
        <source>The import was not started because the collection could not be backed up first. %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.limitNotice.showAll">
        <source>show all</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="setList.limitNotice.">
        <source>%1 of %2 sets — refine the search or %3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
