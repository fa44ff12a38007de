// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/StoredSortSetting.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

SetListSortOrder::Choice storedChoice(const QString &columnKey, const QString &ascendingKey,
                                      SetListSortOrder::Column fallback)
{
    const QSettings settings;
    // A presence test rather than a default value, so that a stored false is never taken
    // for an absent key.
    return {SetListSortOrder::fromRawValue(settings.value(columnKey).toString()).value_or(fallback),
            settings.contains(ascendingKey) ? settings.value(ascendingKey).toBool() : true};
}

} // namespace

StoredSortSetting::StoredSortSetting(List list, QObject *parent)
    : QObject(parent)
    , m_list(list)
    , m_columnKey(list == List::collection ? u"collectionSortColumn"_s : u"catalogSortColumn"_s)
    , m_ascendingKey(list == List::collection ? u"collectionSortAscending"_s : u"catalogSortAscending"_s)
    , m_choice(storedChoice(m_columnKey, m_ascendingKey, list == List::collection ? Column::name : Column::year))
{
}

void StoredSortSetting::setColumn(Column column)
{
    setChoice({column, m_choice.ascending});
}

void StoredSortSetting::setAscending(bool ascending)
{
    setChoice({m_choice.column, ascending});
}

QList<SortDescriptor> StoredSortSetting::comparators() const
{
    return m_list == List::collection ? SetListSortOrder::collectionComparators(m_choice.column, m_choice.ascending)
                                      : SetListSortOrder::catalogComparators(m_choice.column, m_choice.ascending);
}

void StoredSortSetting::setComparators(const QList<SortDescriptor> &comparators)
{
    const std::optional<SetListSortOrder::Choice> choice = m_list == List::collection
        ? SetListSortOrder::collectionChoice(comparators)
        : SetListSortOrder::catalogChoice(comparators);
    if (choice)
        setChoice(*choice);
}

void StoredSortSetting::setChoice(const SetListSortOrder::Choice &choice)
{
    if (choice == m_choice)
        return;
    m_choice = choice;
    QSettings settings;
    settings.setValue(m_columnKey, SetListSortOrder::rawValue(m_choice.column));
    settings.setValue(m_ascendingKey, m_choice.ascending);
    Q_EMIT changed();
}
