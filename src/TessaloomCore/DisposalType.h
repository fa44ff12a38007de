// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// How a copy left the collection (BrickSet.disposalType). "gifted", unlike AcquisitionType's "gift".
enum class DisposalType {
    sold,
    gifted,
    traded,
    returned,
    lost,
    damaged,
    other,
};

template <>
struct VocabularyTraits<DisposalType>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<DisposalType>, 7> entries{{
        VocabularyEntry<DisposalType>{DisposalType::sold, u"sold", u"Sold"},
        VocabularyEntry<DisposalType>{DisposalType::gifted, u"gifted", u"Gifted"},
        VocabularyEntry<DisposalType>{DisposalType::traded, u"traded", u"Traded"},
        VocabularyEntry<DisposalType>{DisposalType::returned, u"returned", u"Returned"},
        VocabularyEntry<DisposalType>{DisposalType::lost, u"lost", u"Lost"},
        VocabularyEntry<DisposalType>{DisposalType::damaged, u"damaged", u"Damaged"},
        VocabularyEntry<DisposalType>{DisposalType::other, u"other", u"Other"},
    }};
};
