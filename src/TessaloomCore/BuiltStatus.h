// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// Whether a copy stands built (BrickSet.builtStatus). Two-word raw values use an underscore.
enum class BuiltStatus {
    built,
    disassembled,
    partiallyBuilt,
    neverBuilt,
};

template <>
struct VocabularyTraits<BuiltStatus>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<BuiltStatus>, 4> entries{{
        VocabularyEntry<BuiltStatus>{BuiltStatus::built, u"built", u"Built"},
        VocabularyEntry<BuiltStatus>{BuiltStatus::disassembled, u"disassembled", u"Disassembled"},
        VocabularyEntry<BuiltStatus>{BuiltStatus::partiallyBuilt, u"partially_built", u"Partially Built"},
        VocabularyEntry<BuiltStatus>{BuiltStatus::neverBuilt, u"never_built", u"Never Built"},
    }};
};
