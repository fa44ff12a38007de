// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a price source can deliver, as a set of flags over a signed integer. The settings
// rows test newCondition, usedCondition, soldPrices, stockPrices and bulkFetch; bulkFetch
// also decides whether price sync asks for all sets in one call. priceRange, averagePrice
// and salesQuantity are descriptive: no code reads them.
struct PricingCapability
{
    int rawValue = 0;

    static const PricingCapability newCondition;  // figures for sealed sets
    static const PricingCapability usedCondition; // figures for used sets
    static const PricingCapability soldPrices;    // past sale prices
    static const PricingCapability stockPrices;   // current asking prices
    static const PricingCapability priceRange;    // a minimum and a maximum
    static const PricingCapability averagePrice;  // an average
    static const PricingCapability salesQuantity; // the number of sold items
    static const PricingCapability bulkFetch;     // all sets in one call
    // Every flag a source can have for one set at a time: all of the above but bulkFetch.
    static const PricingCapability allSingleSet;

    // True when every flag of `other` is set here.
    constexpr bool contains(PricingCapability other) const { return (rawValue & other.rawValue) == other.rawValue; }
    constexpr bool isEmpty() const { return rawValue == 0; }

    constexpr PricingCapability operator|(PricingCapability other) const { return {rawValue | other.rawValue}; }
    constexpr PricingCapability operator&(PricingCapability other) const { return {rawValue & other.rawValue}; }
    constexpr PricingCapability &operator|=(PricingCapability other)
    {
        rawValue |= other.rawValue;
        return *this;
    }

    friend constexpr bool operator==(PricingCapability, PricingCapability) = default;
};

inline constexpr PricingCapability PricingCapability::newCondition{1};
inline constexpr PricingCapability PricingCapability::usedCondition{2};
inline constexpr PricingCapability PricingCapability::soldPrices{4};
inline constexpr PricingCapability PricingCapability::stockPrices{8};
inline constexpr PricingCapability PricingCapability::priceRange{16};
inline constexpr PricingCapability PricingCapability::averagePrice{32};
inline constexpr PricingCapability PricingCapability::salesQuantity{64};
inline constexpr PricingCapability PricingCapability::bulkFetch{128};
inline constexpr PricingCapability PricingCapability::allSingleSet{127};
