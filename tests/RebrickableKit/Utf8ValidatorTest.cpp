// SPDX-License-Identifier: GPL-3.0-or-later
#include <RebrickableKit/Utf8Validator.h>

#include <QStringDecoder>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

class Utf8ValidatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sequencesAreJudgedStrictly_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("valid");
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("ascii") << QByteArray("plain text, 123") << true;
        QTest::newRow("NUL") << QByteArray("a\0b", 3) << true;
        QTest::newRow("two bytes") << QByteArray("\xC3\xA9") << true;
        QTest::newRow("three bytes") << QByteArray("\xE2\x80\x93") << true;
        QTest::newRow("four bytes") << QByteArray("\xF0\x9F\xA7\xB1") << true;
        QTest::newRow("largest code point") << QByteArray("\xF4\x8F\xBF\xBF") << true;
        QTest::newRow("beyond U+10FFFF") << QByteArray("\xF4\x90\x80\x80") << false;
        QTest::newRow("overlong slash") << QByteArray("\xC0\xAF") << false;
        QTest::newRow("overlong three bytes") << QByteArray("\xE0\x80\xAF") << false;
        QTest::newRow("overlong four bytes") << QByteArray("\xF0\x80\x80\xAF") << false;
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << false;
        QTest::newRow("lone continuation") << QByteArray("\x80") << false;
        QTest::newRow("cut short at the end") << QByteArray("ab\xE2\x80") << false;
        QTest::newRow("cut short before ASCII") << QByteArray("\xC3(") << false;
        QTest::newRow("FF byte") << QByteArray("\xFF") << false;
        QTest::newRow("F5 lead") << QByteArray("\xF5\x80\x80\x80") << false;
        QTest::newRow("long ASCII then error") << QByteArray("0123456789abcdef0123456789\xC3") << false;
    }

    void sequencesAreJudgedStrictly()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, valid);
        QCOMPARE(Utf8Validator::isValid(bytes), valid);
        // Qt's own strict decoder must agree.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString decoded = decoder(bytes);
        QCOMPARE(!decoder.hasError(), valid);
    }

    void aCharacterSplitBetweenPiecesIsStillValid()
    {
        const QByteArray text = "a\xC3\xA9 \xE2\x80\x93 \xF0\x9F\xA7\xB1 z";
        for (qsizetype first = 0; first <= text.size(); ++first) {
            for (qsizetype second = first; second <= text.size(); ++second) {
                Utf8Validator validator;
                QVERIFY(validator.feed(QByteArrayView(text).sliced(0, first)));
                QVERIFY(validator.feed(QByteArrayView(text).sliced(first, second - first)));
                QVERIFY(validator.feed(QByteArrayView(text).sliced(second)));
                QVERIFY(validator.finish());
            }
        }
    }

    void aTextThatEndsInsideACharacterIsInvalid()
    {
        Utf8Validator validator;
        QVERIFY(validator.feed(QByteArrayView("ok\xF0\x9F")));
        QVERIFY(!validator.finish());
    }

    void onceInvalidStaysInvalid()
    {
        Utf8Validator validator;
        QVERIFY(!validator.feed(QByteArrayView("\xFF")));
        QVERIFY(!validator.feed(QByteArrayView("fine")));
        QVERIFY(!validator.finish());
    }
};

QTEST_GUILESS_MAIN(Utf8ValidatorTest)
#include "Utf8ValidatorTest.moc"
