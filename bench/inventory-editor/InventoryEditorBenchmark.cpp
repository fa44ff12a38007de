// SPDX-License-Identifier: GPL-3.0-or-later
// The copy editor offscreen over a store of 10,000 copies, with the collection list
// (SetListViewModel on "All Sets", as the window has it) listening to every commit:
//
// - `keystroke`: one character typed into the price field, from the key press until the
//   window is painted again (pending layouts, then a synchronous repaint), all on the main
//   thread. Baseline in the same run, `plainKeystroke`: the same into a bare QLineEdit of
//   the same window, connected to nothing.
// - `save`: the delayed save itself, for one copy after another with one character typed
//   into each: the copy read, written and committed in one transaction, until the change
//   notice goes out; `saveWithList`, until the collection list has handled that notice too.
//   Baselines in the same run, `plainSave` and `plainSaveWithList`: one attribute of another
//   copy written straight through the view context and saved, measured the same way; and
//   `sqliteUpdate`, the floor: one UPDATE of the same copy's editor columns in a
//   transaction of its own on a plain SQLite connection to the same file, with the store's
//   durability (WAL, synchronous FULL), so each commit waits for the disk as the store's do.
// - `load`: choosing another copy until the filled form is painted.
//
// One JSON object per line, a summary line last.
//
//   QT_QPA_PLATFORM=offscreen inventory-editor-bench [--copies N] [--runs N]

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"

#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/InventoryEditorState.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/InventoryEditor.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double keystrokeTargetMs = 8;
constexpr double saveTargetMs = 10;

QJsonObject figure(const QString &name, const BenchmarkSamples &samples, double target = 0)
{
    QJsonObject object{{u"benchmark"_s, u"inventory-editor"_s}, {u"step"_s, name},
                       {u"samples"_s, int(samples.values.size())}, {u"medianMs"_s, samples.median()},
                       {u"p90Ms"_s, samples.p90()}, {u"worstMs"_s, samples.worst()}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

double elapsedMs(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"copies"_s, u"Copies in the collection."_s, u"n"_s, u"10000"_s});
    parser.addOption({u"runs"_s, u"Saves measured; keystrokes are ten times as many."_s, u"n"_s, u"40"_s});
    parser.process(application);
    const int copies = std::max(20, parser.value(u"copies"_s).toInt());
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());

    QTemporaryDir folder;
    auto store = PersistentContainer::open(folder.filePath(u"Tessaloom.sqlite"_s));
    QElapsedTimer preparing;
    preparing.start();
    BenchmarkCollection::fill(*store, copies);
    ManagedObjectContext &context = store->viewContext();
    const QList<ObjectID> ids = context.fetchObjectIDs(FetchRequest<BrickSet>(BrickSetQueries::notTrashed()));
    BenchmarkOutput::print({{u"benchmark"_s, u"inventory-editor"_s}, {u"copies"_s, copies},
                            {u"copiesInCollection"_s, int(ids.size())},
                            {u"preparedSeconds"_s, double(preparing.elapsed()) / 1000}});

    // Connected before the list, so it runs first on each change notice: the moment the
    // commit is done and announced, before any listener reads the store again.
    int commits = 0;
    QElapsedTimer sinceStart;
    sinceStart.start();
    qint64 committedAtNs = 0;
    QObject::connect(store.get(), &PersistentContainer::objectsDidChange, store.get(), [&] {
        ++commits;
        committedAtNs = sinceStart.nsecsElapsed();
    });
    SetListViewModel list(*store);
    list.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *plainField = new QLineEdit(&window);
    layout->addWidget(plainField);
    auto *editor = new InventoryEditor(context, ids.at(ids.size() / 2), &window);
    layout->addWidget(editor);
    window.resize(520, 900);
    window.show();
    BenchmarkWidgets::paintNow(window);
    auto *priceField = editor->findChild<QLineEdit *>(u"pricePaidField"_s);

    const auto typeInto = [&window](QLineEdit *field, BenchmarkSamples &samples, int count) {
        for (int stroke = 0; stroke < count; ++stroke) {
            if (stroke % 8 == 0) {
                field->clear(); // a price of up to eight characters, as typed
                BenchmarkWidgets::paintNow(window);
            }
            QElapsedTimer timer;
            timer.start();
            QTest::keyClick(field, char(u'0' + stroke % 10));
            BenchmarkWidgets::paintNow(window);
            samples.values.append(elapsedMs(timer));
        }
    };

    // Keystrokes, alternating between the bare field and the editor so that load changes
    // on the machine touch both alike.
    BenchmarkSamples plainKeystroke;
    BenchmarkSamples keystroke;
    for (int round = 0; round < runs; ++round) {
        typeInto(plainField, plainKeystroke, 10);
        typeInto(priceField, keystroke, 10);
    }
    if (!editor->state().hasPendingSave())
        qCritical("Typing into the editor left no save pending.");
    editor->flushPendingSave();

    BenchmarkSamples load;
    BenchmarkSamples save;
    BenchmarkSamples saveWithList;
    BenchmarkSamples plainSave;
    BenchmarkSamples plainSaveWithList;
    const int commitsBefore = commits;
    for (int run = 0; run < runs; ++run) {
        const ObjectID copy = ids.at((qsizetype(run) * 97 + 13) % ids.size());
        QElapsedTimer loading;
        loading.start();
        editor->setBrickSet(copy);
        BenchmarkWidgets::paintNow(window);
        load.values.append(elapsedMs(loading));

        QTest::keyClick(editor->findChild<QLineEdit *>(u"sourceField"_s), char(u'a' + run % 26));
        qint64 startNs = sinceStart.nsecsElapsed();
        editor->flushPendingSave();
        saveWithList.values.append(double(sinceStart.nsecsElapsed() - startNs) / 1e6);
        save.values.append(double(committedAtNs - startNs) / 1e6);

        // Baseline: one attribute of another copy written straight through the context.
        const ObjectID other = ids.at((qsizetype(run) * 89 + 7) % ids.size());
        startNs = sinceStart.nsecsElapsed();
        std::optional<BrickSet> value = context.existingObject<BrickSet>(other);
        value->acquisitionSource = u"direct "_s + QString::number(run);
        context.update(*value);
        context.save();
        plainSaveWithList.values.append(double(sinceStart.nsecsElapsed() - startNs) / 1e6);
        plainSave.values.append(double(committedAtNs - startNs) / 1e6);
    }
    // The floor: the same write as plain SQL.
    BenchmarkSamples sqliteUpdate;
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(folder.filePath(u"Tessaloom.sqlite"_s).toUtf8().constData(), &database, SQLITE_OPEN_READWRITE,
                        nullptr)
        == SQLITE_OK) {
        sqlite3_exec(database, "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
        sqlite3_busy_timeout(database, 5000);
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(database,
                           "UPDATE BrickSet SET acquisitionType = 'unknown', acquisitionSource = ?1, "
                           "overallCondition = 'used', completeness = 'unknown', boxCondition = 'good', "
                           "instructionsCondition = 'good', builtStatus = 'built', stickerStatus = 'no_stickers', "
                           "priceCurrency = 'USD' WHERE pk = ?2",
                           -1, &statement, nullptr);
        for (int run = 0; run < runs; ++run) {
            const ObjectID copy = ids.at((qsizetype(run) * 83 + 5) % ids.size());
            const QByteArray source = "sql " + QByteArray::number(run);
            QElapsedTimer timer;
            timer.start();
            sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
            sqlite3_bind_text(statement, 1, source.constData(), int(source.size()), SQLITE_TRANSIENT);
            sqlite3_bind_int64(statement, 2, copy.primaryKey);
            if (sqlite3_step(statement) != SQLITE_DONE)
                qCritical("The plain UPDATE failed: %s", sqlite3_errmsg(database));
            sqlite3_reset(statement);
            sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
            sqliteUpdate.values.append(elapsedMs(timer));
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);

    if (commits - commitsBefore != 2 * runs)
        qCritical("%d commits for %d saves.", commits - commitsBefore, 2 * runs);

    BenchmarkOutput::print(figure(u"plainKeystroke"_s, plainKeystroke));
    BenchmarkOutput::print(figure(u"keystroke"_s, keystroke, keystrokeTargetMs));
    BenchmarkOutput::print(figure(u"sqliteUpdate"_s, sqliteUpdate));
    BenchmarkOutput::print(figure(u"plainSave"_s, plainSave));
    BenchmarkOutput::print(figure(u"save"_s, save, saveTargetMs));
    BenchmarkOutput::print(figure(u"plainSaveWithList"_s, plainSaveWithList));
    BenchmarkOutput::print(figure(u"saveWithList"_s, saveWithList));
    BenchmarkOutput::print(figure(u"load"_s, load));
    BenchmarkOutput::print({{u"benchmark"_s, u"inventory-editor"_s}, {u"summary"_s, true},
                            {u"keystrokeMedianMs"_s, keystroke.median()},
                            {u"keystrokeWithinTarget"_s, keystroke.median() <= keystrokeTargetMs},
                            {u"plainKeystrokeMedianMs"_s, plainKeystroke.median()},
                            {u"saveMedianMs"_s, save.median()},
                            {u"saveWithinTarget"_s, save.median() <= saveTargetMs},
                            {u"plainSaveMedianMs"_s, plainSave.median()},
                            {u"sqliteUpdateMedianMs"_s, sqliteUpdate.median()},
                            {u"saveWithListMedianMs"_s, saveWithList.median()}});
    return 0;
}
