// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppcastParser.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray feed(const QByteArray &items)
{
    return "<?xml version=\"1.0\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
           "<channel><title>Tessaloom</title>" + items + "</channel></rss>";
}
} // namespace

class AppcastParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsVersionsFromElementsAndEnclosures()
    {
        const auto items = AppcastParser::parse(feed(
            "<item><title>Version 0.2</title><link>https://example.org/0.2</link>"
            "<sparkle:version>20</sparkle:version><sparkle:shortVersionString>0.2.0</sparkle:shortVersionString></item>"
            "<item><title>Version 0.3</title>"
            "<enclosure url=\"https://example.org/0.3.tar.gz\" sparkle:version=\"30\" sparkle:shortVersionString=\"0.3.1\"/></item>"));
        QVERIFY(items);
        QCOMPARE(items->size(), 2);
        QCOMPARE(items->at(0).version, QVersionNumber(0, 2, 0));
        QCOMPARE(items->at(0).pageUrl, QUrl(u"https://example.org/0.2"_s));
        QCOMPARE(items->at(1).displayVersion, u"0.3.1"_s);
        QCOMPARE(items->at(1).pageUrl, QUrl(u"https://example.org/0.3.tar.gz"_s));
    }

    void releaseNotesLinkServesWhenThereIsNoLink()
    {
        const auto items = AppcastParser::parse(feed(
            "<item><sparkle:version>1.4</sparkle:version>"
            "<sparkle:releaseNotesLink>https://example.org/notes</sparkle:releaseNotesLink></item>"));
        QVERIFY(items);
        QCOMPARE(items->value(0).pageUrl, QUrl(u"https://example.org/notes"_s));
        QCOMPARE(items->value(0).version, QVersionNumber(1, 4));
    }

    void itemsWithoutVersionAreSkipped()
    {
        const auto items = AppcastParser::parse(feed("<item><title>No version</title></item>"));
        QVERIFY(items);
        QVERIFY(items->isEmpty());
    }

    void newestPicksTheHighestVersionNotTheFirst()
    {
        const QList<AppcastItem> items{{u"a"_s, QVersionNumber(1, 2), u"1.2"_s, {}},
                                       {u"b"_s, QVersionNumber(1, 10), u"1.10"_s, {}},
                                       {u"c"_s, QVersionNumber(1, 9), u"1.9"_s, {}}};
        QCOMPARE(AppcastParser::newest(items)->title, u"b"_s);
        QCOMPARE(AppcastParser::newest({}), std::nullopt);
    }

    void documentsThatAreNoFeedGiveNothing_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("html") << QByteArray("<html><body>Not found</body></html>");
        QTest::newRow("truncated") << feed("<item>").left(60);
        QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n", 8);
    }

    void documentsThatAreNoFeedGiveNothing()
    {
        QFETCH(QByteArray, document);
        QCOMPARE(AppcastParser::parse(document), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(AppcastParserTest)
#include "AppcastParserTest.moc"
