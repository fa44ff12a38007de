// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/PersistentContainer.h"
#include "Store/StoreError.h"

#include <QString>

#include <functional>
#include <memory>

// Owns the collection store. The application opens it once, before any window, through
// shared(); nothing works without it, so failing to open it ends the program with a
// message that names the file, and the file is left as it was for the user to rescue.
class PersistenceController
{
public:
    // The process-wide store at defaultStorePath(), opened on first use. Fatal on failure.
    static PersistenceController &shared();

    // Opens the store file at defaultStorePath(), or with `inMemory` a private in-memory
    // store that nothing else sees. Fatal on failure, like shared().
    explicit PersistenceController(bool inMemory);

    // Opens the store at `path` (or a private in-memory store); throws StoreError.
    static std::unique_ptr<PersistenceController> open(const QString &path, bool inMemory = false);

    PersistentContainer &container() const { return *m_container; }

    // "<application data>/Tessaloom/Tessaloom.sqlite".
    static QString defaultStorePath();

    // Shows the user why the store did not open, before the program ends. The store knows
    // no widgets: the application installs one (a dialog) before it first opens the store.
    using LoadFailurePresenter = std::function<void(const StoreError &error, const QString &path)>;
    static void setLoadFailurePresenter(LoadFailurePresenter presenter);

    // Calls the failure presenter, if one is installed, then logs "Failed to load
    // persistent stores: <error>, <details>" on the persistence category and ends the
    // program with "Unresolved error <error>, <details>".
    [[noreturn]] static void failToLoad(const StoreError &error, const QString &path);
    // The two texts of failToLoad(), for the log and for the fatal end.
    static QString loadFailureLogText(const StoreError &error, const QString &path);
    static QString unresolvedErrorText(const StoreError &error, const QString &path);

private:
    explicit PersistenceController(std::unique_ptr<PersistentContainer> container);

    std::unique_ptr<PersistentContainer> m_container;
};
