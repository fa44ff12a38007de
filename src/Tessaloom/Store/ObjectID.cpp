// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ObjectID.h"

using namespace Qt::StringLiterals;

namespace {
constexpr std::array<QStringView, 9> entityNames{
    u"CatalogSet",       u"CatalogPart",          u"CatalogColor",
    u"CatalogSetPart",   u"BrickSet",             u"PartInventoryEntry",
    u"CachedPriceGuide", u"CachedInstructionURL", u"WishlistItem",
};
const QString uriScheme = u"x-tessaloom"_s;
const QString uriHost = u"store"_s;
} // namespace

QString entityName(EntityType entity)
{
    return entityNames[size_t(entity)].toString();
}

std::optional<EntityType> entityTypeFromName(QStringView name)
{
    for (size_t index = 0; index < entityNames.size(); ++index) {
        if (entityNames[index] == name)
            return EntityType(index);
    }
    return std::nullopt;
}

QUrl ObjectID::uriRepresentation() const
{
    QUrl uri;
    uri.setScheme(uriScheme);
    uri.setHost(uriHost);
    uri.setPath(u'/' + entityName(entity) + u"/p" + QString::number(primaryKey));
    return uri;
}

std::optional<ObjectID> ObjectID::fromURIRepresentation(const QUrl &uri)
{
    if (!uri.isValid() || uri.scheme() != uriScheme || uri.host() != uriHost)
        return std::nullopt;
    const QStringList segments = uri.path().split(u'/', Qt::SkipEmptyParts);
    if (segments.size() != 2 || !segments[1].startsWith(u'p'))
        return std::nullopt;
    const auto entity = entityTypeFromName(segments[0]);
    bool ok = false;
    const qint64 key = QStringView(segments[1]).mid(1).toLongLong(&ok);
    if (!entity || !ok || key <= 0)
        return std::nullopt;
    return ObjectID{*entity, key};
}
