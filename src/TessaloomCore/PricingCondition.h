// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// Condition a price figure is for (CachedPriceGuide.conditionType); the price screens compose their own labels. `new_` because new is a C++ keyword.
enum class PricingCondition {
    new_,
    used,
};

template <>
struct VocabularyTraits<PricingCondition>
{
    static constexpr bool hasDisplayName = false;
    static constexpr std::array<VocabularyEntry<PricingCondition>, 2> entries{{
        VocabularyEntry<PricingCondition>{PricingCondition::new_, u"new", u""},
        VocabularyEntry<PricingCondition>{PricingCondition::used, u"used", u""},
    }};
};
