// SPDX-License-Identifier: GPL-3.0-or-later
#include "SetNumberNormalizer.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SetNumberNormalizerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsBetweenForms_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("catalogNumber");
        QTest::addColumn<QString>("baseNumber");
        QTest::addColumn<QString>("displayNumber");
        QTest::newRow("bare number") << u"75192"_s << u"75192-1"_s << u"75192"_s << u"75192"_s;
        QTest::newRow("first version") << u"75192-1"_s << u"75192-1"_s << u"75192"_s << u"75192"_s;
        QTest::newRow("second version") << u"10294-2"_s << u"10294-2"_s << u"10294"_s << u"10294-2"_s;
        QTest::newRow("blanks around") << u"  75192 \n"_s << u"75192-1"_s << u"75192"_s << u"75192"_s;
        QTest::newRow("several dashes") << u"abc-def-1"_s << u"abc-def-1"_s << u"abc"_s << u"abc-def"_s;
        QTest::newRow("suffix only") << u"-1"_s << u"-1"_s << QString() << QString();
        QTest::newRow("empty") << QString() << u"-1"_s << QString() << QString();
    }

    void convertsBetweenForms()
    {
        QFETCH(QString, input);
        QFETCH(QString, catalogNumber);
        QFETCH(QString, baseNumber);
        QFETCH(QString, displayNumber);
        QCOMPARE(SetNumberNormalizer::catalogNumber(input), catalogNumber);
        QCOMPARE(SetNumberNormalizer::baseNumber(input), baseNumber);
        QCOMPARE(SetNumberNormalizer::displayNumber(input), displayNumber);
    }

    void catalogNumberOfBlankTextIsMinusOne()
    {
        QCOMPARE(SetNumberNormalizer::catalogNumber(u"   "_s), u"-1"_s);
        QCOMPARE(SetNumberNormalizer::catalogNumber(u"\t\n"_s), u"-1"_s);
    }

    void displayNumberRemovesOneSuffixOnly()
    {
        QCOMPARE(SetNumberNormalizer::displayNumber(u"1-1-1"_s), u"1-1"_s);
    }

    void baseNumberOfTrailingAndLeadingDash()
    {
        QCOMPARE(SetNumberNormalizer::baseNumber(u"a-"_s), u"a"_s);
        QCOMPARE(SetNumberNormalizer::baseNumber(u"-a"_s), QString());
    }
};

QTEST_GUILESS_MAIN(SetNumberNormalizerTest)
#include "SetNumberNormalizerTest.moc"
