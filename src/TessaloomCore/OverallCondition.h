// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// State of a copy as a whole (BrickSet.overallCondition). "New/Sealed" deliberately differs from PartCondition's "New". `new_` because new is a C++ keyword.
enum class OverallCondition {
    new_,
    used,
};

template <>
struct VocabularyTraits<OverallCondition>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<OverallCondition>, 2> entries{{
        VocabularyEntry<OverallCondition>{OverallCondition::new_, u"new", u"New/Sealed"},
        VocabularyEntry<OverallCondition>{OverallCondition::used, u"used", u"Used"},
    }};
};

// The colour paired with each condition wherever it is shown as a badge: green for new,
// blue for used. Only this vocabulary has a second text property.
QString overallConditionColorName(OverallCondition condition);
