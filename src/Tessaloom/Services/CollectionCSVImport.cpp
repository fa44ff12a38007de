// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionCSVImport.h"

#include "CSVColumnMap.h"
#include "CSVFieldSyntax.h"
#include "CSVRowReader.h"
#include "CSVValueFormat.h"
#include "Logging.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;
using CSVExportImportService::ImportError;
using CSVExportImportService::ImportProgress;
using CSVExportImportService::ImportResult;

namespace {

using Column = CSVColumn;
using RowReader = CSVRowReader;

QString lineError(qsizetype lineNumber, QStringView what)
{
    return u"Line "_s + QString::number(lineNumber) + u": "_s + what;
}

// What the store holds that rows look for, read once before the first row and kept up to
// date as rows create and change objects. Looking each row up with a query would lay every
// pending change of the import into the database again for each read; one read at the
// start gives the same answers: the first object (in insertion order) with the number or
// id, or the one an earlier row of the file created.
class ImportIndex
{
public:
    explicit ImportIndex(ManagedObjectContext &context)
    {
        try {
            const QList<CatalogSet> sets = context.fetch(FetchRequest<CatalogSet>(Predicate::isNotNil(u"setNumber"_s)));
            m_catalogSets.reserve(sets.size());
            for (const CatalogSet &set : sets) {
                if (!m_catalogSets.contains(*set.setNumber))
                    m_catalogSets.insert(*set.setNumber, set);
            }
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Import: reading the catalog sets failed:" << error.description();
        }
        try {
            const QList<BrickSet> copies = context.fetch(FetchRequest<BrickSet>());
            m_copies.reserve(copies.size());
            for (const BrickSet &copy : copies) {
                if (!copy.id.isNull() && !m_copies.contains(copy.id))
                    m_copies.insert(copy.id, copy);
            }
        } catch (const StoreError &error) {
            // Counted as no match: every row creates its copy.
            qCWarning(lcPersistence) << "Import: reading the copies failed:" << error.description();
        }
        try {
            const QList<WishlistItem> items
                = context.fetch(FetchRequest<WishlistItem>(Predicate::isNotNil(u"setNumber"_s)));
            for (const WishlistItem &item : items)
                m_wishlistNumbers.insert(*item.setNumber);
        } catch (const StoreError &error) {
            // Counted as zero items: the row adds one.
            qCWarning(lcPersistence) << "Import: reading the wishlist failed:" << error.description();
        }
    }

    QHash<QString, CatalogSet> &catalogSets() { return m_catalogSets; }
    QHash<QUuid, BrickSet> &copies() { return m_copies; }
    QSet<QString> &wishlistNumbers() { return m_wishlistNumbers; }

private:
    QHash<QString, CatalogSet> m_catalogSets;
    QHash<QUuid, BrickSet> m_copies;
    QSet<QString> m_wishlistNumbers;
};

// The catalog's facts about set numbers, asked once per number per import.
class CatalogLookUp
{
public:
    CatalogLookUp()
        : m_catalog(RebrickableCatalog::shared())
    {
    }

    bool exists() const { return bool(m_catalog); }

    const std::optional<CatalogSetResult> &set(const QString &number)
    {
        auto known = m_answers.constFind(number);
        if (known == m_answers.cend())
            known = m_answers.insert(number, m_catalog ? m_catalog->set(number) : std::nullopt);
        return *known;
    }

private:
    std::shared_ptr<RebrickableCatalog> m_catalog;
    QHash<QString, std::optional<CatalogSetResult>> m_answers;
};

// The catalog set of a row's number as it stands in the file, not normalised: found, or
// created with what the catalog knows of it.
CatalogSet &findOrCreateCatalogSet(const QString &number, ManagedObjectContext &context, ImportIndex &index,
                                   CatalogLookUp &catalog)
{
    auto found = index.catalogSets().find(number);
    if (found != index.catalogSets().end()) {
        if (!found->imageURL && catalog.exists()) {
            if (const std::optional<CatalogSetResult> &row = catalog.set(number))
                found->imageURL = row->imgURL;
        }
        return *found;
    }
    CatalogSet set;
    set.setNumber = number;
    if (const std::optional<CatalogSetResult> &row = catalog.set(number)) {
        set.imageURL = row->imgURL;
        if (!set.name)
            set.name = row->name;
        if (set.year == 0)
            set.year = qint16(row->year);
        if (set.pieceCount == 0)
            set.pieceCount = row->numParts;
    }
    return *index.catalogSets().insert(number, context.insert(set));
}

void importWishlistRow(const RowReader &row, const QString &number, const QDateTime &importTime,
                       ManagedObjectContext &context, ImportIndex &index)
{
    // An item already on the wishlist is never changed.
    if (index.wishlistNumbers().contains(number))
        return;
    WishlistItem item;
    item.setNumber = number;
    item.setName = row.text(Column::setName);
    if (const std::optional<qint16> year = row.integerAs<qint16>(Column::year))
        item.year = *year;
    if (const std::optional<qint32> pieces = row.integerAs<qint32>(Column::pieceCount))
        item.pieceCount = *pieces;
    item.themeName = row.text(Column::theme);
    item.notes = row.text(Column::notes);
    item.dateAdded = row.date(Column::dateAdded).value_or(importTime);
    context.insert(item);
    index.wishlistNumbers().insert(number);
}

// Writes an owned row on its copy and catalog set; returns whether the copy is new.
bool importOwnedRow(const RowReader &row, const QString &number, const QUuid &id, const QDateTime &importTime,
                    ManagedObjectContext &context, ImportIndex &index, CatalogLookUp &catalog)
{
    CatalogSet &set = findOrCreateCatalogSet(number, context, index, catalog);
    // What the file says overrides what a sync wrote; an empty field keeps it.
    if (std::optional<QString> name = row.text(Column::setName))
        set.name = std::move(name);
    if (const std::optional<qint16> year = row.integerAs<qint16>(Column::year))
        set.year = *year;
    if (std::optional<QString> theme = row.text(Column::theme))
        set.themeName = std::move(theme);
    if (const std::optional<qint32> pieces = row.integerAs<qint32>(Column::pieceCount))
        set.pieceCount = *pieces;
    if (const std::optional<QStringView> retired = row.value(Column::retiredDate))
        set.dateLastAvailable = CSVValueFormat::date(*retired);
    context.update(set);

    // The copy keeps its identity across export and import.
    auto found = index.copies().find(id);
    const bool isNew = found == index.copies().end();
    BrickSet copy;
    if (isNew)
        copy.id = id;
    else
        copy = *found;

    copy.catalogSet = set.objectID;
    if (std::optional<QDateTime> added = row.date(Column::dateAdded))
        copy.dateAdded = std::move(added);
    else if (isNew)
        copy.dateAdded = importTime;
    copy.isFavorite = row.boolean(Column::isFavorite);
    copy.isDisposed = row.boolean(Column::isDisposed);
    copy.isTrashed = row.boolean(Column::isTrashed);
    if (const std::optional<qint16> rating = row.integerAs<qint16>(Column::rating))
        copy.rating = *rating;

    // Always written: on an existing copy a missing or empty column clears the value. The
    // enumerated attributes take the text as it stands, known case or not.
    copy.notes = row.text(Column::notes);
    copy.acquisitionType = row.text(Column::acquisitionType);
    copy.acquisitionSource = row.text(Column::acquisitionSource);
    copy.priceCurrency = row.text(Column::priceCurrency);
    copy.overallCondition = row.text(Column::overallCondition);
    copy.boxCondition = row.text(Column::boxCondition);
    copy.instructionsCondition = row.text(Column::instructionsCondition);
    copy.builtStatus = row.text(Column::builtStatus);
    copy.stickerStatus = row.text(Column::stickerStatus);
    copy.completeness = row.text(Column::completeness);
    copy.disposalType = row.text(Column::disposalType);
    copy.disposalCurrency = row.text(Column::disposalCurrency);
    copy.disposalNotes = row.text(Column::disposalNotes);
    copy.acquisitionDate = row.date(Column::acquisitionDate);
    copy.disposalDate = row.date(Column::disposalDate);
    copy.pricePaid = row.decimal(Column::pricePaid);
    copy.disposalPrice = row.decimal(Column::disposalPrice);
    // Unlike the other dates, an empty trashed_date keeps the stored one.
    if (const std::optional<QStringView> trashed = row.value(Column::trashedDate))
        copy.trashedDate = CSVValueFormat::date(*trashed);

    if (isNew)
        index.copies().insert(id, context.insert(copy));
    else {
        context.update(copy);
        *found = copy;
    }
    return isNew;
}

} // namespace

ImportResult CollectionCSVImport::run(QStringView text, ManagedObjectContext &context, const ImportProgress &progress)
{
    const QList<QStringView> lines = CSVFieldSyntax::lines(text);
    if (lines.isEmpty())
        throw ImportError(ImportError::Kind::emptyFile);

    QString buffer;
    QList<QStringView> fields;
    CSVFieldSyntax::parseFields(lines.first(), buffer, fields);
    const CSVColumnMap header(fields);
    // Only the set number is required: wishlist rows have no id.
    if (!header.contains(u"set_number"_s))
        throw ImportError(ImportError::Kind::missingRequiredColumns);
    Q_ASSERT(CSVExportImportService::columnNames().size() == csvCollectionColumnCount);
    const CSVRowReader::Positions positions = CSVRowReader::positions(header, CSVExportImportService::columnNames());

    ImportIndex index(context);
    CatalogLookUp catalog;
    // The rows of one import were added together: one time serves every row without a date.
    const QDateTime importTime = QDateTime::currentDateTimeUtc();
    const qint64 rowCount = lines.size() - 1;
    constexpr qint64 rowsPerProgressReport = 500;

    ImportResult result;
    try {
        for (qsizetype position = 1; position < lines.size(); ++position) {
            if (progress && position > 1 && (position - 1) % rowsPerProgressReport == 0)
                progress(position - 1, rowCount);
            CSVFieldSyntax::parseFields(lines.at(position), buffer, fields);
            const RowReader row(positions, fields);
            // Counted among the non-blank lines, header first, as the codec counts them.
            const qsizetype lineNumber = position + 1;

            const std::optional<QString> number = row.text(Column::setNumber);
            if (!number) {
                result.errors.append(lineError(lineNumber, u"missing set_number"));
                continue;
            }
            if (row.value(Column::entryType) == QStringView(u"wishlist")) {
                importWishlistRow(row, *number, importTime, context, index);
                // Counted as created also when the item was already there.
                ++result.created;
                continue;
            }
            const std::optional<QStringView> idText = row.value(Column::id);
            const std::optional<QUuid> id = idText ? CSVValueFormat::uuid(*idText) : std::nullopt;
            if (!id) {
                result.errors.append(lineError(lineNumber, u"missing id"));
                continue;
            }
            if (importOwnedRow(row, *number, *id, importTime, context, index, catalog))
                ++result.created;
            else
                ++result.updated;
        }
        context.save();
    } catch (...) {
        // Nothing of a failed import is kept, not even for a later save of this context.
        context.rollback();
        throw;
    }
    if (progress)
        progress(rowCount, rowCount);
    return result;
}
