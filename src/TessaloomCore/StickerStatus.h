// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary.h"

// Whether a copy's stickers are applied (BrickSet.stickerStatus). Two-word raw values use an underscore.
enum class StickerStatus {
    applied,
    unapplied,
    partiallyApplied,
    noStickers,
};

template <>
struct VocabularyTraits<StickerStatus>
{
    static constexpr bool hasDisplayName = true;
    static constexpr std::array<VocabularyEntry<StickerStatus>, 4> entries{{
        VocabularyEntry<StickerStatus>{StickerStatus::applied, u"applied", u"Applied"},
        VocabularyEntry<StickerStatus>{StickerStatus::unapplied, u"unapplied", u"Unapplied"},
        VocabularyEntry<StickerStatus>{StickerStatus::partiallyApplied, u"partially_applied", u"Partially Applied"},
        VocabularyEntry<StickerStatus>{StickerStatus::noStickers, u"no_stickers", u"No Stickers"},
    }};
};
