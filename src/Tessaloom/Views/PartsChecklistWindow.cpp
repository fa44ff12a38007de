// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PartsChecklistWindow.h"

#include "ViewModels/MissingPartsList.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/ChecklistFacetBar.h"
#include "Views/CellPictureLoader.h"
#include "Views/ChecklistRowModel.h"
#include "Views/ColorSwatch.h"
#include "Views/CompletionRing.h"
#include "Views/EmptyStateView.h"
#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QKeyEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int ringSize = 72;

using ViewModel = PartsChecklistViewModel;

template <typename Mode>
void fillPicker(QComboBox *picker, const QList<Mode> &modes)
{
    for (const Mode mode : modes)
        picker->addItem(ViewModel::label(mode), QVariant::fromValue(int(mode)));
}

template <typename Mode>
void selectIn(QComboBox *picker, Mode mode)
{
    const int index = picker->findData(int(mode));
    if (picker->currentIndex() != index)
        picker->setCurrentIndex(index);
}

} // namespace

PartsChecklistWindow::PartsChecklistWindow(std::unique_ptr<PartsChecklistViewModel> viewModel, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_viewModel(std::move(viewModel))
{
    //% "Parts Checklist"
    setWindowTitle(qtTrId("menu.partsChecklist"));
    resize(defaultSize);
    if (m_viewModel)
        build();
}

PartsChecklistWindow::~PartsChecklistWindow() = default;

void PartsChecklistWindow::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    if (m_pictures)
        m_pictures->setImageCache(cache);
}

void PartsChecklistWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // The rows are read when the window first appears, not when it is made.
    if (m_viewModel && !m_hasAppeared) {
        m_hasAppeared = true;
        m_viewModel->loadItemsInBackground();
    }
}

bool PartsChecklistWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_listPage && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool more = key == Qt::Key_Plus || key == Qt::Key_Equal;
        const bool fewer = key == Qt::Key_Minus;
        if (more || fewer) {
            // The buttons' own rule: nothing below zero, nothing above the quantity.
            const QModelIndex current = m_listPage->currentIndex();
            if (const ChecklistItem *item = m_rowModel->item(current)) {
                if (more && current.data(ChecklistRowModel::CanIncrementRole).toBool())
                    m_viewModel->increment(ChecklistItem(*item));
                else if (fewer && current.data(ChecklistRowModel::CanDecrementRole).toBool())
                    m_viewModel->decrement(ChecklistItem(*item));
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void PartsChecklistWindow::build()
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildSummary());
    layout->addWidget(buildControls());
    m_facets = new ChecklistFacetBar(*m_viewModel, this);
    layout->addWidget(m_facets);
    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(u"checklistCount"_s);
    layout->addWidget(m_countLabel);
    m_loadingIndicator = new QProgressBar(this);
    m_loadingIndicator->setRange(0, 0);
    m_loadingIndicator->setTextVisible(false);
    m_loadingIndicator->setMaximumWidth(120);
    //% "Loading parts…"
    m_loadingIndicator->setAccessibleName(qtTrId("detail.parts.loading"));
    layout->addWidget(m_loadingIndicator, 0, Qt::AlignHCenter);
    layout->addWidget(buildBody(), 1);

    ViewModel &model = *m_viewModel;
    connect(&model, &ViewModel::isLoadingChanged, this, [this] { refreshList(); });
    connect(&model, &ViewModel::itemsChanged, this, [this] {
        refreshSummary();
        m_facets->refresh();
        refreshList();
    });
    connect(&model, &ViewModel::revisionChanged, this, [this] {
        refreshSummary();
        // With every row shown in a fixed order, a count changes only its own rows; under
        // a status filter or the completion order a row may leave or move.
        if (m_viewModel->filterMode() == ViewModel::FilterMode::all
            && m_viewModel->sortBy() != ViewModel::SortMode::completion) {
            m_rowModel->refreshCounts();
        } else {
            refreshList();
        }
    });
    connect(&model, &ViewModel::searchTextChanged, this, [this] {
        if (m_searchField->text() != m_viewModel->searchText())
            m_searchField->setText(m_viewModel->searchText());
        refreshList();
    });
    const auto pickersChanged = [this] {
        refreshPickers();
        refreshList();
    };
    connect(&model, &ViewModel::sortByChanged, this, pickersChanged);
    connect(&model, &ViewModel::groupByChanged, this, pickersChanged);
    connect(&model, &ViewModel::filterModeChanged, this, pickersChanged);
    connect(&model, &ViewModel::selectedColorsChanged, this, [this] {
        m_facets->refresh();
        refreshList();
    });
    connect(&model, &ViewModel::selectedCategoriesChanged, this, [this] {
        m_facets->refresh();
        refreshList();
    });

    refreshSummary();
    refreshPickers();
    m_facets->refresh();
    refreshList();
}

QWidget *PartsChecklistWindow::buildSummary()
{
    auto *summary = new QWidget(this);
    auto *layout = new QHBoxLayout(summary);
    layout->setContentsMargins(0, 0, 0, 0);
    m_ring = new CompletionRing(0, ringSize, summary);
    m_ring->setObjectName(u"checklistCompletionRing"_s);
    layout->addWidget(m_ring);
    auto *figures = new QVBoxLayout;
    m_partsFigure = new QLabel(summary);
    m_piecesFigure = new QLabel(summary);
    m_percentFigure = new QLabel(summary);
    QFont percentFont = m_percentFigure->font();
    percentFont.setBold(true);
    m_percentFigure->setFont(percentFont);
    for (QLabel *figure : {m_percentFigure, m_partsFigure, m_piecesFigure})
        figures->addWidget(figure);
    layout->addLayout(figures, 1);
    return summary;
}

QWidget *PartsChecklistWindow::buildControls()
{
    auto *controls = new QWidget(this);
    auto *layout = new QHBoxLayout(controls);
    layout->setContentsMargins(0, 0, 0, 0);

    m_searchField = new QLineEdit(controls);
    m_searchField->setObjectName(u"checklistSearchField"_s);
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(SymbolIcon::icon(u"magnifyingglass"_s), QLineEdit::LeadingPosition);
    //% "Search parts, numbers, colors"
    m_searchField->setPlaceholderText(qtTrId("detail.parts.searchPrompt"));
    layout->addWidget(m_searchField, 1);
    connect(m_searchField, &QLineEdit::textChanged, this, [this](const QString &text) { m_viewModel->setSearchText(text); });

    const auto addPicker = [&](QComboBox *&picker, const QString &title, const QString &name) {
        picker = new QComboBox(controls);
        picker->setObjectName(name);
        picker->setAccessibleName(title);
        picker->setToolTip(title);
        auto *label = new QLabel(title, controls);
        label->setBuddy(picker);
        layout->addWidget(label);
        layout->addWidget(picker);
    };
    //% "Status"
    addPicker(m_statusPicker, qtTrId("detail.parts.status"), u"checklistStatusPicker"_s);
    fillPicker(m_statusPicker, ViewModel::allFilterModes());
    //% "Group"
    addPicker(m_groupPicker, qtTrId("detail.parts.group"), u"checklistGroupPicker"_s);
    fillPicker(m_groupPicker, ViewModel::allGroupModes());
    //% "Sort"
    addPicker(m_sortPicker, qtTrId("detail.parts.sort"), u"checklistSortPicker"_s);
    fillPicker(m_sortPicker, ViewModel::allSortModes());
    connect(m_statusPicker, &QComboBox::currentIndexChanged, this,
            [this] { m_viewModel->setFilterMode(ViewModel::FilterMode(m_statusPicker->currentData().toInt())); });
    connect(m_groupPicker, &QComboBox::currentIndexChanged, this,
            [this] { m_viewModel->setGroupBy(ViewModel::GroupMode(m_groupPicker->currentData().toInt())); });
    connect(m_sortPicker, &QComboBox::currentIndexChanged, this,
            [this] { m_viewModel->setSortBy(ViewModel::SortMode(m_sortPicker->currentData().toInt())); });

    m_actionsButton = new QToolButton(controls);
    m_actionsButton->setObjectName(u"checklistActionsButton"_s);
    m_actionsButton->setIcon(SymbolIcon::icon(u"ellipsis.circle"_s));
    //% "Actions"
    const QString actionsTitle = qtTrId("detail.parts.actions");
    m_actionsButton->setText(actionsTitle);
    m_actionsButton->setAccessibleName(actionsTitle);
    m_actionsButton->setToolTip(actionsTitle);
    m_actionsButton->setPopupMode(QToolButton::InstantPopup);
    m_actionsMenu = new QMenu(m_actionsButton);
    //% "Mark All Complete"
    m_markAllCompleteAction = m_actionsMenu->addAction(qtTrId("detail.parts.markAllComplete"), this,
                                                       [this] { m_viewModel->markAllComplete(); });
    //% "Reset All"
    m_resetAllAction = m_actionsMenu->addAction(qtTrId("detail.parts.resetAll"), this, [this] { m_viewModel->resetAll(); });
    m_actionsMenu->addSeparator();
    //% "Export Missing Parts…"
    m_exportMissingAction = m_actionsMenu->addAction(qtTrId("detail.parts.exportMissing"), this,
                                                     &PartsChecklistWindow::exportMissingPartsInteractively);
    //% "Copy Missing Parts List"
    m_copyMissingAction = m_actionsMenu->addAction(qtTrId("detail.parts.copyMissing"), this,
                                                   &PartsChecklistWindow::copyMissingPartsToClipboard);
    m_actionsButton->setMenu(m_actionsMenu);
    layout->addWidget(m_actionsButton);
    return controls;
}

QWidget *PartsChecklistWindow::buildBody()
{
    m_body = new QStackedWidget(this);

    m_listPage = new QListView(m_body);
    m_listPage->setObjectName(u"checklistList"_s);
    m_listPage->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_listPage->setSelectionMode(QAbstractItemView::NoSelection);
    m_listPage->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_rowModel = new ChecklistRowModel(*m_viewModel, m_listPage);
    m_pictures = new CellPictureLoader(QSize(ChecklistRowView::pictureSide, ChecklistRowView::pictureSide),
                                       4 * 1024 * 1024, this);
    if (m_imageCache)
        m_pictures->setImageCache(m_imageCache);
    m_rowDelegate = new ChecklistRowView(*m_pictures, m_listPage->font(), m_listPage);
    m_listPage->setItemDelegate(m_rowDelegate);
    m_listPage->setModel(m_rowModel);
    // The row's item is copied out: the model may be reset by the change it causes.
    connect(m_rowDelegate, &ChecklistRowView::incrementRequested, this, [this](const QModelIndex &index) {
        if (const ChecklistItem *item = m_rowModel->item(index))
            m_viewModel->increment(ChecklistItem(*item));
    });
    connect(m_rowDelegate, &ChecklistRowView::decrementRequested, this, [this](const QModelIndex &index) {
        if (const ChecklistItem *item = m_rowModel->item(index))
            m_viewModel->decrement(ChecklistItem(*item));
    });
    m_listPage->installEventFilter(this);
    m_body->addWidget(m_listPage);

    //% "No Parts"
    const QString noDataTitle = qtTrId("detail.parts.noData");
    //% "The catalog lists no parts for this set."
    const QString noDataDescription = qtTrId("detail.parts.noDataDescription");
    m_noDataState = new EmptyStateView(u"square.grid.3x3"_s, noDataTitle, noDataDescription, m_body);
    m_noDataState->setObjectName(u"checklistNoData"_s);
    m_body->addWidget(m_noDataState);

    m_noMatchPage = new QWidget(m_body);
    auto *noMatchLayout = new QVBoxLayout(m_noMatchPage);
    //% "No Matching Parts"
    const QString noMatchTitle = qtTrId("detail.parts.noMatch");
    //% "No part passes the search and filters."
    const QString noMatchDescription = qtTrId("detail.parts.noMatchDescription");
    m_noMatchState = new EmptyStateView(u"line.3.horizontal.decrease.circle"_s, noMatchTitle, noMatchDescription,
                                        m_noMatchPage);
    m_noMatchState->setObjectName(u"checklistNoMatch"_s);
    noMatchLayout->addWidget(m_noMatchState, 1);
    //% "Clear Filters"
    m_clearFiltersButton = new QPushButton(qtTrId("detail.parts.clearFilters"), m_noMatchPage);
    m_clearFiltersButton->setObjectName(u"checklistClearFilters"_s);
    noMatchLayout->addWidget(m_clearFiltersButton, 0, Qt::AlignHCenter);
    noMatchLayout->addStretch(1);
    connect(m_clearFiltersButton, &QPushButton::clicked, this, &PartsChecklistWindow::clearEverything);
    m_body->addWidget(m_noMatchPage);
    return m_body;
}

void PartsChecklistWindow::refreshSummary()
{
    const ChecklistCompletion completion = m_viewModel->completion();
    m_ring->setFraction(completion.fraction());
    m_ring->setCentreText(completion.ringText());
    m_ring->setAccessibleName(completion.accessibilityText());
    m_partsFigure->setText(completion.partsText());
    m_piecesFigure->setText(completion.piecesText());
    m_percentFigure->setText(completion.percentText());
}

void PartsChecklistWindow::refreshPickers()
{
    selectIn(m_statusPicker, m_viewModel->filterMode());
    selectIn(m_groupPicker, m_viewModel->groupBy());
    selectIn(m_sortPicker, m_viewModel->sortBy());
}

QList<ColorFilterChip *> PartsChecklistWindow::colorChips() const
{
    return m_facets ? m_facets->colorChips() : QList<ColorFilterChip *>();
}

QList<CategoryFilterChip *> PartsChecklistWindow::categoryChips() const
{
    return m_facets ? m_facets->categoryChips() : QList<CategoryFilterChip *>();
}

QPushButton *PartsChecklistWindow::clearColorFilterButton() const
{
    return m_facets ? m_facets->clearColorFilterButton() : nullptr;
}

QPushButton *PartsChecklistWindow::clearCategoryFilterButton() const
{
    return m_facets ? m_facets->clearCategoryFilterButton() : nullptr;
}

void PartsChecklistWindow::refreshList()
{
    const ViewModel &model = *m_viewModel;
    const bool loading = model.isLoading();
    m_loadingIndicator->setVisible(loading && model.items().isEmpty());
    // The view lays out and paints only what is in sight of the new rows.
    m_rowModel->setGroups(model.groupedItems());
    const qsizetype shown = m_rowModel->itemCount();

    //% "%Ln part(s)"
    m_countLabel->setText(qtTrId("detail.parts.partsCount.", int(shown)));
    if (!loading && model.items().isEmpty())
        m_body->setCurrentWidget(m_noDataState);
    else if (!model.items().isEmpty() && shown == 0)
        m_body->setCurrentWidget(m_noMatchPage);
    else
        m_body->setCurrentWidget(m_listPage);
}

QAbstractItemView *PartsChecklistWindow::listView() const
{
    return m_listPage;
}

QList<QModelIndex> PartsChecklistWindow::rows() const
{
    return m_rowModel ? m_rowModel->itemIndexes() : QList<QModelIndex>();
}

QModelIndex PartsChecklistWindow::rowIndex(qsizetype position) const
{
    if (!m_rowModel)
        return {};
    for (int row = 0; row < m_rowModel->rowCount(); ++row) {
        const QModelIndex index = m_rowModel->index(row);
        if (!index.data(ChecklistRowModel::IsHeadingRole).toBool() && position-- == 0)
            return index;
    }
    return {};
}

QRect PartsChecklistWindow::rowButtonRect(const QModelIndex &row, RowButton button) const
{
    if (!m_listPage || !row.isValid())
        return {};
    m_listPage->scrollTo(row);
    return m_rowDelegate->buttonRect(m_listPage->visualRect(row), button);
}

bool PartsChecklistWindow::isPictureRequested(const QModelIndex &row) const
{
    return m_rowDelegate && m_rowDelegate->isPictureRequested(row.data(ChecklistRowModel::PictureURLRole).toString());
}

QStringList PartsChecklistWindow::groupHeadings() const
{
    QStringList titles;
    if (!m_rowModel)
        return titles;
    for (int row = 0; row < m_rowModel->rowCount(); ++row) {
        const QModelIndex index = m_rowModel->index(row);
        if (index.data(ChecklistRowModel::IsHeadingRole).toBool())
            titles.append(index.data().toString());
    }
    return titles;
}

void PartsChecklistWindow::clearEverything()
{
    // What hides every row may be the facets, the search or the status: all three go.
    m_viewModel->clearFilters();
    m_viewModel->setSearchText(QString());
    m_viewModel->setFilterMode(ViewModel::FilterMode::all);
}

bool PartsChecklistWindow::exportMissingParts(const QString &path, QString *errorText) const
{
    if (!m_viewModel)
        return false;
    return MissingPartsList::writeCsv(
        path, MissingPartsList::fromChecklist(m_viewModel->items(), m_viewModel->entriesByKey()), errorText);
}

void PartsChecklistWindow::copyMissingPartsToClipboard() const
{
    if (!m_viewModel)
        return;
    const QByteArray text =
        MissingPartsList::csv(MissingPartsList::fromChecklist(m_viewModel->items(), m_viewModel->entriesByKey()));
    QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
}

void PartsChecklistWindow::exportMissingPartsInteractively()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    //% "Export Missing Parts"
    const QString path = QFileDialog::getSaveFileName(this, qtTrId("detail.parts.exportMissingTitle"),
                                                      folder + u"/missing-parts.csv"_s, u"CSV (*.csv)"_s);
    if (path.isEmpty())
        return;
    QString errorText;
    if (!exportMissingParts(path, &errorText)) {
        //% "The file could not be written: %1"
        QMessageBox::warning(this, windowTitle(), qtTrId("detail.parts.exportFailed.").arg(errorText));
    }
}
