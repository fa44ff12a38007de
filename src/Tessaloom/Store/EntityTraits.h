// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/CachedInstructionURL.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogColor.h"
#include "Store/CatalogPart.h"
#include "Store/CatalogSet.h"
#include "Store/CatalogSetPart.h"
#include "Store/FieldMapping.h"
#include "Store/PartInventoryEntry.h"
#include "Store/WishlistItem.h"

#include <QList>

#include <variant>

// The column layout of each entity: its table is named after it, its primary key column
// is "pk", and its fields follow in the order below. Migration 1 of StoreSchema creates
// exactly these columns; a new attribute needs a migration and a line here.
template <typename T>
struct EntityTraits;

template <typename T>
concept StoreEntity = requires(T object) {
    { EntityTraits<T>::type } -> std::convertible_to<EntityType>;
    EntityTraits<T>::fields();
    { object.objectID } -> std::convertible_to<ObjectID>;
};

template <>
struct EntityTraits<BrickSet>
{
    static constexpr EntityType type = EntityType::BrickSet;
    static const QList<FieldMapping<BrickSet>> &fields()
    {
        static const QList<FieldMapping<BrickSet>> list{
            attribute<&BrickSet::id>(u"id"),
            attribute<&BrickSet::dateAdded>(u"dateAdded"),
            attribute<&BrickSet::isFavorite>(u"isFavorite"),
            attribute<&BrickSet::notes>(u"notes"),
            attribute<&BrickSet::rating>(u"rating"),
            attribute<&BrickSet::acquisitionType>(u"acquisitionType"),
            attribute<&BrickSet::pricePaid>(u"pricePaid"),
            attribute<&BrickSet::priceCurrency>(u"priceCurrency"),
            attribute<&BrickSet::acquisitionDate>(u"acquisitionDate"),
            attribute<&BrickSet::acquisitionSource>(u"acquisitionSource"),
            attribute<&BrickSet::overallCondition>(u"overallCondition"),
            attribute<&BrickSet::boxCondition>(u"boxCondition"),
            attribute<&BrickSet::instructionsCondition>(u"instructionsCondition"),
            attribute<&BrickSet::builtStatus>(u"builtStatus"),
            attribute<&BrickSet::stickerStatus>(u"stickerStatus"),
            attribute<&BrickSet::completeness>(u"completeness"),
            attribute<&BrickSet::isDisposed>(u"isDisposed"),
            attribute<&BrickSet::disposalType>(u"disposalType"),
            attribute<&BrickSet::isTrashed>(u"isTrashed"),
            attribute<&BrickSet::trashedDate>(u"trashedDate"),
            attribute<&BrickSet::disposalDate>(u"disposalDate"),
            attribute<&BrickSet::disposalPrice>(u"disposalPrice"),
            attribute<&BrickSet::disposalCurrency>(u"disposalCurrency"),
            attribute<&BrickSet::disposalNotes>(u"disposalNotes"),
            toOne<&BrickSet::catalogSet, EntityType::CatalogSet>(u"catalogSet"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CatalogSet>
{
    static constexpr EntityType type = EntityType::CatalogSet;
    static const QList<FieldMapping<CatalogSet>> &fields()
    {
        static const QList<FieldMapping<CatalogSet>> list{
            attribute<&CatalogSet::setNumber>(u"setNumber"),
            attribute<&CatalogSet::name>(u"name"),
            attribute<&CatalogSet::themeGroup>(u"themeGroup"),
            attribute<&CatalogSet::themeName>(u"themeName"),
            attribute<&CatalogSet::year>(u"year"),
            attribute<&CatalogSet::pieceCount>(u"pieceCount"),
            attribute<&CatalogSet::imageURL>(u"imageURL"),
            attribute<&CatalogSet::thumbnailURL>(u"thumbnailURL"),
            attribute<&CatalogSet::retailPrice>(u"retailPrice"),
            attribute<&CatalogSet::retailPriceCurrency>(u"retailPriceCurrency"),
            attribute<&CatalogSet::dateFirstAvailable>(u"dateFirstAvailable"),
            attribute<&CatalogSet::dateLastAvailable>(u"dateLastAvailable"),
            attribute<&CatalogSet::lastSyncDate>(u"lastSyncDate"),
            attribute<&CatalogSet::partsSyncDate>(u"partsSyncDate"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CatalogPart>
{
    static constexpr EntityType type = EntityType::CatalogPart;
    static const QList<FieldMapping<CatalogPart>> &fields()
    {
        static const QList<FieldMapping<CatalogPart>> list{
            attribute<&CatalogPart::partNumber>(u"partNumber"),
            attribute<&CatalogPart::name>(u"name"),
            attribute<&CatalogPart::categoryName>(u"categoryName"),
            attribute<&CatalogPart::imageURL>(u"imageURL"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CatalogColor>
{
    static constexpr EntityType type = EntityType::CatalogColor;
    static const QList<FieldMapping<CatalogColor>> &fields()
    {
        static const QList<FieldMapping<CatalogColor>> list{
            attribute<&CatalogColor::colorID>(u"colorID"),
            attribute<&CatalogColor::name>(u"name"),
            attribute<&CatalogColor::hexCode>(u"hexCode"),
            attribute<&CatalogColor::isTransparent>(u"isTransparent"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CatalogSetPart>
{
    static constexpr EntityType type = EntityType::CatalogSetPart;
    static const QList<FieldMapping<CatalogSetPart>> &fields()
    {
        static const QList<FieldMapping<CatalogSetPart>> list{
            attribute<&CatalogSetPart::quantity>(u"quantity"),
            attribute<&CatalogSetPart::isSpare>(u"isSpare"),
            toOne<&CatalogSetPart::catalogSet, EntityType::CatalogSet>(u"catalogSet"),
            toOne<&CatalogSetPart::catalogPart, EntityType::CatalogPart>(u"catalogPart"),
            toOne<&CatalogSetPart::catalogColor, EntityType::CatalogColor>(u"catalogColor"),
        };
        return list;
    }
};

template <>
struct EntityTraits<PartInventoryEntry>
{
    static constexpr EntityType type = EntityType::PartInventoryEntry;
    static const QList<FieldMapping<PartInventoryEntry>> &fields()
    {
        static const QList<FieldMapping<PartInventoryEntry>> list{
            attribute<&PartInventoryEntry::quantityOwned>(u"quantityOwned"),
            attribute<&PartInventoryEntry::partCondition>(u"partCondition"),
            attribute<&PartInventoryEntry::notes>(u"notes"),
            toOne<&PartInventoryEntry::brickSet, EntityType::BrickSet>(u"brickSet"),
            toOne<&PartInventoryEntry::catalogSetPart, EntityType::CatalogSetPart>(u"catalogSetPart"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CachedPriceGuide>
{
    static constexpr EntityType type = EntityType::CachedPriceGuide;
    static const QList<FieldMapping<CachedPriceGuide>> &fields()
    {
        static const QList<FieldMapping<CachedPriceGuide>> list{
            attribute<&CachedPriceGuide::conditionType>(u"conditionType"),
            attribute<&CachedPriceGuide::guideType>(u"guideType"),
            attribute<&CachedPriceGuide::avgPrice>(u"avgPrice"),
            attribute<&CachedPriceGuide::minPrice>(u"minPrice"),
            attribute<&CachedPriceGuide::maxPrice>(u"maxPrice"),
            attribute<&CachedPriceGuide::quantitySold>(u"quantitySold"),
            attribute<&CachedPriceGuide::currency>(u"currency"),
            attribute<&CachedPriceGuide::lastFetchDate>(u"lastFetchDate"),
            attribute<&CachedPriceGuide::providerName>(u"providerName"),
            attribute<&CachedPriceGuide::forecastsJSON>(u"forecastsJSON"),
            attribute<&CachedPriceGuide::growthRatesJSON>(u"growthRatesJSON"),
            toOne<&CachedPriceGuide::catalogSet, EntityType::CatalogSet>(u"catalogSet"),
        };
        return list;
    }
};

template <>
struct EntityTraits<CachedInstructionURL>
{
    static constexpr EntityType type = EntityType::CachedInstructionURL;
    static const QList<FieldMapping<CachedInstructionURL>> &fields()
    {
        static const QList<FieldMapping<CachedInstructionURL>> list{
            attribute<&CachedInstructionURL::pdfURL>(u"pdfURL"),
            attribute<&CachedInstructionURL::descriptionText>(u"descriptionText"),
            attribute<&CachedInstructionURL::coverImageURL>(u"coverImageURL"),
            attribute<&CachedInstructionURL::lastFetchDate>(u"lastFetchDate"),
            toOne<&CachedInstructionURL::catalogSet, EntityType::CatalogSet>(u"catalogSet"),
        };
        return list;
    }
};

template <>
struct EntityTraits<WishlistItem>
{
    static constexpr EntityType type = EntityType::WishlistItem;
    static const QList<FieldMapping<WishlistItem>> &fields()
    {
        static const QList<FieldMapping<WishlistItem>> list{
            attribute<&WishlistItem::setNumber>(u"setNumber"),
            attribute<&WishlistItem::setName>(u"setName"),
            attribute<&WishlistItem::year>(u"year"),
            attribute<&WishlistItem::pieceCount>(u"pieceCount"),
            attribute<&WishlistItem::imageURL>(u"imageURL"),
            attribute<&WishlistItem::themeName>(u"themeName"),
            attribute<&WishlistItem::dateAdded>(u"dateAdded"),
            attribute<&WishlistItem::notes>(u"notes"),
        };
        return list;
    }
};

// Any stored object, for the places that hold objects of several entities at once (a
// context's pending changes and its snapshots).
using AnyEntity = std::variant<CatalogSet, CatalogPart, CatalogColor, CatalogSetPart, BrickSet,
                               PartInventoryEntry, CachedPriceGuide, CachedInstructionURL, WishlistItem>;

// The variant alternative's index follows EntityType, so the type of a stored object can be
// chosen at run time from its ObjectID.
static_assert(std::is_same_v<std::variant_alternative_t<size_t(EntityType::BrickSet), AnyEntity>, BrickSet>);
static_assert(std::is_same_v<std::variant_alternative_t<size_t(EntityType::WishlistItem), AnyEntity>, WishlistItem>);
