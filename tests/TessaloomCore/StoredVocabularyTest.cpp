// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoredVocabulary.h"

#include <QTest>

using namespace Qt::StringLiterals;

class StoredVocabularyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void capitalisedPurchasedReadsAsUnknown()
    {
        QCOMPARE(StoredVocabulary::acquisitionType(u"Purchased"_s), AcquisitionType::unknown);
        QCOMPARE(StoredVocabulary::acquisitionType(u"purchased"_s), AcquisitionType::purchased);
    }

    void absentCompletenessReadsUnknownButAbsentBoxReadsGood()
    {
        QCOMPARE(StoredVocabulary::completeness(std::nullopt), SetCompleteness::unknown);
        QCOMPARE(StoredVocabulary::boxCondition(std::nullopt), BoxCondition::good);
    }

    void partiallyBuiltWithABlankFallsBackToBuilt()
    {
        QCOMPARE(StoredVocabulary::builtStatus(u"partially built"_s), BuiltStatus::built);
        QCOMPARE(StoredVocabulary::builtStatus(u"partially_built"_s), BuiltStatus::partiallyBuilt);
    }

    void unrecordedOverallConditionReadsAsUsed()
    {
        QCOMPARE(StoredVocabulary::overallCondition(std::nullopt), OverallCondition::used);
        QCOMPARE(StoredVocabulary::overallCondition(u"unknown"_s), OverallCondition::used);
        QCOMPARE(StoredVocabulary::overallCondition(u"new"_s), OverallCondition::new_);
    }

    void absentAndForeignValuesFallBackAlike_data()
    {
        QTest::addColumn<std::optional<QString>>("stored");
        QTest::newRow("absent") << std::optional<QString>();
        QTest::newRow("empty") << std::optional<QString>(QString());
        QTest::newRow("foreign") << std::optional<QString>(u"mint"_s);
    }

    void absentAndForeignValuesFallBackAlike()
    {
        QFETCH(std::optional<QString>, stored);
        QCOMPARE(StoredVocabulary::acquisitionType(stored), AcquisitionType::unknown);
        QCOMPARE(StoredVocabulary::overallCondition(stored), OverallCondition::used);
        QCOMPARE(StoredVocabulary::completeness(stored), SetCompleteness::unknown);
        QCOMPARE(StoredVocabulary::boxCondition(stored), BoxCondition::good);
        QCOMPARE(StoredVocabulary::instructionsCondition(stored), InstructionsCondition::good);
        QCOMPARE(StoredVocabulary::builtStatus(stored), BuiltStatus::built);
        QCOMPARE(StoredVocabulary::stickerStatus(stored), StickerStatus::noStickers);
        QCOMPARE(StoredVocabulary::disposalType(stored), DisposalType::sold);
    }

    void storedValuesThatMatchAreRead()
    {
        QCOMPARE(StoredVocabulary::stickerStatus(u"partially_applied"_s), StickerStatus::partiallyApplied);
        QCOMPARE(StoredVocabulary::disposalType(u"gifted"_s), DisposalType::gifted);
        QCOMPARE(StoredVocabulary::instructionsCondition(u"none"_s), InstructionsCondition::none);
    }
};

QTEST_GUILESS_MAIN(StoredVocabularyTest)
#include "StoredVocabularyTest.moc"
