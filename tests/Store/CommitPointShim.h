// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// For the crash test's writer process only: stops this process at a chosen moment inside
// the COMMIT of its next save, so that the test can kill it exactly there.
//
// Two pieces of SQLite that the writer installs on itself, never the program: a commit
// hook on every connection (through sqlite3_auto_extension), which marks that a COMMIT
// has begun, and a VFS shim made the default, which watches the writes and syncs of the
// WAL file during that COMMIT. At the chosen moment the shim prints "blocked <moment>"
// and waits forever, holding the store mid-commit until the test sends SIGKILL.
namespace CommitPointShim {

// The moments, in the order a WAL commit passes them. The commit point lies between
// beforeCommitFramePage and beforeWalSync: once the frame that carries the commit mark is
// written whole, the commit survives the process, even unsynced.
enum class Moment {
    beforeFirstWalWrite,   // COMMIT begun, nothing of it written to the WAL yet
    beforeCommitFrame,     // the pages before the commit frame written
    beforeCommitFramePage, // the commit frame's header written, its page not yet
    beforeWalSync,         // everything written, not yet synced to the disk
    afterWalSync,          // synced, the WAL index not yet updated
};

// Parses a moment's name; false when it is not one.
bool parseMoment(const char *name, Moment &moment);
const char *momentName(Moment moment);

// Installs the hook and the shim; call before the store opens its first connection.
void install();
// From now on, the next COMMIT stops at `moment`.
void arm(Moment moment);

} // namespace CommitPointShim
