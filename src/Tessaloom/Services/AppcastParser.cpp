// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppcastParser.h"

#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

const QString sparkleNamespace = u"http://www.andymatuschak.org/xml-namespaces/sparkle"_s;

struct ItemFields
{
    QString title;
    QString buildVersion;
    QString shortVersion;
    QString link;
    QString releaseNotesLink;
    QString enclosureUrl;
};

std::optional<AppcastItem> itemFrom(const ItemFields &fields)
{
    const QString versionText = !fields.shortVersion.isEmpty() ? fields.shortVersion : fields.buildVersion;
    const QVersionNumber version = QVersionNumber::fromString(versionText);
    if (version.isNull())
        return std::nullopt; // a release without a version cannot be compared
    QString page = fields.link;
    if (page.isEmpty())
        page = fields.releaseNotesLink;
    if (page.isEmpty())
        page = fields.enclosureUrl;
    return AppcastItem{fields.title, version, versionText, QUrl(page)};
}

} // namespace

std::optional<QList<AppcastItem>> AppcastParser::parse(const QByteArray &document)
{
    QXmlStreamReader reader(document);
    QList<AppcastItem> items;
    std::optional<ItemFields> current;
    bool sawChannel = false;

    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            const auto name = reader.name();
            const bool sparkle = reader.namespaceUri() == sparkleNamespace;
            if (name == u"channel"_s) {
                sawChannel = true;
            } else if (name == u"item"_s && !sparkle) {
                current = ItemFields{};
            } else if (current) {
                if (name == u"enclosure"_s) {
                    const QXmlStreamAttributes attributes = reader.attributes();
                    current->enclosureUrl = attributes.value(u"url"_s).toString();
                    if (current->buildVersion.isEmpty())
                        current->buildVersion = attributes.value(sparkleNamespace, u"version"_s).toString();
                    if (current->shortVersion.isEmpty())
                        current->shortVersion = attributes.value(sparkleNamespace, u"shortVersionString"_s).toString();
                } else if (name == u"title"_s && !sparkle) {
                    current->title = reader.readElementText().trimmed();
                } else if (name == u"link"_s && !sparkle) {
                    current->link = reader.readElementText().trimmed();
                } else if (sparkle && name == u"version"_s) {
                    current->buildVersion = reader.readElementText().trimmed();
                } else if (sparkle && name == u"shortVersionString"_s) {
                    current->shortVersion = reader.readElementText().trimmed();
                } else if (sparkle && name == u"releaseNotesLink"_s) {
                    current->releaseNotesLink = reader.readElementText().trimmed();
                }
            }
        } else if (reader.isEndElement() && reader.name() == u"item"_s && current) {
            if (const auto item = itemFrom(*current))
                items.append(*item);
            current.reset();
        }
    }
    if (reader.hasError() || !sawChannel)
        return std::nullopt;
    return items;
}

std::optional<AppcastItem> AppcastParser::newest(const QList<AppcastItem> &items)
{
    std::optional<AppcastItem> best;
    for (const AppcastItem &item : items) {
        if (!best || QVersionNumber::compare(item.version, best->version) > 0)
            best = item;
    }
    return best;
}
