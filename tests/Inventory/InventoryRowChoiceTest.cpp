// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/InventoryRow.h"
#include "ViewModels/InventoryRowChoice.h"

#include <QCollator>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

using SortColumn = InventorySpreadsheetViewModel::SortColumn;
using Rows = InventoryRowChoice::Rows;

// The row choice over many made-up rows: the order kept over every row and filtered
// afterwards gives what filtering and then a stable sort would, and moving one edited row
// into place gives what sorting everything again would.
class InventoryRowChoiceTest : public QObject
{
    Q_OBJECT

private:
    static constexpr std::array<SortColumn, 10> allColumns{
        SortColumn::setNumber, SortColumn::name,     SortColumn::year,     SortColumn::condition,
        SortColumn::built,     SortColumn::paid,     SortColumn::disposed, SortColumn::acquired,
        SortColumn::disposedDate, SortColumn::added};

    // Few distinct values per key, so that many rows compare the same.
    static std::shared_ptr<InventoryRow> randomRow(QRandomGenerator &random)
    {
        auto row = std::make_shared<InventoryRow>();
        static const QStringList numbers{u"10001-1"_s, u"b-2"_s, u"B-1"_s, QString(), u"75192-1"_s};
        static const QStringList names{u"apple"_s, u"Banana"_s, u"cherry"_s, QString(), u"Éclair"_s};
        static const QStringList raws{u"new"_s, u"used"_s, u"zzz"_s, u"mint"_s};
        row->setNumber = numbers[random.bounded(numbers.size())];
        row->name = names[random.bounded(names.size())];
        row->setNumberLowered = row->setNumber.toLower();
        row->nameLowered = row->name.toLower();
        row->year = 2000 + random.bounded(4);
        row->conditionKey = raws[random.bounded(raws.size())];
        row->builtKey = raws[random.bounded(raws.size())];
        row->paidKey = random.bounded(3) == 0 ? -1 : random.bounded(5) * 10.5;
        row->disposedKey = random.bounded(3) == 0 ? -1 : random.bounded(5) * 3.25;
        row->isDisposed = random.bounded(5) == 0;
        const qint64 base = 1'700'000'000'000;
        row->acquiredMsecs = random.bounded(4) == 0 ? InventoryRow::distantPast : base + random.bounded(5) * 86'400'000;
        row->disposedDateMsecs = random.bounded(2) == 0 ? InventoryRow::distantPast : base + random.bounded(5) * 3'600'000;
        row->addedMsecs = base + random.bounded(5) * 60'000;
        row->filterDateMsecs = row->acquiredMsecs != InventoryRow::distantPast ? row->acquiredMsecs : row->addedMsecs;
        return row;
    }

    static int compare(const InventoryRow &l, const InventoryRow &r, SortColumn column, const QCollator &collator)
    {
        auto threeWay = [](auto a, auto b) { return a < b ? -1 : (b < a ? 1 : 0); };
        switch (column) {
        case SortColumn::setNumber:
            return threeWay(l.setNumber, r.setNumber);
        case SortColumn::name:
            return collator.compare(l.name, r.name);
        case SortColumn::year:
            return threeWay(l.year, r.year);
        case SortColumn::condition:
            return threeWay(l.conditionKey, r.conditionKey);
        case SortColumn::built:
            return threeWay(l.builtKey, r.builtKey);
        case SortColumn::paid:
            return threeWay(l.paidKey, r.paidKey);
        case SortColumn::disposed:
            return threeWay(l.disposedKey, r.disposedKey);
        case SortColumn::acquired:
            return threeWay(l.acquiredMsecs, r.acquiredMsecs);
        case SortColumn::disposedDate:
            return threeWay(l.disposedDateMsecs, r.disposedDateMsecs);
        case SortColumn::added:
            return threeWay(l.addedMsecs, r.addedMsecs);
        }
        return 0;
    }

    // The plain way: filter first, then a stable sort with the comparison written out again.
    static QList<int> filterThenStableSort(const Rows &rows, const InventoryRowChoice::Filter &filter, SortColumn column,
                                           bool ascending, const QCollator &collator)
    {
        QList<int> all(qsizetype(rows.size()));
        for (qsizetype at = 0; at < all.size(); ++at)
            all[at] = int(at);
        QList<int> kept = InventoryRowChoice::filtered(rows, all, filter);
        std::stable_sort(kept.begin(), kept.end(), [&](int left, int right) {
            const int result = compare(*rows[std::size_t(left)], *rows[std::size_t(right)], column, collator);
            return ascending ? result < 0 : result > 0;
        });
        return kept;
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void keptOrderFilteredAfterwardsEqualsFilteringThenAStableSort()
    {
        QRandomGenerator random(19);
        Rows rows;
        for (int index = 0; index < 600; ++index)
            rows.push_back(randomRow(random));
        QCollator collator{QLocale(u"en_US"_s)};
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        const QList<InventoryRowChoice::Filter> filters{
            {},
            {u"disposed"_s, QString(), std::nullopt, std::nullopt},
            {u"inStock"_s, u"B"_s, std::nullopt, std::nullopt},
            {u"all"_s, QString(), 1'700'000'000'000 + 86'400'000, 1'700'000'000'000 + 3 * 86'400'000},
        };
        for (const SortColumn column : allColumns) {
            for (const bool ascending : {true, false}) {
                for (const auto &filter : filters) {
                    const QList<int> chosen = InventoryRowChoice::choose(rows, filter, {column, ascending}, collator);
                    QCOMPARE(chosen, filterThenStableSort(rows, filter, column, ascending, collator));
                }
            }
        }
    }

    void movingOneEditedRowEqualsSortingAgain()
    {
        QRandomGenerator random(7);
        Rows rows;
        for (int index = 0; index < 300; ++index)
            rows.push_back(randomRow(random));
        QCollator collator{QLocale(u"en_US"_s)};
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        for (const SortColumn column : allColumns) {
            for (const bool ascending : {true, false}) {
                const InventoryRowChoice::Order order{column, ascending};
                QList<int> kept = InventoryRowChoice::sorted(rows, order, collator);
                for (int edit = 0; edit < 40; ++edit) {
                    const int position = random.bounded(int(rows.size()));
                    rows[std::size_t(position)] = randomRow(random);
                    InventoryRowChoice::reposition(kept, rows, position, order, collator);
                    QCOMPARE(kept, InventoryRowChoice::sorted(rows, order, collator));
                }
            }
        }
    }

    void searchIsLowerCasedAndLooksAtTheSetNumberThenTheName()
    {
        Rows rows;
        auto row = [&rows](const QString &number, const QString &name) {
            auto made = std::make_shared<InventoryRow>();
            made->setNumber = number;
            made->name = name;
            made->setNumberLowered = number.toLower();
            made->nameLowered = name.toLower();
            rows.push_back(made);
        };
        row(u"ABC-1"_s, u"Castle"_s);
        row(u"10001-1"_s, u"abc Tower"_s);
        row(QString(), QString());
        const QList<int> all{0, 1, 2};
        QCOMPARE(InventoryRowChoice::filtered(rows, all, {u"all"_s, u"AbC"_s, {}, {}}), (QList<int>{0, 1}));
        QCOMPARE(InventoryRowChoice::filtered(rows, all, {u"all"_s, u"castle"_s, {}, {}}), (QList<int>{0}));
        QCOMPARE(InventoryRowChoice::filtered(rows, all, {u"all"_s, u" "_s, {}, {}}), (QList<int>{1}));
        QCOMPARE(InventoryRowChoice::filtered(rows, all, {u"all"_s, QString(), {}, {}}), all);
    }
};

QTEST_GUILESS_MAIN(InventoryRowChoiceTest)
#include "InventoryRowChoiceTest.moc"
