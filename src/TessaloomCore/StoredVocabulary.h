// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AcquisitionType.h"
#include "BoxCondition.h"
#include "BuiltStatus.h"
#include "DisposalType.h"
#include "InstructionsCondition.h"
#include "OverallCondition.h"
#include "SetCompleteness.h"
#include "StickerStatus.h"

#include <optional>

// Reads an enumerated attribute of a stored copy. The store does not constrain these
// strings, so a value may be absent or foreign (an older file, a hand-edited import);
// both read as the attribute's fallback case. The fallbacks differ on purpose: an
// unrecorded completeness is unknown, but an unrecorded box reads as good, and an
// unrecorded overall condition reads as used (the editor then writes "used" on its first
// save, which takes the copy out of the "unknown condition" smart list: kept as is).
class StoredVocabulary
{
public:
    static AcquisitionType acquisitionType(const std::optional<QString> &stored);
    static OverallCondition overallCondition(const std::optional<QString> &stored);
    static SetCompleteness completeness(const std::optional<QString> &stored);
    static BoxCondition boxCondition(const std::optional<QString> &stored);
    static InstructionsCondition instructionsCondition(const std::optional<QString> &stored);
    static BuiltStatus builtStatus(const std::optional<QString> &stored);
    static StickerStatus stickerStatus(const std::optional<QString> &stored);
    static DisposalType disposalType(const std::optional<QString> &stored);

    // The case stored in `stored`, or `fallback` when it is absent or matches no case.
    template <ClosedVocabulary E>
    static E valueOr(const std::optional<QString> &stored, E fallback)
    {
        if (!stored)
            return fallback;
        return Vocabulary::fromRawValue<E>(*stored).value_or(fallback);
    }
};
