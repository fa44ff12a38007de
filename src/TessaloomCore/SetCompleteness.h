// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// Whether a copy has all its parts (BrickSet.completeness). Here unknown is the last case.
enum class SetCompleteness {
    complete,
    incomplete,
    unknown,
};

template <>
struct VocabularyTraits<SetCompleteness>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<SetCompleteness>, 3> entries{{
        VocabularyEntry<SetCompleteness>{SetCompleteness::complete, u"complete", u"Complete"},
        VocabularyEntry<SetCompleteness>{SetCompleteness::incomplete, u"incomplete", u"Incomplete"},
        VocabularyEntry<SetCompleteness>{SetCompleteness::unknown, u"unknown", u"Unknown"},
    }};
};
