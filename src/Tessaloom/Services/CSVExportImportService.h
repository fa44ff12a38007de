// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/CatalogSet.h"
#include "Store/WishlistItem.h"

#include <QByteArray>
#include <QCoroTask>
#include <QException>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

class ManagedObjectContext;
class PersistentContainer;
struct BrickSetWithCatalogSet;

// Writes the whole collection, owned copies and wishlist together, into one CSV text and
// reads such a text back into the store. No state: two operations and their types.
//
// The file has the 29 columns of CSVCodec and two behind them, `retired_date` (the day of
// the set's dateLastAvailable) and `entry_type` ("owned" or "wishlist"). The service works
// on store objects directly rather than through InventoryRecord, because an import keeps
// what a row leaves empty on an existing copy, which a flat record cannot express.
namespace CSVExportImportService {

struct ImportResult
{
    qint64 created = 0;
    qint64 updated = 0;
    QStringList errors; // one text per skipped row, "Line 4: missing id"

    friend bool operator==(const ImportResult &, const ImportResult &) = default;
};

// Why a whole text is refused. Rows of bad data never refuse the text: they go to
// ImportResult::errors. A QException, so it crosses QFuture and co_await with its type.
class ImportError : public QException
{
public:
    enum class Kind {
        emptyFile,              // "The CSV file is empty."
        missingRequiredColumns, // "The CSV file is missing required columns (id, set_number)."
        // A set list of another collection tool that cannot be read as a whole:
        // "The BrickLink inventory file couldn’t be read: %1", with the reader's own words.
        unreadableSetList,
    };

    explicit ImportError(Kind kind, QString detail = {});

    Kind kind() const { return m_kind; }
    // The sentence the failure alert shows, in the user's language.
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }
    void raise() const override { throw *this; }
    ImportError *clone() const override { return new ImportError(*this); }

private:
    Kind m_kind;
    QString m_detail;
    QByteArray m_what;
};

// The column names in file order: CSVCodec's 29, then "retired_date" and "entry_type".
const QStringList &columnNames();

// The file's text: the header, one line per copy in the order given, then one line per
// wishlist item in the order given, joined by line feeds with none after the last. Callers
// pass everything unfiltered: trashed and disposed copies belong in the file. Never fails.
QString exportCSV(const QList<BrickSetWithCatalogSet> &sets, const QList<WishlistItem> &wishlist);
// The same for every copy and wishlist item of `context`, in the order they were added; a
// fetch that fails counts as an empty list.
QString exportCSV(ManagedObjectContext &context);

// Told now and then how far an import has come: rows handled so far and rows in the file
// (the header not counted). Called on the thread the import runs on.
using ImportProgress = std::function<void(qint64 rowsDone, qint64 rowsTotal)>;

// Reads `text` into `context` and saves it once, after the last row. Throws ImportError
// when the text has no line or no "set_number" column, and StoreError when the save fails;
// then nothing of the text is kept and the context holds no pending change. A header
// naming one column twice stops the process (see CSVColumnMap). Call it inside a perform()
// block of the context.
ImportResult importCSV(QStringView text, ManagedObjectContext &context, const ImportProgress &progress = {});

// The import as the main window runs it: on a new background context of `container`
// named "backgroundContext" with the property-by-property merge policy, off the main
// thread. `progress`, when given, is called on the main thread. The screens see the
// result when the save's change notice arrives. The container must outlive the task.
QCoro::Task<ImportResult> importInBackground(PersistentContainer &container, QString text,
                                             ImportProgress progress = {});

} // namespace CSVExportImportService
