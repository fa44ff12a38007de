// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommitPointShim.h"

#include <sqlite3.h>

#include <atomic>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace CommitPointShim {

namespace {

constexpr int walFrameHeaderSize = 24;

struct MomentName
{
    Moment moment;
    const char *name;
};
constexpr MomentName momentNames[] = {
    {Moment::beforeFirstWalWrite, "beforeFirstWalWrite"},
    {Moment::beforeCommitFrame, "beforeCommitFrame"},
    {Moment::beforeCommitFramePage, "beforeCommitFramePage"},
    {Moment::beforeWalSync, "beforeWalSync"},
    {Moment::afterWalSync, "afterWalSync"},
};

std::atomic<bool> armed{false};
std::atomic<bool> insideCommit{false};
std::atomic<bool> commitFrameHeaderWritten{false};
std::atomic<bool> commitFrameWritten{false};
Moment target = Moment::beforeFirstWalWrite;

sqlite3_vfs *realVfs = nullptr;
sqlite3_vfs shimVfs;

// Our file object, followed in the same allocation by the real VFS's own.
struct ShimFile
{
    sqlite3_file base;
    bool isWal;
};

sqlite3_file *realFile(sqlite3_file *file)
{
    return reinterpret_cast<sqlite3_file *>(reinterpret_cast<char *>(file) + sizeof(ShimFile));
}

bool isWal(sqlite3_file *file)
{
    return reinterpret_cast<ShimFile *>(file)->isWal;
}

// Holds the process here until the test kills it.
[[noreturn]] void block(Moment moment)
{
    std::printf("blocked %s\n", momentName(moment));
    std::fflush(stdout);
    for (;;)
        ::pause();
}

void reach(Moment moment)
{
    if (armed && insideCommit && moment == target)
        block(moment);
}

int onCommit(void *)
{
    if (armed)
        insideCommit = true;
    return 0; // go on with the commit
}

int installCommitHook(sqlite3 *database, char **, const sqlite3_api_routines *)
{
    sqlite3_commit_hook(database, &onCommit, nullptr);
    return SQLITE_OK;
}

int shimClose(sqlite3_file *file)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xClose(real);
}

int shimRead(sqlite3_file *file, void *buffer, int amount, sqlite3_int64 offset)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xRead(real, buffer, amount, offset);
}

int shimWrite(sqlite3_file *file, const void *buffer, int amount, sqlite3_int64 offset)
{
    if (isWal(file) && armed && insideCommit) {
        reach(Moment::beforeFirstWalWrite);
        if (commitFrameHeaderWritten && !commitFrameWritten) {
            reach(Moment::beforeCommitFramePage);
            commitFrameWritten = true;
        }
        // A frame header whose second word, the database size after the commit, is not
        // zero marks the frame that commits the transaction.
        const auto *bytes = static_cast<const unsigned char *>(buffer);
        if (amount == walFrameHeaderSize && !commitFrameHeaderWritten
            && (bytes[4] | bytes[5] | bytes[6] | bytes[7]) != 0) {
            reach(Moment::beforeCommitFrame);
            commitFrameHeaderWritten = true;
        }
    }
    sqlite3_file *real = realFile(file);
    return real->pMethods->xWrite(real, buffer, amount, offset);
}

int shimTruncate(sqlite3_file *file, sqlite3_int64 size)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xTruncate(real, size);
}

int shimSync(sqlite3_file *file, int flags)
{
    const bool commitSync = isWal(file) && armed && insideCommit && commitFrameWritten;
    if (commitSync)
        reach(Moment::beforeWalSync);
    sqlite3_file *real = realFile(file);
    const int result = real->pMethods->xSync(real, flags);
    if (commitSync)
        reach(Moment::afterWalSync);
    return result;
}

int shimFileSize(sqlite3_file *file, sqlite3_int64 *size)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xFileSize(real, size);
}

int shimLock(sqlite3_file *file, int lock)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xLock(real, lock);
}

int shimUnlock(sqlite3_file *file, int lock)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xUnlock(real, lock);
}

int shimCheckReservedLock(sqlite3_file *file, int *result)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xCheckReservedLock(real, result);
}

int shimFileControl(sqlite3_file *file, int operation, void *argument)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xFileControl(real, operation, argument);
}

int shimSectorSize(sqlite3_file *file)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xSectorSize(real);
}

int shimDeviceCharacteristics(sqlite3_file *file)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xDeviceCharacteristics(real);
}

int shimShmMap(sqlite3_file *file, int region, int size, int extend, void volatile **memory)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xShmMap(real, region, size, extend, memory);
}

int shimShmLock(sqlite3_file *file, int offset, int count, int flags)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xShmLock(real, offset, count, flags);
}

void shimShmBarrier(sqlite3_file *file)
{
    sqlite3_file *real = realFile(file);
    real->pMethods->xShmBarrier(real);
}

int shimShmUnmap(sqlite3_file *file, int deleteFlag)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xShmUnmap(real, deleteFlag);
}

int shimFetch(sqlite3_file *file, sqlite3_int64 offset, int amount, void **pointer)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xFetch(real, offset, amount, pointer);
}

int shimUnfetch(sqlite3_file *file, sqlite3_int64 offset, void *pointer)
{
    sqlite3_file *real = realFile(file);
    return real->pMethods->xUnfetch(real, offset, pointer);
}

const sqlite3_io_methods shimMethods = {
    3,
    &shimClose,
    &shimRead,
    &shimWrite,
    &shimTruncate,
    &shimSync,
    &shimFileSize,
    &shimLock,
    &shimUnlock,
    &shimCheckReservedLock,
    &shimFileControl,
    &shimSectorSize,
    &shimDeviceCharacteristics,
    &shimShmMap,
    &shimShmLock,
    &shimShmBarrier,
    &shimShmUnmap,
    &shimFetch,
    &shimUnfetch,
};

int shimOpen(sqlite3_vfs *, sqlite3_filename name, sqlite3_file *file, int flags, int *outFlags)
{
    auto *shim = reinterpret_cast<ShimFile *>(file);
    shim->base.pMethods = nullptr;
    shim->isWal = (flags & SQLITE_OPEN_WAL) != 0;
    sqlite3_file *real = realFile(file);
    const int result = realVfs->xOpen(realVfs, name, real, flags, outFlags);
    // SQLite closes a file whose methods are set, even after a failed open.
    if (real->pMethods)
        shim->base.pMethods = &shimMethods;
    return result;
}

} // namespace

bool parseMoment(const char *name, Moment &moment)
{
    for (const auto &entry : momentNames) {
        if (std::strcmp(entry.name, name) == 0) {
            moment = entry.moment;
            return true;
        }
    }
    return false;
}

const char *momentName(Moment moment)
{
    for (const auto &entry : momentNames) {
        if (entry.moment == moment)
            return entry.name;
    }
    return "unknown";
}

void install()
{
    realVfs = sqlite3_vfs_find(nullptr);
    // Everything but opening a file is the real VFS's own: its functions find what they
    // need through the copied fields.
    shimVfs = *realVfs;
    shimVfs.zName = "commitPointShim";
    shimVfs.szOsFile = int(sizeof(ShimFile)) + realVfs->szOsFile;
    shimVfs.pNext = nullptr;
    shimVfs.xOpen = &shimOpen;
    sqlite3_vfs_register(&shimVfs, 1);
    // sqlite3_auto_extension() takes every entry point as void(*)(void) and calls it with
    // the connection, as SQLite's loadable extensions are called.
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&installCommitHook));
}

void arm(Moment moment)
{
    target = moment;
    insideCommit = false;
    commitFrameHeaderWritten = false;
    commitFrameWritten = false;
    armed = true;
}

} // namespace CommitPointShim
