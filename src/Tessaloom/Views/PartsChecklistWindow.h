// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/ChecklistItem.h"
#include "Views/ChecklistRowView.h"

#include <QList>
#include <QModelIndex>
#include <QWidget>

#include <memory>

class CellPictureLoader;
class ChecklistFacetBar;
class ChecklistRowModel;
class CategoryFilterChip;
class ColorFilterChip;
class CompletionRing;
class EmptyStateView;
class ImageCacheService;
class PartsChecklistViewModel;
class QAbstractItemView;
class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QToolButton;

// The window in which the user ticks off the parts of one owned copy. From the top: a
// summary (completion ring and figures), the search field, the status, group and sort
// pickers with the actions menu, the colour and category filter chips, the count of rows
// shown, and the rows themselves, or an empty state that says why there are none.
//
// The rows are a list view over ChecklistRowModel painted by ChecklistRowView: opening,
// filtering and re-sorting a set of a thousand lines cost what the rows in sight cost, not
// a thousand rows of widgets.
//
// Without a view model the window stays empty: it was opened for a copy that does not
// exist (any more), and says nothing about it.
class PartsChecklistWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSize defaultSize{900, 700};
    using RowButton = ChecklistRowView::Button;

    explicit PartsChecklistWindow(std::unique_ptr<PartsChecklistViewModel> viewModel, QWidget *parent = nullptr);
    ~PartsChecklistWindow() override;

    PartsChecklistViewModel *viewModel() const { return m_viewModel.get(); }
    // The cache the rows' pictures come from; the shared one unless set.
    void setImageCache(ImageCacheService *cache);

    // The missing pieces (required minus owned, spares never counted) as a part-list file
    // Rebrickable imports; true when written. On failure, `errorText` says why.
    bool exportMissingParts(const QString &path, QString *errorText = nullptr) const;
    // The same list as text on the clipboard.
    void copyMissingPartsToClipboard() const;

    // The parts of the window, for tests.
    CompletionRing *completionRing() const { return m_ring; }
    QLabel *partsFigureLabel() const { return m_partsFigure; }
    QLabel *piecesFigureLabel() const { return m_piecesFigure; }
    QLabel *percentFigureLabel() const { return m_percentFigure; }
    QLineEdit *searchField() const { return m_searchField; }
    QComboBox *statusPicker() const { return m_statusPicker; }
    QComboBox *groupPicker() const { return m_groupPicker; }
    QComboBox *sortPicker() const { return m_sortPicker; }
    QToolButton *actionsButton() const { return m_actionsButton; }
    QAction *markAllCompleteAction() const { return m_markAllCompleteAction; }
    QAction *resetAllAction() const { return m_resetAllAction; }
    QAction *exportMissingAction() const { return m_exportMissingAction; }
    QAction *copyMissingAction() const { return m_copyMissingAction; }
    ChecklistFacetBar *facets() const { return m_facets; }
    QList<ColorFilterChip *> colorChips() const;
    QList<CategoryFilterChip *> categoryChips() const;
    QPushButton *clearColorFilterButton() const;
    QPushButton *clearCategoryFilterButton() const;
    QLabel *countLabel() const { return m_countLabel; }
    // The item rows on show, in order (headings left out), and the `position`-th of them.
    ChecklistRowModel *rowModel() const { return m_rowModel; }
    QList<QModelIndex> rows() const;
    QModelIndex rowIndex(qsizetype position) const;
    // Where a row's button is, in the list's viewport; the row is scrolled into view first.
    QRect rowButtonRect(const QModelIndex &row, RowButton button) const;
    // Whether the row's picture has been asked for: rows far out of sight do not ask.
    bool isPictureRequested(const QModelIndex &row) const;
    // The titles of the blocks' headings on show, in order; none without grouping.
    QStringList groupHeadings() const;
    QStackedWidget *body() const { return m_body; }
    QListView *listPage() const { return m_listPage; }
    QAbstractItemView *listView() const;
    EmptyStateView *noDataState() const { return m_noDataState; }
    QWidget *noMatchPage() const { return m_noMatchPage; }
    EmptyStateView *noMatchState() const { return m_noMatchState; }
    QPushButton *clearFiltersButton() const { return m_clearFiltersButton; }

protected:
    void showEvent(QShowEvent *event) override;
    // "+" and "-" on the list count the current row up and down, as its buttons do.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build();
    QWidget *buildSummary();
    QWidget *buildControls();
    QWidget *buildBody();
    void refreshSummary();
    void refreshPickers();
    void refreshList();
    void clearEverything();
    void exportMissingPartsInteractively();

    std::unique_ptr<PartsChecklistViewModel> m_viewModel;
    ImageCacheService *m_imageCache = nullptr;
    bool m_hasAppeared = false;

    CompletionRing *m_ring = nullptr;
    QLabel *m_partsFigure = nullptr;
    QLabel *m_piecesFigure = nullptr;
    QLabel *m_percentFigure = nullptr;
    QLineEdit *m_searchField = nullptr;
    QComboBox *m_statusPicker = nullptr;
    QComboBox *m_groupPicker = nullptr;
    QComboBox *m_sortPicker = nullptr;
    QToolButton *m_actionsButton = nullptr;
    QMenu *m_actionsMenu = nullptr;
    QAction *m_markAllCompleteAction = nullptr;
    QAction *m_resetAllAction = nullptr;
    QAction *m_exportMissingAction = nullptr;
    QAction *m_copyMissingAction = nullptr;
    ChecklistFacetBar *m_facets = nullptr;
    QLabel *m_countLabel = nullptr;
    QStackedWidget *m_body = nullptr;
    QListView *m_listPage = nullptr;
    ChecklistRowModel *m_rowModel = nullptr;
    ChecklistRowView *m_rowDelegate = nullptr;
    CellPictureLoader *m_pictures = nullptr;
    QProgressBar *m_loadingIndicator = nullptr;
    EmptyStateView *m_noDataState = nullptr;
    QWidget *m_noMatchPage = nullptr;
    EmptyStateView *m_noMatchState = nullptr;
    QPushButton *m_clearFiltersButton = nullptr;
};
