// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryClipboardText.h"

#include "ViewModels/InventoryCellFormat.h"
#include "ViewModels/InventoryRow.h"
#include "ViewModels/InventorySpreadsheetModel.h"

using namespace Qt::StringLiterals;

namespace {

// A tab or a line break inside a text would split its cell or its row.
QString cell(QString text)
{
    for (QChar &character : text) {
        if (character == u'\t' || character == u'\n' || character == u'\r')
            character = u' ';
    }
    return text;
}

QString isoDate(const QDate &day)
{
    return day.isValid() ? day.toString(Qt::ISODate) : QString();
}

void appendLine(QString &text, const QStringList &cells)
{
    text += cells.join(u'\t');
    text += u'\n';
}

} // namespace

QString InventoryClipboardText::text(const QList<std::shared_ptr<const InventoryRow>> &rows,
                                     const InventoryCellFormat &format)
{
    using Model = InventorySpreadsheetModel;
    QString text;
    appendLine(text, {cell(Model::title(Model::setNumber)), cell(Model::title(Model::name)), cell(Model::title(Model::year)),
                      cell(Model::title(Model::condition)), cell(Model::title(Model::built)),
                      cell(Model::title(Model::paid)),
                      //% "Paid Currency"
                      cell(qtTrId("inventory.copy.paidCurrency")), cell(Model::title(Model::acquired)),
                      cell(Model::title(Model::disposed)),
                      //% "Disposal Currency"
                      cell(qtTrId("inventory.copy.disposalCurrency")), cell(Model::title(Model::disposedDate)),
                      cell(Model::title(Model::added))});
    // A missing currency is the locale's, as the sheet shows it.
    auto currency = [&format](const QString &code) { return code.isEmpty() ? format.localeCurrency() : code; };
    for (const auto &pointer : rows) {
        const InventoryRow &row = *pointer;
        QString disposal;
        QString disposalCurrency;
        if (row.isDisposed) {
            if (row.disposalPrice) {
                disposal = row.disposalPrice->toString();
                disposalCurrency = currency(row.disposalCurrency);
            } else {
                disposal = row.disposalWord;
            }
        }
        appendLine(text, {cell(row.setNumber), cell(row.name), row.year != 0 ? QString::number(row.year) : QString(),
                          cell(row.conditionText), cell(row.builtText),
                          row.pricePaid ? row.pricePaid->toString() : QString(),
                          row.pricePaid ? currency(row.priceCurrency) : QString(), isoDate(row.acquiredDay),
                          cell(disposal), disposalCurrency, isoDate(row.disposedDay), isoDate(row.addedDay)});
    }
    return text;
}
