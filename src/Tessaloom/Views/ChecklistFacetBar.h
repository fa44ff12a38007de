// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class CategoryFilterChip;
class ColorFilterChip;
class PartsChecklistViewModel;
class QPushButton;

// The two filter rows of a checklist window: the colours on offer as swatch chips and the
// categories as name chips, each row with its clear button (shown while something in it
// is chosen). A chip toggles its colour or category in the view model; the window calls
// refresh() when the choices or the rows change.
class ChecklistFacetBar : public QWidget
{
    Q_OBJECT

public:
    explicit ChecklistFacetBar(PartsChecklistViewModel &viewModel, QWidget *parent = nullptr);

    // Rebuilds the chips from the colours and categories on offer.
    void refresh();

    QList<ColorFilterChip *> colorChips() const { return m_colorChips; }
    QList<CategoryFilterChip *> categoryChips() const { return m_categoryChips; }
    QPushButton *clearColorFilterButton() const { return m_clearColorFilterButton; }
    QPushButton *clearCategoryFilterButton() const { return m_clearCategoryFilterButton; }

private:
    PartsChecklistViewModel &m_viewModel;
    QWidget *m_colorChipBox = nullptr;
    QWidget *m_categoryChipBox = nullptr;
    QList<ColorFilterChip *> m_colorChips;
    QList<CategoryFilterChip *> m_categoryChips;
    QPushButton *m_clearColorFilterButton = nullptr;
    QPushButton *m_clearCategoryFilterButton = nullptr;
};
