// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

// Isolates one test executable from the user's real files: test mode for standard paths,
// a fresh temporary HOME and XDG folders, and settings under that folder, so no test reads
// or writes what another test or the user left behind; and from the network beyond this
// machine (LoopbackOnlyProxyFactory).
class TestEnvironment
{
public:
    // Call first thing in initTestCase(); the folder lives until the process ends.
    static void isolate();

    static QString temporaryRoot();
    // The full-size Rebrickable dumps beside the checkout, or empty when absent.
    static QString sharedDataDirectory();
    static QString sharedDumpDirectory();

private:
    static std::unique_ptr<QTemporaryDir> &root();
};
