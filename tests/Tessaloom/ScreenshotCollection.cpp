// SPDX-License-Identifier: GPL-3.0-or-later
// Fills the collection store of the current user with the small collection that the
// README's screenshots show: fourteen copies of sets from the sample catalog, bought, given,
// inherited, traded and one sold again, plus three wishlist entries. The collection goes in
// through the program's own CSV import, which looks up each set's name, year, pieces and
// picture in the catalog given; the themes come from the same catalog. Every value is fixed
// (dates, prices, even the copies' ids), so the pictures change only when the screens do.
//   screenshot-collection CATALOG.sqlite
// The store is the one the program opens: Tessaloom/Tessaloom.sqlite under
// $XDG_DATA_HOME. Run it before the program starts, never beside it.

#include "Services/CSVExportImportService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QTextStream>
#include <QUuid>

#include <exception>

using namespace Qt::StringLiterals;

namespace {

struct Entry
{
    QString setNumber;
    // Empty for a wishlist entry; otherwise what the copy's line carries, column by column
    // in the order of `copyColumns`.
    QStringList copyValues;
};

const QStringList copyColumns{u"date_added"_s,       u"is_favorite"_s,    u"acquisition_type"_s, u"acquisition_date"_s,
                              u"price_paid"_s,       u"price_currency"_s, u"overall_condition"_s, u"built_status"_s,
                              u"is_disposed"_s,      u"disposal_type"_s,  u"disposal_date"_s,    u"disposal_price"_s,
                              u"disposal_currency"_s};

// date added, favourite, how acquired, when, price, currency, condition, built, disposed,
// how, when, for what, currency.
const QList<Entry> entries{
    {u"75192-1"_s, {u"2025-01-04T10:00:00Z"_s, u"true"_s, u"purchased"_s, u"2017-10-01T00:00:00Z"_s, u"799.99"_s,
                    u"USD"_s, u"new"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"10179-1"_s, {u"2025-01-04T10:01:00Z"_s, u"false"_s, u"purchased"_s, u"2008-03-14T00:00:00Z"_s, u"499.99"_s,
                    u"USD"_s, u"used"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"71043-1"_s, {u"2025-01-04T10:02:00Z"_s, u"true"_s, u"gift"_s, u"2018-12-25T00:00:00Z"_s, {}, {}, u"new"_s,
                    u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"10276-1"_s, {u"2025-01-04T10:03:00Z"_s, u"true"_s, u"purchased"_s, u"2020-11-27T00:00:00Z"_s, u"549.99"_s,
                    u"USD"_s, u"new"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"10294-1"_s, {u"2025-01-04T10:04:00Z"_s, u"false"_s, u"purchased"_s, u"2021-11-08T00:00:00Z"_s, u"629.99"_s,
                    u"USD"_s, u"new"_s, u"disassembled"_s, u"false"_s, {}, {}, {}, {}}},
    {u"10305-1"_s, {u"2025-01-04T10:05:00Z"_s, u"true"_s, u"purchased"_s, u"2022-08-03T00:00:00Z"_s, u"399.99"_s,
                    u"USD"_s, u"new"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"6080-1"_s, {u"2025-01-04T10:06:00Z"_s, u"false"_s, u"inherited"_s, u"1996-06-01T00:00:00Z"_s, {}, {},
                   u"used"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"375-2"_s, {u"2025-01-04T10:07:00Z"_s, u"false"_s, u"traded"_s, u"2015-04-18T00:00:00Z"_s, u"120.00"_s,
                  u"USD"_s, u"used"_s, u"disassembled"_s, u"false"_s, {}, {}, {}, {}}},
    {u"70678-1"_s, {u"2025-01-04T10:08:00Z"_s, u"false"_s, u"purchased"_s, u"2019-06-01T00:00:00Z"_s, u"99.99"_s,
                    u"USD"_s, u"new"_s, {}, u"false"_s, {}, {}, {}, {}}},
    {u"31120-1"_s, {u"2025-01-04T10:09:00Z"_s, u"false"_s, u"purchased"_s, u"2021-10-10T00:00:00Z"_s, u"99.99"_s,
                    u"USD"_s, u"used"_s, u"built"_s, u"true"_s, u"sold"_s, u"2023-05-02T00:00:00Z"_s, u"85.00"_s,
                    u"USD"_s}},
    {u"75159-1"_s, {u"2025-01-04T10:10:00Z"_s, u"false"_s, u"purchased"_s, u"2016-09-16T00:00:00Z"_s, u"499.99"_s,
                    u"USD"_s, u"new"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"7965-1"_s, {u"2025-01-04T10:11:00Z"_s, u"false"_s, u"found"_s, {}, {}, {}, {}, u"built"_s, u"false"_s, {},
                   {}, {}, {}}},
    {u"75257-1"_s, {u"2025-01-04T10:12:00Z"_s, u"false"_s, u"purchased"_s, u"2019-10-01T00:00:00Z"_s, u"159.99"_s,
                    u"USD"_s, u"new"_s, u"built"_s, u"false"_s, {}, {}, {}, {}}},
    {u"7094-1"_s, {u"2025-01-04T10:13:00Z"_s, u"false"_s, {}, {}, {}, {}, {}, {}, u"false"_s, {}, {}, {}, {}}},
    {u"10188-1"_s, {}},
    {u"76447-1"_s, {}},
    {u"72042-1"_s, {}},
};

// A field in CSV form: quoted when it holds a comma, quote or line break.
QString field(const QString &value)
{
    if (!value.contains(u',') && !value.contains(u'"') && !value.contains(u'\n'))
        return value;
    return u'"' + QString(value).replace(u"\""_s, u"\"\""_s) + u'"';
}

QString themeName(const RebrickableCatalog &catalog, const QString &setNumber)
{
    const std::optional<CatalogSetResult> set = catalog.set(setNumber);
    if (!set)
        return {};
    const std::optional<CatalogThemeResult> theme = catalog.theme(set->themeID);
    return theme ? theme->name : QString();
}

QString collectionText(const RebrickableCatalog &catalog)
{
    // The copies' ids derive from their set numbers, so a second run makes the same ones.
    const QUuid idNamespace(u"6f1c3a52-8f0e-4d55-9a51-7f2b1f7c2e90"_s);
    QStringList lines{(QStringList{u"id"_s, u"set_number"_s, u"theme"_s} + copyColumns + QStringList{u"entry_type"_s})
                          .join(u',')};
    for (const Entry &entry : entries) {
        const bool wishlist = entry.copyValues.isEmpty();
        QStringList values{wishlist ? QString() : QUuid::createUuidV5(idNamespace, entry.setNumber).toString(QUuid::WithoutBraces),
                           entry.setNumber, themeName(catalog, entry.setNumber)};
        values += wishlist ? QStringList(copyColumns.size(), QString()) : entry.copyValues;
        values.append(wishlist ? u"wishlist"_s : u"set"_s);
        for (QString &value : values)
            value = field(value);
        lines.append(values.join(u','));
    }
    return lines.join(u'\n');
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextStream errors(stderr);
    if (application.arguments().size() != 2) {
        errors << "Usage: screenshot-collection CATALOG.sqlite" << Qt::endl;
        return 2;
    }
    QString openError;
    std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::openFile(application.arguments().at(1), &openError);
    if (!catalog) {
        errors << "Cannot open the catalog " << application.arguments().at(1) << ": " << openError << Qt::endl;
        return 1;
    }
    RebrickableCatalog::replaceShared(catalog);

    const QString text = collectionText(*catalog);
    auto importing = [&]() -> QCoro::Task<CSVExportImportService::ImportResult> {
        co_return co_await CSVExportImportService::importInBackground(PersistenceController::shared().container(), text);
    };
    try {
        const CSVExportImportService::ImportResult result = QCoro::waitFor(importing());
        for (const QString &error : result.errors)
            errors << error << Qt::endl;
        if (!result.errors.isEmpty())
            return 1;
        QTextStream(stdout) << "Collection made: " << result.created << " entries in "
                            << PersistenceController::defaultStorePath() << Qt::endl;
    } catch (const std::exception &error) {
        errors << "The import failed: " << error.what() << Qt::endl;
        return 1;
    }
    return 0;
}
