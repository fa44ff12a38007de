// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry for the dump parser. Build with -DTESSALOOM_BUILD_FUZZERS=ON and clang,
// then run, for example:
//   ./CSVParserFuzzer -max_total_time=600 corpus/ ../tests/RebrickableKit/fuzz/regressions/
// A crash or a mismatch aborts and leaves its input; keep it under fuzz/regressions/.
#include "CSVParserFuzzCheck.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (!CSVParserFuzzCheck::check(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size))))
        std::abort();
    return 0;
}
