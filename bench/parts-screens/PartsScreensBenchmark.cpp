// SPDX-License-Identifier: GPL-3.0-or-later
// The parts screens offscreen on one set of the full catalog (31203-1 unless told), with a
// real store file: how long the user waits for the checklist window and the parts tab.
//
// - `checklistOpen`: the window made and shown until its rows have landed and the window
//   is painted (synchronous repaint after the pending layouts); `checklistOpenMainThread`,
//   the longest single stretch of main-thread work meanwhile;
// - `increment` / `decrement`: a mouse click on the first row's button for one more or one
//   fewer, to the saved count and the window repainted;
// - `searchKeystroke` ("brick 2" typed a key at a time into the search field),
//   `colorToggle` (the first colour chip clicked, on and off), `sortChange` and
//   `groupChange` (each entry of the pickers): each to the repainted window;
// - `partsTabOpen`: the parts tab shown for the same set until its rows are painted, alone
//   and `partsTabOpenBesideChecklist` with the set's checklist window open.
//
// Baselines measured in the same run: `viewModelLoad`, the checklist's view model alone
// until its rows have landed (the catalog read on the pool); `plainListOpen`, a
// QListWidget with as many plain text rows as the set has lines, made, shown and painted;
// `plainListRepaint`, that list repainted; `viewModelRecompute`, the view model's own
// groupedItems() after a keystroke. One JSON object per line, a summary line last.
//
//   QT_QPA_PLATFORM=offscreen parts-screens-bench [--catalog FILE | --work DIR] [--set NUMBER] [--runs N]

#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"
#include "CatalogFixture.h"

#include "Endpoints.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/ColorFilterChip.h"
#include "Views/PartsChecklistWindow.h"
#include "Views/PartsTab.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUuid>
#include <QWindow>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr double openTargetMs = 100;
constexpr double frameTargetMs = 16;

QJsonObject figure(const QString &name, const BenchmarkSamples &samples, double target)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"parts-screens"_s}, {u"step"_s, name},
                       {u"medianMs"_s, samples.median()}, {u"worstMs"_s, samples.worst()},
                       {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

// Runs the event loop until `done`, and answers the longest single round of it.
double longestStepUntil(const std::function<bool()> &done)
{
    double longest = 0;
    QElapsedTimer patience;
    patience.start();
    while (!done() && patience.elapsed() < 60000) {
        QElapsedTimer step;
        step.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        longest = std::max(longest, double(step.nsecsElapsed()) / 1e6);
        QThread::usleep(100); // leave the cores to the pool meanwhile
    }
    return longest;
}

// Counts the paints of a list's viewport, to show that a figure did paint its rows.
class PaintCounter : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return QObject::eventFilter(watched, event);
    }
};

// Where a click on the first row's button for one more (or one fewer) lands, and on which
// widget.
struct Hit
{
    QWidget *widget = nullptr;
    QPoint point;
};

Hit rowButton(PartsChecklistWindow &window, bool more)
{
    const QModelIndex first = window.rowIndex(0);
    QAbstractItemView *view = window.listView();
    const QRect button = window.rowButtonRect(first, more ? PartsChecklistWindow::RowButton::increment
                                                          : PartsChecklistWindow::RowButton::decrement);
    return {view->viewport(), button.center()};
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Pictures come from an empty cache in a folder of the run's own, and any download is
    // refused at once on 127.0.0.1: no figure waits on the network.
    qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"catalog"_s, u"A built catalog database to use."_s, u"file"_s});
    parser.addOption({u"work"_s, u"Folder where the catalog is built from the full dumps, once."_s, u"dir"_s,
                      QDir::temp().filePath(u"tessaloom-parts-checklist-bench"_s)});
    parser.addOption({u"set"_s, u"The set number."_s, u"number"_s, u"31203-1"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"9"_s});
    parser.process(application);
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());

    QString catalogPath = parser.value(u"catalog"_s);
    if (catalogPath.isEmpty()) {
        QElapsedTimer building;
        building.start();
        catalogPath = CatalogFixture::buildFullCatalog(parser.value(u"work"_s));
        if (catalogPath.isEmpty()) {
            BenchmarkOutput::print({{u"benchmark"_s, u"parts-screens"_s},
                                    {u"skipped"_s, true},
                                    {u"reason"_s, u"The full-size dumps were not found; pass --catalog FILE."_s}});
            return 0;
        }
        BenchmarkOutput::print({{u"benchmark"_s, u"parts-screens"_s}, {u"catalog"_s, catalogPath},
                                {u"preparedSeconds"_s, double(building.elapsed()) / 1000}});
    }
    auto catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        qCritical("The catalog does not open.");
        return 1;
    }
    RebrickableCatalog::replaceShared(catalog);
    const QString setNumber = parser.value(u"set"_s);

    QTemporaryDir folder;
    ImageCacheService pictures(folder.filePath(u"Caches"_s));
    auto store = PersistentContainer::open(folder.filePath(u"Tessaloom.sqlite"_s));
    ManagedObjectContext &context = store->viewContext();
    CatalogSet set;
    set.setNumber = setNumber;
    set.name = setNumber;
    set = context.insert(set);
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = set.objectID;
    copy.setAcquisitionType(AcquisitionType::unknown);
    copy = context.insert(copy);
    context.save();

    // Baseline: the view model alone, its rows read on the pool.
    BenchmarkSamples viewModelLoad;
    qsizetype lines = 0;
    for (int run = 0; run < runs; ++run) {
        PartsChecklistViewModel model(copy, context);
        QElapsedTimer timer;
        timer.start();
        model.loadItemsInBackground();
        longestStepUntil([&model] { return !model.isLoading(); });
        viewModelLoad.values.append(double(timer.nsecsElapsed()) / 1e6);
        lines = model.items().size();
    }
    BenchmarkOutput::print({{u"benchmark"_s, u"parts-screens"_s}, {u"set"_s, setNumber}, {u"items"_s, int(lines)}});
    if (lines < 2) {
        qCritical("The set has too few lines.");
        return 1;
    }

    // Baseline: as many plain rows in a QListWidget, made, shown and painted.
    BenchmarkSamples plainListOpen;
    BenchmarkSamples plainListRepaint;
    int plainListPaints = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        QListWidget list;
        PaintCounter counter;
        list.viewport()->installEventFilter(&counter);
        list.resize(PartsChecklistWindow::defaultSize);
        for (qsizetype line = 0; line < lines; ++line)
            list.addItem(u"Brick 2 x 4 · 3001 · Red · Bricks %1"_s.arg(line));
        list.show();
        BenchmarkWidgets::paintNow(list);
        plainListOpen.values.append(double(timer.nsecsElapsed()) / 1e6);
        plainListRepaint.values.append(BenchmarkOutput::milliseconds([&list] { list.viewport()->repaint(); }));
        plainListPaints += counter.paints;
    }

    // The checklist window, opened until painted.
    BenchmarkSamples checklistOpen;
    BenchmarkSamples checklistOpenMainThread;
    int checklistPaints = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        double longest = 0;
        longest = std::max(longest, BenchmarkOutput::milliseconds([] {}));
        QElapsedTimer first;
        first.start();
        PartsChecklistWindow window(std::make_unique<PartsChecklistViewModel>(copy, context));
        window.setImageCache(&pictures);
        PaintCounter counter;
        window.listView()->viewport()->installEventFilter(&counter);
        window.show();
        longest = std::max(longest, double(first.nsecsElapsed()) / 1e6);
        longest = std::max(longest, longestStepUntil([&window] { return !window.viewModel()->isLoading(); }));
        QElapsedTimer last;
        last.start();
        BenchmarkWidgets::paintNow(window);
        longest = std::max(longest, double(last.nsecsElapsed()) / 1e6);
        checklistOpen.values.append(double(timer.nsecsElapsed()) / 1e6);
        checklistOpenMainThread.values.append(longest);
        checklistPaints += counter.paints;
    }

    // One window kept open for the changes.
    PartsChecklistWindow window(std::make_unique<PartsChecklistViewModel>(copy, context));
    window.setImageCache(&pictures);
    window.show();
    longestStepUntil([&window] { return !window.viewModel()->isLoading(); });
    BenchmarkWidgets::paintNow(window);
    PartsChecklistViewModel &model = *window.viewModel();

    BenchmarkSamples increment;
    BenchmarkSamples decrement;
    for (int run = 0; run < runs; ++run) {
        const Hit more = rowButton(window, true);
        increment.values.append(BenchmarkOutput::milliseconds([&] {
            QTest::mouseClick(more.widget, Qt::LeftButton, {}, more.point);
            BenchmarkWidgets::paintNow(window);
        }));
        const Hit fewer = rowButton(window, false);
        decrement.values.append(BenchmarkOutput::milliseconds([&] {
            QTest::mouseClick(fewer.widget, Qt::LeftButton, {}, fewer.point);
            BenchmarkWidgets::paintNow(window);
        }));
    }
    if (model.entriesByKey().size() != 0)
        qCritical("The clicks did not come back to no count.");

    BenchmarkSamples keystroke;
    BenchmarkSamples recompute;
    BenchmarkSamples colorToggle;
    BenchmarkSamples sortChange;
    BenchmarkSamples groupChange;
    const QString typed = u"brick 2"_s;
    QLineEdit *search = window.searchField();
    for (int run = 0; run < runs; ++run) {
        for (const QChar key : typed) {
            keystroke.values.append(BenchmarkOutput::milliseconds([&] {
                QTest::keyClicks(search, QString(key));
                BenchmarkWidgets::paintNow(window);
            }));
            recompute.values.append(BenchmarkOutput::milliseconds([&] { (void)model.groupedItems(); }));
        }
        search->clear();
        BenchmarkWidgets::paintNow(window);
        for (int toggle = 0; toggle < 2; ++toggle) {
            ColorFilterChip *chip = window.colorChips().constFirst();
            colorToggle.values.append(BenchmarkOutput::milliseconds([&] {
                chip->click();
                BenchmarkWidgets::paintNow(window);
            }));
        }
        for (QComboBox *picker : {window.sortPicker(), window.groupPicker()}) {
            BenchmarkSamples &samples = picker == window.sortPicker() ? sortChange : groupChange;
            for (int step = 1; step <= picker->count(); ++step) {
                const int index = (picker->currentIndex() + 1) % picker->count();
                samples.values.append(BenchmarkOutput::milliseconds([&] {
                    picker->setCurrentIndex(index);
                    BenchmarkWidgets::paintNow(window);
                }));
            }
        }
    }

    // The parts tab of the same set, alone, then with the checklist window still open.
    const auto openPartsTab = [&setNumber, &pictures] {
        QElapsedTimer timer;
        timer.start();
        PartsTab tab;
        tab.setImageCache(&pictures);
        tab.resize(PartsChecklistWindow::defaultSize);
        tab.show();
        tab.setSetNumber(setNumber);
        longestStepUntil([&tab] { return !tab.isLoading(); });
        BenchmarkWidgets::paintNow(tab);
        return double(timer.nsecsElapsed()) / 1e6;
    };
    BenchmarkSamples partsTabBeside;
    for (int run = 0; run < runs; ++run)
        partsTabBeside.values.append(openPartsTab());
    window.close();
    QCoreApplication::processEvents();
    BenchmarkSamples partsTabOpen;
    for (int run = 0; run < runs; ++run)
        partsTabOpen.values.append(openPartsTab());

    BenchmarkOutput::print(figure(u"viewModelLoad"_s, viewModelLoad, 0));
    BenchmarkOutput::print(figure(u"plainListOpen"_s, plainListOpen, 0));
    BenchmarkOutput::print(figure(u"checklistOpen"_s, checklistOpen, openTargetMs));
    BenchmarkOutput::print(figure(u"checklistOpenMainThread"_s, checklistOpenMainThread, 0));
    BenchmarkOutput::print(figure(u"increment"_s, increment, frameTargetMs));
    BenchmarkOutput::print(figure(u"decrement"_s, decrement, frameTargetMs));
    BenchmarkOutput::print(figure(u"searchKeystroke"_s, keystroke, frameTargetMs));
    BenchmarkOutput::print(figure(u"viewModelRecompute"_s, recompute, 0));
    BenchmarkOutput::print(figure(u"colorToggle"_s, colorToggle, frameTargetMs));
    BenchmarkOutput::print(figure(u"sortChange"_s, sortChange, frameTargetMs));
    BenchmarkOutput::print(figure(u"groupChange"_s, groupChange, frameTargetMs));
    BenchmarkOutput::print(figure(u"plainListRepaint"_s, plainListRepaint, 0));
    BenchmarkOutput::print(figure(u"partsTabOpen"_s, partsTabOpen, openTargetMs));
    BenchmarkOutput::print(figure(u"partsTabOpenBesideChecklist"_s, partsTabBeside, openTargetMs));

    const bool within = checklistOpen.median() <= openTargetMs && increment.median() <= frameTargetMs
        && decrement.median() <= frameTargetMs && keystroke.median() <= frameTargetMs
        && colorToggle.median() <= frameTargetMs && sortChange.median() <= frameTargetMs
        && groupChange.median() <= frameTargetMs;
    BenchmarkOutput::print({{u"benchmark"_s, u"parts-screens"_s},
                            {u"summary"_s, true},
                            {u"set"_s, setNumber},
                            {u"items"_s, int(lines)},
                            {u"checklistOpenMs"_s, checklistOpen.median()},
                            {u"viewModelLoadMs"_s, viewModelLoad.median()},
                            {u"openToViewModelLoad"_s, checklistOpen.median() / std::max(viewModelLoad.median(), 1e-3)},
                            {u"plainListOpenMs"_s, plainListOpen.median()},
                            {u"incrementMs"_s, increment.median()},
                            {u"searchKeystrokeMs"_s, keystroke.median()},
                            {u"viewModelRecomputeMs"_s, recompute.median()},
                            {u"plainListRepaintMs"_s, plainListRepaint.median()},
                            {u"partsTabOpenMs"_s, partsTabOpen.median()},
                            {u"partsTabOpenBesideChecklistMs"_s, partsTabBeside.median()},
                            {u"checklistViewportPaints"_s, checklistPaints},
                            {u"plainListViewportPaints"_s, plainListPaints},
                            {u"withinTargets"_s, within}});
    return 0;
}
