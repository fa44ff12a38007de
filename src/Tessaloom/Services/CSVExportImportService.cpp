// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CSVExportImportService.h"

#include "CSVCodec.h"
#include "CSVFieldSyntax.h"
#include "CSVValueFormat.h"
#include "Logging.h"
#include "Services/BackgroundImport.h"
#include "Services/CollectionCSVImport.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QLocale>
#include <QObject>

using namespace Qt::StringLiterals;

namespace CSVExportImportService {

namespace {

// A carriage return alone does not make the export quote a field; files written so far
// depend on that.
constexpr auto exportQuoting = CSVFieldSyntax::LineEndQuoting::lineFeedOnly;

// --- Writing

void appendSeparator(QString &line)
{
    line.append(u',');
}

void appendText(QString &line, const std::optional<QString> &value)
{
    appendSeparator(line);
    if (value)
        CSVFieldSyntax::appendField(line, *value, exportQuoting);
}

void appendInteger(QString &line, qint64 value)
{
    appendSeparator(line);
    CSVValueFormat::appendInteger(line, value);
}

void appendDate(QString &line, const std::optional<QDateTime> &value)
{
    appendSeparator(line);
    if (value)
        CSVValueFormat::appendDate(line, *value);
}

void appendDecimal(QString &line, const std::optional<Decimal> &value)
{
    appendSeparator(line);
    if (value)
        line.append(CSVValueFormat::decimalText(*value));
}

void appendBoolean(QString &line, bool value)
{
    appendSeparator(line);
    line.append(CSVValueFormat::booleanText(value));
}

// The calendar day of `date` where the user is, as the retired date is shown.
void appendDay(QString &line, const std::optional<QDateTime> &date)
{
    appendSeparator(line);
    if (date && date->isValid())
        line.append(QLocale::c().toString(date->toLocalTime().date(), u"yyyy-MM-dd"_s));
}

void appendCopy(QString &line, const BrickSet &copy, const std::optional<CatalogSet> &catalogSet)
{
    if (!copy.id.isNull())
        CSVValueFormat::appendUuid(line, copy.id);
    if (catalogSet) {
        appendText(line, catalogSet->setNumber);
        appendText(line, catalogSet->name);
        appendInteger(line, catalogSet->year);
        appendText(line, catalogSet->themeName);
        appendInteger(line, catalogSet->pieceCount);
    } else {
        line.append(u",,,,,");
    }
    appendDate(line, copy.dateAdded);
    appendBoolean(line, copy.isFavorite);
    appendInteger(line, copy.rating);
    appendText(line, copy.notes);
    appendText(line, copy.acquisitionType);
    appendDate(line, copy.acquisitionDate);
    appendText(line, copy.acquisitionSource);
    appendDecimal(line, copy.pricePaid);
    appendText(line, copy.priceCurrency);
    appendText(line, copy.overallCondition);
    appendText(line, copy.boxCondition);
    appendText(line, copy.instructionsCondition);
    appendText(line, copy.builtStatus);
    appendText(line, copy.stickerStatus);
    appendText(line, copy.completeness);
    appendBoolean(line, copy.isDisposed);
    appendText(line, copy.disposalType);
    appendDate(line, copy.disposalDate);
    appendDecimal(line, copy.disposalPrice);
    appendText(line, copy.disposalCurrency);
    appendText(line, copy.disposalNotes);
    appendBoolean(line, copy.isTrashed);
    appendDate(line, copy.trashedDate);
    appendDay(line, catalogSet ? catalogSet->dateLastAvailable : std::nullopt);
    line.append(u",owned");
}

void appendWishlistItem(QString &line, const WishlistItem &item)
{
    // No id: a wishlist item has none, so the line starts with the separator. Its notes are
    // not written, although an import reads the column: files in circulation have it that way.
    appendText(line, item.setNumber);
    appendText(line, item.setName);
    appendInteger(line, item.year);
    appendText(line, item.themeName);
    appendInteger(line, item.pieceCount);
    appendDate(line, item.dateAdded);
    // The 23 columns from is_favorite to retired_date stay empty.
    line.append(u",,,,,,,,,,,,,,,,,,,,,,,");
    line.append(u",wishlist");
}

} // namespace

ImportError::ImportError(Kind kind, QString detail)
    : m_kind(kind)
    , m_detail(std::move(detail))
    , m_what(description().toUtf8())
{
}

QString ImportError::description() const
{
    switch (m_kind) {
    case Kind::emptyFile:
        //% "The CSV file is empty."
        return qtTrId("import.error.emptyFile");
    case Kind::missingRequiredColumns:
        //% "The CSV file is missing required columns (id, set_number)."
        return qtTrId("import.error.missingRequiredColumns");
    case Kind::unreadableSetList:
        //% "The BrickLink inventory file couldn’t be read: %1"
        return qtTrId("import.error.unreadableSetList.").arg(m_detail);
    }
    return {};
}

const QStringList &columnNames()
{
    static const QStringList names = CSVCodec::columnNames() + QStringList{u"retired_date"_s, u"entry_type"_s};
    return names;
}

QString exportCSV(const QList<BrickSetWithCatalogSet> &sets, const QList<WishlistItem> &wishlist)
{
    QString text = columnNames().join(u',');
    // About 250 characters make a typical copy's line; one reservation spares most regrowth.
    text.reserve(text.size() + sets.size() * 256 + wishlist.size() * 96);
    for (const BrickSetWithCatalogSet &row : sets) {
        text.append(u'\n');
        appendCopy(text, row.brickSet, row.catalogSet);
    }
    for (const WishlistItem &item : wishlist) {
        text.append(u'\n');
        appendWishlistItem(text, item);
    }
    return text;
}

QString exportCSV(ManagedObjectContext &context)
{
    QList<BrickSetWithCatalogSet> sets;
    QList<WishlistItem> wishlist;
    try {
        sets = context.fetchBrickSetsWithCatalogSets(FetchRequest<BrickSet>());
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Export: reading the copies failed:" << error.description();
    }
    try {
        wishlist = context.fetch(FetchRequest<WishlistItem>());
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Export: reading the wishlist failed:" << error.description();
    }
    return exportCSV(sets, wishlist);
}

ImportResult importCSV(QStringView text, ManagedObjectContext &context, const ImportProgress &progress)
{
    return CollectionCSVImport::run(text, context, progress);
}

QCoro::Task<ImportResult> importInBackground(PersistentContainer &container, QString text, ImportProgress progress)
{
    return BackgroundImport::run(
        container,
        [text = std::move(text)](ManagedObjectContext &store, const ImportProgress &relay) {
            return importCSV(text, store, relay);
        },
        std::move(progress));
}

} // namespace CSVExportImportService
