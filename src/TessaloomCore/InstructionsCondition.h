// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// State of a copy's instruction booklets (BrickSet.instructionsCondition).
enum class InstructionsCondition {
    sealed,
    good,
    fair,
    poor,
    none,
};

template <>
struct VocabularyTraits<InstructionsCondition>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<InstructionsCondition>, 5> entries{{
        VocabularyEntry<InstructionsCondition>{InstructionsCondition::sealed, u"sealed", u"Sealed"},
        VocabularyEntry<InstructionsCondition>{InstructionsCondition::good, u"good", u"Good"},
        VocabularyEntry<InstructionsCondition>{InstructionsCondition::fair, u"fair", u"Fair"},
        VocabularyEntry<InstructionsCondition>{InstructionsCondition::poor, u"poor", u"Poor"},
        VocabularyEntry<InstructionsCondition>{InstructionsCondition::none, u"none", u"None"},
    }};
};
