// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// Where a price figure comes from (CachedPriceGuide.guideType): completed sales or goods currently offered.
enum class PricingGuideType {
    sold,
    stock,
};

template <>
struct VocabularyTraits<PricingGuideType>
{
    static constexpr bool hasDisplayName = false;
    static constexpr std::array<VocabularyEntry<PricingGuideType>, 2> entries{{
        VocabularyEntry<PricingGuideType>{PricingGuideType::sold, u"sold", u""},
        VocabularyEntry<PricingGuideType>{PricingGuideType::stock, u"stock", u""},
    }};
};
