// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// State of a copy's box (BrickSet.boxCondition).
enum class BoxCondition {
    sealed,
    good,
    fair,
    poor,
    none,
};

template <>
struct VocabularyTraits<BoxCondition>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<BoxCondition>, 5> entries{{
        VocabularyEntry<BoxCondition>{BoxCondition::sealed, u"sealed", u"Sealed"},
        VocabularyEntry<BoxCondition>{BoxCondition::good, u"good", u"Good"},
        VocabularyEntry<BoxCondition>{BoxCondition::fair, u"fair", u"Fair"},
        VocabularyEntry<BoxCondition>{BoxCondition::poor, u"poor", u"Poor"},
        VocabularyEntry<BoxCondition>{BoxCondition::none, u"none", u"None"},
    }};
};
