// SPDX-License-Identifier: GPL-3.0-or-later
#include "AcquisitionType.h"
#include "BoxCondition.h"
#include "BuiltStatus.h"
#include "DisposalType.h"
#include "InstructionsCondition.h"
#include "OverallCondition.h"
#include "PartCondition.h"
#include "PricingCondition.h"
#include "PricingGuideType.h"
#include "SetCompleteness.h"
#include "StickerStatus.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

// The raw values are a file format shared by the store and the collection CSV, so each
// vocabulary is pinned down here case by case: spelling, display name and order.
class VocabularyTest : public QObject
{
    Q_OBJECT

private:
    template <ClosedVocabulary E>
    static void verifyVocabulary(const QList<QPair<QString, QString>> &expected)
    {
        const QList<E> cases = Vocabulary::allCases<E>();
        QCOMPARE(cases.size(), expected.size());
        for (qsizetype i = 0; i < cases.size(); ++i) {
            QCOMPARE(Vocabulary::rawValue(cases[i]), expected[i].first);
            QCOMPARE(Vocabulary::id(cases[i]), expected[i].first);
            QCOMPARE(Vocabulary::fromRawValue<E>(expected[i].first), std::optional<E>(cases[i]));
            if constexpr (VocabularyTraits<E>::hasDisplayName)
                QCOMPARE(Vocabulary::displayName(cases[i]), expected[i].second);
        }
    }

private Q_SLOTS:
    void aStoredTextShowsItsCaseOrItselfWhenForeign()
    {
        QCOMPARE(Vocabulary::displayNameOfStored<OverallCondition>(u"new"_s), u"New/Sealed"_s);
        QCOMPARE(Vocabulary::displayNameOfStored<OverallCondition>(u"used"_s), u"Used"_s);
        QCOMPARE(Vocabulary::displayNameOfStored<OverallCondition>(u"mint"_s), u"mint"_s);
        QCOMPARE(Vocabulary::displayNameOfStored<OverallCondition>(QString()), QString());
    }

    void acquisitionTypeHasItsNineCasesInOrder()
    {
        verifyVocabulary<AcquisitionType>({{u"unknown"_s, u"Unknown"_s}, {u"purchased"_s, u"Purchased"_s},
                                           {u"gift"_s, u"Gift"_s}, {u"gwp"_s, u"Gift With Purchase"_s},
                                           {u"traded"_s, u"Traded"_s}, {u"won"_s, u"Won"_s},
                                           {u"found"_s, u"Found"_s}, {u"inherited"_s, u"Inherited"_s},
                                           {u"other"_s, u"Other"_s}});
    }

    void overallConditionNewReadsNewSealed()
    {
        verifyVocabulary<OverallCondition>({{u"new"_s, u"New/Sealed"_s}, {u"used"_s, u"Used"_s}});
    }

    void overallConditionPairsNewWithGreenAndUsedWithBlue()
    {
        QCOMPARE(overallConditionColorName(OverallCondition::new_), u"green"_s);
        QCOMPARE(overallConditionColorName(OverallCondition::used), u"blue"_s);
    }

    void boxAndInstructionsConditionsShareFiveCases()
    {
        const QList<QPair<QString, QString>> expected{{u"sealed"_s, u"Sealed"_s}, {u"good"_s, u"Good"_s},
                                                      {u"fair"_s, u"Fair"_s}, {u"poor"_s, u"Poor"_s},
                                                      {u"none"_s, u"None"_s}};
        verifyVocabulary<BoxCondition>(expected);
        verifyVocabulary<InstructionsCondition>(expected);
    }

    void builtStatusWritesTwoWordCasesWithUnderscore()
    {
        verifyVocabulary<BuiltStatus>({{u"built"_s, u"Built"_s}, {u"disassembled"_s, u"Disassembled"_s},
                                       {u"partially_built"_s, u"Partially Built"_s},
                                       {u"never_built"_s, u"Never Built"_s}});
    }

    void stickerStatusWritesTwoWordCasesWithUnderscore()
    {
        verifyVocabulary<StickerStatus>({{u"applied"_s, u"Applied"_s}, {u"unapplied"_s, u"Unapplied"_s},
                                         {u"partially_applied"_s, u"Partially Applied"_s},
                                         {u"no_stickers"_s, u"No Stickers"_s}});
    }

    void setCompletenessHasUnknownLast()
    {
        verifyVocabulary<SetCompleteness>({{u"complete"_s, u"Complete"_s}, {u"incomplete"_s, u"Incomplete"_s},
                                           {u"unknown"_s, u"Unknown"_s}});
        QCOMPARE(Vocabulary::allCases<SetCompleteness>().last(), SetCompleteness::unknown);
    }

    void acquisitionTypeHasUnknownFirst()
    {
        QCOMPARE(Vocabulary::allCases<AcquisitionType>().first(), AcquisitionType::unknown);
    }

    void disposalTypeSpellsGifted()
    {
        verifyVocabulary<DisposalType>({{u"sold"_s, u"Sold"_s}, {u"gifted"_s, u"Gifted"_s},
                                        {u"traded"_s, u"Traded"_s}, {u"returned"_s, u"Returned"_s},
                                        {u"lost"_s, u"Lost"_s}, {u"damaged"_s, u"Damaged"_s},
                                        {u"other"_s, u"Other"_s}});
        QVERIFY(!Vocabulary::fromRawValue<DisposalType>(u"gift"));
        QVERIFY(!Vocabulary::fromRawValue<AcquisitionType>(u"gifted"));
    }

    void partConditionNewReadsNew()
    {
        verifyVocabulary<PartCondition>({{u"new"_s, u"New"_s}, {u"good"_s, u"Good"_s}, {u"worn"_s, u"Worn"_s},
                                         {u"damaged"_s, u"Damaged"_s}, {u"missing"_s, u"Missing"_s}});
    }

    void pricingVocabulariesHaveRawValuesOnly()
    {
        verifyVocabulary<PricingCondition>({{u"new"_s, {}}, {u"used"_s, {}}});
        verifyVocabulary<PricingGuideType>({{u"sold"_s, {}}, {u"stock"_s, {}}});
        static_assert(!VocabularyTraits<PricingCondition>::hasDisplayName);
        static_assert(!VocabularyTraits<PricingGuideType>::hasDisplayName);
    }

    void constructionIsExactWithoutTrimmingOrFolding()
    {
        QVERIFY(!Vocabulary::fromRawValue<AcquisitionType>(u"Purchased"));
        QVERIFY(!Vocabulary::fromRawValue<AcquisitionType>(u" purchased"));
        QVERIFY(!Vocabulary::fromRawValue<AcquisitionType>(u"purchased "));
        QVERIFY(!Vocabulary::fromRawValue<AcquisitionType>(u""));
        QVERIFY(!Vocabulary::fromRawValue<BuiltStatus>(u"partiallyBuilt"));
    }

    void partiallyBuiltWithABlankMatchesNoCase()
    {
        QVERIFY(!Vocabulary::fromRawValue<BuiltStatus>(u"partially built"));
        QCOMPARE(Vocabulary::fromRawValue<BuiltStatus>(u"partially_built"), BuiltStatus::partiallyBuilt);
    }

    void casesHashAndCompareByCase()
    {
        const QSet<AcquisitionType> set{AcquisitionType::gift, AcquisitionType::gift, AcquisitionType::won};
        QCOMPARE(set.size(), 2);
        QVERIFY(AcquisitionType::gift != AcquisitionType::gwp);
    }
};

QTEST_GUILESS_MAIN(VocabularyTest)
#include "VocabularyTest.moc"
