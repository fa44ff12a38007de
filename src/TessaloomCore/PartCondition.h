// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// State of one line of parts (PartInventoryEntry.partCondition). `new_` is spelled with an underscore only because new is a C++ keyword.
enum class PartCondition {
    new_,
    good,
    worn,
    damaged,
    missing,
};

template <>
struct VocabularyTraits<PartCondition>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<PartCondition>, 5> entries{{
        VocabularyEntry<PartCondition>{PartCondition::new_, u"new", u"New"},
        VocabularyEntry<PartCondition>{PartCondition::good, u"good", u"Good"},
        VocabularyEntry<PartCondition>{PartCondition::worn, u"worn", u"Worn"},
        VocabularyEntry<PartCondition>{PartCondition::damaged, u"damaged", u"Damaged"},
        VocabularyEntry<PartCondition>{PartCondition::missing, u"missing", u"Missing"},
    }};
};
