// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// How a copy came into the collection (BrickSet.acquisitionType).
enum class AcquisitionType {
    unknown,
    purchased,
    gift,
    gwp,
    traded,
    won,
    found,
    inherited,
    other,
};

template <>
struct VocabularyTraits<AcquisitionType>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<AcquisitionType>, 9> entries{{
        VocabularyEntry<AcquisitionType>{AcquisitionType::unknown, u"unknown", u"Unknown"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::purchased, u"purchased", u"Purchased"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::gift, u"gift", u"Gift"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::gwp, u"gwp", u"Gift With Purchase"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::traded, u"traded", u"Traded"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::won, u"won", u"Won"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::found, u"found", u"Found"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::inherited, u"inherited", u"Inherited"},
        VocabularyEntry<AcquisitionType>{AcquisitionType::other, u"other", u"Other"},
    }};
};
