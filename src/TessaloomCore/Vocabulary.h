// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The closed vocabularies of the collection share one shape: a scoped enum whose cases
// have a stored spelling (the raw value) and, for most, an English display name. Each
// vocabulary specialises VocabularyTraits with its table of cases in declaration order;
// the functions in namespace Vocabulary work on any of them.
//
// Raw values are a file format (store and collection CSV): construction from text is an
// exact, case-sensitive comparison with no trimming, folding or aliases.

#include <QList>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

template <typename E>
struct VocabularyEntry
{
    E value;
    QStringView rawValue;
    QStringView displayName; // empty for vocabularies without display names
};

template <typename E>
struct VocabularyTraits; // specialised next to each enum

template <typename E>
concept ClosedVocabulary = requires {
    VocabularyTraits<E>::entries;
    { VocabularyTraits<E>::hasDisplayName } -> std::convertible_to<bool>;
};

namespace Vocabulary {

template <ClosedVocabulary E>
constexpr const VocabularyEntry<E> &entry(E value)
{
    for (const auto &candidate : VocabularyTraits<E>::entries) {
        if (candidate.value == value)
            return candidate;
    }
    // Every enumerator has a row in its table; reaching here is a programming error.
    return VocabularyTraits<E>::entries.front();
}

// The stored spelling of a case.
template <ClosedVocabulary E>
QString rawValue(E value)
{
    return entry(value).rawValue.toString();
}

// The case whose raw value is exactly `raw`, or nothing.
template <ClosedVocabulary E>
std::optional<E> fromRawValue(QStringView raw)
{
    for (const auto &candidate : VocabularyTraits<E>::entries) {
        if (candidate.rawValue == raw)
            return candidate.value;
    }
    return std::nullopt;
}

// The English text pickers and rows show. Never stored, never parsed, not localised.
template <ClosedVocabulary E>
    requires(VocabularyTraits<E>::hasDisplayName)
QString displayName(E value)
{
    return entry(value).displayName.toString();
}

// What a screen shows for the stored text `raw`: its case's display name, or the text
// itself when it names no case, so that a foreign value is shown rather than hidden.
template <ClosedVocabulary E>
    requires(VocabularyTraits<E>::hasDisplayName)
QString displayNameOfStored(const QString &raw)
{
    const std::optional<E> value = fromRawValue<E>(raw);
    return value ? displayName(*value) : raw;
}

// All cases in declaration order; pickers list them in this order.
template <ClosedVocabulary E>
QList<E> allCases()
{
    QList<E> cases;
    cases.reserve(qsizetype(VocabularyTraits<E>::entries.size()));
    for (const auto &candidate : VocabularyTraits<E>::entries)
        cases.append(candidate.value);
    return cases;
}

// The key of a case in keyed lists: its raw value.
template <ClosedVocabulary E>
QString id(E value)
{
    return rawValue(value);
}

} // namespace Vocabulary
