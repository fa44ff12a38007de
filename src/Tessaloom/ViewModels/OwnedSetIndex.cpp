// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/OwnedSetIndex.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"

OwnedSetIndex::OwnedSetIndex(PersistentContainer &container, QObject *parent)
    : QObject(parent)
    , m_ownedCopies(std::make_unique<BrickSetListModel>(container, FetchRequest<BrickSet>(BrickSetQueries::notTrashed())))
{
    connect(m_ownedCopies.get(), &BrickSetListModel::refetched, this, &OwnedSetIndex::rebuild);
    rebuild();
}

OwnedSetIndex::~OwnedSetIndex() = default;

void OwnedSetIndex::rebuild()
{
    QSet<QString> numbers;
    numbers.reserve(m_ownedCopies->count());
    for (const BrickSetWithCatalogSet &row : m_ownedCopies->rows()) {
        if (row.catalogSet && row.catalogSet->setNumber)
            numbers.insert(*row.catalogSet->setNumber);
    }
    if (numbers == m_setNumbers)
        return;
    m_setNumbers = std::move(numbers);
    Q_EMIT setNumbersChanged();
}
