// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry for reading Rebrickable's set list CSV. Built with -DTESSALOOM_BUILD_FUZZERS=ON in a build
// directory configured with clang; run by hand, for example:
//   ./RebrickableSetListFuzzer -max_total_time=600 corpus/ ../tests/TessaloomCore/fuzz/regressions-setlists/
// or for 30 seconds through ctest (RebrickableSetListFuzzRun). A crash, a hang or a broken rule aborts
// and leaves its input; keep it under fuzz/regressions-setlists/.
#include "SetListReadersFuzzCheck.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (!SetListReadersFuzzCheck::checkRebrickable(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size))))
        std::abort();
    return 0;
}
