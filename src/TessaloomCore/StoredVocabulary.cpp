// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoredVocabulary.h"

AcquisitionType StoredVocabulary::acquisitionType(const std::optional<QString> &stored)
{
    return valueOr(stored, AcquisitionType::unknown);
}

OverallCondition StoredVocabulary::overallCondition(const std::optional<QString> &stored)
{
    return valueOr(stored, OverallCondition::used);
}

SetCompleteness StoredVocabulary::completeness(const std::optional<QString> &stored)
{
    return valueOr(stored, SetCompleteness::unknown);
}

BoxCondition StoredVocabulary::boxCondition(const std::optional<QString> &stored)
{
    return valueOr(stored, BoxCondition::good);
}

InstructionsCondition StoredVocabulary::instructionsCondition(const std::optional<QString> &stored)
{
    return valueOr(stored, InstructionsCondition::good);
}

BuiltStatus StoredVocabulary::builtStatus(const std::optional<QString> &stored)
{
    return valueOr(stored, BuiltStatus::built);
}

StickerStatus StoredVocabulary::stickerStatus(const std::optional<QString> &stored)
{
    return valueOr(stored, StickerStatus::noStickers);
}

DisposalType StoredVocabulary::disposalType(const std::optional<QString> &stored)
{
    return valueOr(stored, DisposalType::sold);
}
