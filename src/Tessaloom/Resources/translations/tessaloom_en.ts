<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="update.error.unreadableFeed">
        <source>The update feed is not a readable appcast.</source>
        <oldsource>The update feed could not be read.</oldsource>
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
    <message id="app.title">
        <source>Tessaloom</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.copyright">
        <source>© 2026 the Tessaloom developers. Free software under the GNU GPL, version 3 or later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.dataSources">
        <source>Data Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.source.rebrickable">
        <source>Sets, parts, colours and themes, from the downloads of rebrickable.com</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.source.lego.name">
        <source>LEGO</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.source.lego">
        <source>Building instructions, from lego.com</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.about.version">
        <source>Version %1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.soldData">
        <source>Sold prices</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.listingsOnly">
        <source>Listings only</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.bulk">
        <source>Bulk</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.newAndUsed">
        <source>New &amp; used</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.newOnly">
        <source>New only</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.usedOnly">
        <source>Used only</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.description">
        <source>Prices come from the services below. Enter the keys of your own account with each; they are kept in your desktop&apos;s secret store and nowhere else.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.show">
        <source>Show</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.showHint">
        <source>Show the key while this is pressed in</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.apiKeys.bricksetDescription">
        <source>Brickset supplies set facts, not prices.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.rebrickableCatalog">
        <source>Rebrickable Catalog</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.database">
        <source>Database</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.checkForUpdates">
        <source>Check for Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.rebuildDatabase">
        <source>Rebuild Database…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.imageCache">
        <source>Image Cache</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.diskUsage">
        <source>Disk Usage</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.clearImageCache">
        <source>Clear Image Cache</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.storage">
        <source>Storage</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.showInFinder">
        <source>Show in File Manager</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.data">
        <source>Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.refreshAllPrices">
        <source>Refresh All Prices</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.exportData">
        <source>Export Data…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetCollection">
        <source>Reset Collection…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetCollectionHelp">
        <source>Deletes every set of your collection, its parts inventory and your wishlist. The catalog stays.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.notDownloaded">
        <source>Not downloaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.databaseSizeAndDate">
        <source>%1, built %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.updateStarted">
        <source>A newer catalog is available and is being built.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.upToDate">
        <source>Up to date</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.rebuildConfirmTitle">
        <source>Rebuild the Catalog?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.rebuildConfirmMessage">
        <source>The catalog is downloaded again from Rebrickable and rebuilt. Your collection is not touched.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.exportFailed.">
        <source>The export failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetConfirmTitle">
        <source>Reset Collection?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetConfirmMessage">
        <source>Every set of your collection, its parts inventory and your wishlist will be deleted. This cannot be undone.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.exportDataFirst">
        <source>Export Data First…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.cancel">
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetNotBackedUp">
        <source>The collection could not be backed up, so nothing was deleted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetFailed.">
        <source>The collection could not be reset: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.resetDone">
        <source>The collection is empty. The catalog stays as it was.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.general.currency">
        <source>Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.general.defaultCurrency">
        <source>Default Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.general.currencyHint">
        <source>Used for new prices and for totals. Amounts already stored keep their currency.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="menu.preferences">
        <source>Preferences…</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.title">
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.tab.general">
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.tab.apiKeys">
        <source>API Keys</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.tab.sidebar">
        <source>Sidebar</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.tab.cache">
        <source>Cache</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.tab.about">
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.sidebar.visibility">
        <source>Smart Lists</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.sidebar.visibilityHint">
        <source>Choose which smart lists appear in the sidebar. Hidden lists keep their sets.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.copy.paidCurrency">
        <source>Paid Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.copy.disposalCurrency">
        <source>Disposal Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.itemCount." numerus="yes">
        <source>%Ln item(s)</source>
        <translation>
            <numerusform>%Ln item</numerusform>
            <numerusform>%Ln items</numerusform>
        </translation>
    </message>
    <message id="inventory.inStock." numerus="yes">
        <source>%Ln in stock</source>
        <translation>
            <numerusform>%Ln in stock</numerusform>
            <numerusform>%Ln in stock</numerusform>
        </translation>
    </message>
    <message id="inventory.disposed." numerus="yes">
        <source>%Ln disposed</source>
        <translation>
            <numerusform>%Ln disposed</numerusform>
            <numerusform>%Ln disposed</numerusform>
        </translation>
    </message>
    <message id="inventory.totalPaid.">
        <source>Total paid: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.totalSold.">
        <source>Total sold: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.disposed.yes">
        <source>Yes</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.built">
        <source>Built</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.paid">
        <source>Paid</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.acquired">
        <source>Acquired</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.disposed">
        <source>Disposed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="table.column.disposedDate">
        <source>Disposal Date</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.dateRange">
        <source>Date Range:</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.from">
        <source>From</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.to">
        <source>To</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.clear">
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.all">
        <source>All</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.inStock">
        <source>In Stock</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.disposed">
        <source>Disposed</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.search.prompt">
        <source>Search Inventory</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.filter.date">
        <source>Date Filter</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.chart.title">
        <source>Paid and Received per Year</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.chart.paid.">
        <source>Paid (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="inventory.chart.received.">
        <source>Received (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="settings.cache.backups">
        <source>Backups of the Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.server.catalog">
        <source>the catalog server</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.server.updates">
        <source>the update server</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.hostNotFound">
        <source>Tessaloom could not find %1 (host not found). Check your internet connection and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.connectionRefused">
        <source>Tessaloom could not reach %1 (connection refused). Check your connection and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.timedOut">
        <source>Tessaloom could not reach %1 (no answer in time). Check your connection and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.secureConnectionFailed">
        <source>Tessaloom could not open a secure connection to %1 (TLS handshake failed). Check the computer&apos;s date and time and any proxy settings, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.httpStatus">
        <source>Tessaloom could not download from %1 (the server answered with error %2). Try again later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.network.connectionFailed">
        <source>Tessaloom lost the connection to %1 (connection failed). Check your connection and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.disk.notWritable">
        <source>Tessaloom could not write its files (the folder %1 cannot be written). Check that the folder exists and that you may write to it, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.disk.full">
        <source>Tessaloom could not save the catalog (the disk is full). Free some disk space and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.data.unreadable">
        <source>Tessaloom received data from %1 that it could not read (damaged or unexpected data). Try again later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.disk.databaseNotWritable">
        <source>Tessaloom could not write the catalog database (the file or its folder cannot be written). Check that you may write to the application&apos;s data folder, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.other">
        <source>Tessaloom could not finish setting up the catalog (an unexpected error). Try again; if it fails again, the details say what went wrong.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="error.details">
        <source>Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="quit.buildRunning.message">
        <source>A catalog build is running. Quit and stop it?</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="quit.buildRunning.informative">
        <source>The catalog stays as it was before the build; you can build it again later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="quit.buildRunning.quit">
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="quit.buildRunning.keep">
        <source>Keep Building</source>
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
