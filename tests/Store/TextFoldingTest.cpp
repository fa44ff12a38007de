// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/TextFolding.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TextFoldingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldingDropsCaseAndDiacritics_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("folded");
        QTest::newRow("ascii") << u"Millennium FALCON"_s << u"millennium falcon"_s;
        QTest::newRow("acute") << u"Café"_s << u"cafe"_s;
        QTest::newRow("decomposed input") << u"Cafe\u0301"_s << u"cafe"_s;
        QTest::newRow("umlaut and capital") << u"ÜBER Straße"_s << u"uber straße"_s;
        QTest::newRow("nordic") << u"Ålesund"_s << u"alesund"_s;
        QTest::newRow("empty") << QString() << QString();
    }

    void foldingDropsCaseAndDiacritics()
    {
        QFETCH(QString, text);
        QFETCH(QString, folded);
        QCOMPARE(TextFolding::fold(text), folded);
    }
};

QTEST_GUILESS_MAIN(TextFoldingTest)
#include "TextFoldingTest.moc"
