// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

// Every key the screens use must resolve to an English text through the table compiled
// into the program; a key that shows as itself is a missing //% text.
class TranslationTest : public QObject
{
    Q_OBJECT

private:
    static QStringList keysInSource()
    {
        QFile file(QStringLiteral(TESSALOOM_TRANSLATION_SOURCE));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList keys;
        QXmlStreamReader reader(&file);
        while (reader.readNextStartElement() || !reader.atEnd()) {
            if (reader.isStartElement() && reader.name() == u"message"_s)
                keys << reader.attributes().value(u"id"_s).toString();
            if (!reader.isStartElement())
                reader.readNext();
        }
        return keys;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void everyKeyHasAnEnglishText()
    {
        const QStringList keys = keysInSource();
        QVERIFY(keys.size() >= 10);
        for (const QString &key : keys) {
            const QByteArray id = key.toUtf8();
            const QString text = qtTrId(id.constData());
            QVERIFY2(!text.isEmpty() && text != key, qPrintable(u"no English text for "_s + key));
        }
    }

    void countsTakeTheSingularForOne()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(qtTrId("setList.pieceCount.", 1), u"1 piece"_s);
        QCOMPARE(qtTrId("setList.pieceCount.", 4514), u"4,514 pieces"_s);
        QCOMPARE(qtTrId("setList.copyCount.", 2), u"2 copies"_s);
    }

    void detailPlaceholderKeysReadAsEnglish()
    {
        QCOMPARE(qtTrId("detail.placeholder.title"), u"No Set Selected"_s);
        QCOMPARE(qtTrId("settings.about.checkForUpdates"), u"Check for Updates…"_s);
    }
};

QTEST_GUILESS_MAIN(TranslationTest)
#include "TranslationTest.moc"
