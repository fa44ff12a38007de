// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/CachedPriceGuide.h"

#include "PriceResult.h"
#include "Store/CatalogSet.h"
#include "Store/ManagedObjectContext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

// A JSON string literal with its quotes and escapes, as QJsonDocument writes it.
QString jsonString(const QString &text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

// Decimals are written as JSON numbers in their exact text, so that no value passes
// through a double on the way out.
template <typename Item, typename ValueOf>
QString encodeList(const QList<Item> &items, QStringView valueKey, ValueOf valueOf)
{
    QString text = u"["_s;
    for (qsizetype index = 0; index < items.size(); ++index) {
        if (index > 0)
            text += u',';
        text += u"{\"period\":"_s + jsonString(items[index].period) + u",\""_s + valueKey
            + u"\":"_s + valueOf(items[index]).toString() + u'}';
    }
    return text + u']';
}

std::optional<Decimal> decimalFromJson(const QJsonValue &value)
{
    if (value.isDouble())
        return Decimal::fromDouble(value.toDouble());
    if (value.isString())
        return Decimal::fromString(value.toString());
    return std::nullopt;
}

template <typename Item, typename Assign>
QList<Item> decodeList(const std::optional<QString> &json, const QString &valueKey, Assign assign)
{
    if (!json)
        return {};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json->toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isArray())
        return {};
    QList<Item> items;
    for (const QJsonValue &element : document.array()) {
        const QJsonObject object = element.toObject();
        const QJsonValue period = object.value(u"period"_s);
        const auto value = decimalFromJson(object.value(valueKey));
        // One malformed element makes the whole text undecodable, as a strict decoder would.
        if (!element.isObject() || !period.isString() || !value)
            return {};
        Item item;
        item.period = period.toString();
        assign(item, *value);
        items.append(item);
    }
    return items;
}

} // namespace

QList<PriceForecast> CachedPriceGuide::forecasts() const
{
    return decodeList<PriceForecast>(forecastsJSON, u"value"_s,
                                     [](PriceForecast &item, const Decimal &value) { item.value = value; });
}

QList<PriceGrowthRate> CachedPriceGuide::growthRates() const
{
    return decodeList<PriceGrowthRate>(growthRatesJSON, u"percent"_s,
                                       [](PriceGrowthRate &item, const Decimal &value) { item.percent = value; });
}

QString CachedPriceGuide::encodeForecasts(const QList<PriceForecast> &forecasts)
{
    return encodeList(forecasts, u"value", [](const PriceForecast &item) { return item.value; });
}

QString CachedPriceGuide::encodeGrowthRates(const QList<PriceGrowthRate> &growthRates)
{
    return encodeList(growthRates, u"percent", [](const PriceGrowthRate &item) { return item.percent; });
}

CachedPriceGuide CachedPriceGuide::fromPriceResult(const PriceResult &result, const ObjectID &catalogSet)
{
    CachedPriceGuide guide;
    guide.conditionType = Vocabulary::rawValue(result.condition);
    guide.guideType = Vocabulary::rawValue(result.guideType);
    guide.avgPrice = result.avgPrice;
    guide.minPrice = result.minPrice;
    guide.maxPrice = result.maxPrice;
    // The attribute is 32-bit; a sample size beyond it is clamped rather than wrapped.
    guide.quantitySold = qint32(std::clamp<qint64>(result.quantitySold.value_or(0),
                                                   std::numeric_limits<qint32>::min(),
                                                   std::numeric_limits<qint32>::max()));
    guide.currency = result.currency;
    guide.providerName = result.providerName;
    guide.lastFetchDate = result.fetchDate;
    if (!result.forecasts.isEmpty())
        guide.forecastsJSON = encodeForecasts(result.forecasts);
    if (!result.growthRates.isEmpty())
        guide.growthRatesJSON = encodeGrowthRates(result.growthRates);
    guide.catalogSet = catalogSet;
    return guide;
}

CachedPriceGuide CachedPriceGuide::insert(ManagedObjectContext &context, const PriceResult &result,
                                          const CatalogSet &catalogSet)
{
    return context.insert(fromPriceResult(result, catalogSet.objectID));
}
