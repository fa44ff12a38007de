// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ChecklistFacetBar.h"

#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/CategoryFilterChip.h"
#include "Views/ColorFilterChip.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

// A row of chips that scrolls sideways when there are more than fit. It is made empty,
// so its height comes from the chips it will hold, with room for its scroll bar.
QScrollArea *chipStrip(QWidget *box, int chipHeight, QWidget *parent)
{
    auto *strip = new QScrollArea(parent);
    strip->setWidget(box);
    strip->setWidgetResizable(true);
    strip->setFrameShape(QFrame::NoFrame);
    strip->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    strip->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    strip->setFixedHeight(chipHeight + strip->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 4);
    return strip;
}

// Empties a row of chips. The chips go later: the click that led here is still running
// in one of them.
void clearChips(QLayout *layout)
{
    while (QLayoutItem *item = layout->takeAt(0)) {
        if (QWidget *widget = item->widget()) {
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
}

} // namespace

ChecklistFacetBar::ChecklistFacetBar(PartsChecklistViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
{
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    //% "Colors"
    layout->addWidget(new QLabel(qtTrId("detail.parts.colors"), this), 0, 0);
    m_colorChipBox = new QWidget(this);
    auto *colorLayout = new QHBoxLayout(m_colorChipBox);
    colorLayout->setContentsMargins(0, 0, 0, 0);
    const int colorChipHeight = ColorFilterChip(QString(), false, {}).sizeHint().height();
    layout->addWidget(chipStrip(m_colorChipBox, colorChipHeight, this), 0, 1);
    //% "Clear"
    m_clearColorFilterButton = new QPushButton(qtTrId("detail.parts.clearColorFilter"), this);
    m_clearColorFilterButton->setObjectName(u"checklistClearColorFilter"_s);
    layout->addWidget(m_clearColorFilterButton, 0, 2);
    // Taking the colours off one by one would narrow the categories to those of the
    // colours still chosen on the way; clearing both and choosing the categories again
    // keeps them as they were.
    connect(m_clearColorFilterButton, &QPushButton::clicked, this, [this] {
        const QSet<QString> categories = m_viewModel.selectedCategories();
        m_viewModel.clearFilters();
        for (const QString &name : categories)
            m_viewModel.toggleCategory(name);
    });

    //% "Category"
    layout->addWidget(new QLabel(qtTrId("detail.parts.category"), this), 1, 0);
    m_categoryChipBox = new QWidget(this);
    auto *categoryLayout = new QHBoxLayout(m_categoryChipBox);
    categoryLayout->setContentsMargins(0, 0, 0, 0);
    const int categoryChipHeight = CategoryFilterChip(QString(), false, {}).sizeHint().height();
    layout->addWidget(chipStrip(m_categoryChipBox, categoryChipHeight, this), 1, 1);
    //% "Clear"
    m_clearCategoryFilterButton = new QPushButton(qtTrId("detail.parts.clearCategoryFilter"), this);
    m_clearCategoryFilterButton->setObjectName(u"checklistClearCategoryFilter"_s);
    layout->addWidget(m_clearCategoryFilterButton, 1, 2);
    connect(m_clearCategoryFilterButton, &QPushButton::clicked, this, [this] {
        const QSet<int> colors = m_viewModel.selectedColors();
        m_viewModel.clearFilters();
        for (const int colorID : colors)
            m_viewModel.toggleColor(colorID);
    });
    layout->setColumnStretch(1, 1);
    refresh();
}

void ChecklistFacetBar::refresh()
{
    clearChips(m_colorChipBox->layout());
    m_colorChips.clear();
    for (const PartsChecklistViewModel::ColorInfo &color : m_viewModel.availableColors()) {
        const int colorID = color.colorID;
        auto *chip = new ColorFilterChip(color.hexCode, m_viewModel.selectedColors().contains(colorID),
                                         [this, colorID] { m_viewModel.toggleColor(colorID); }, m_colorChipBox);
        chip->setColorName(color.name);
        m_colorChipBox->layout()->addWidget(chip);
        m_colorChips.append(chip);
    }
    static_cast<QHBoxLayout *>(m_colorChipBox->layout())->addStretch(1);

    clearChips(m_categoryChipBox->layout());
    m_categoryChips.clear();
    for (const QString &category : m_viewModel.availableCategories()) {
        auto *chip = new CategoryFilterChip(category, m_viewModel.selectedCategories().contains(category),
                                            [this, category] { m_viewModel.toggleCategory(category); },
                                            m_categoryChipBox);
        m_categoryChipBox->layout()->addWidget(chip);
        m_categoryChips.append(chip);
    }
    static_cast<QHBoxLayout *>(m_categoryChipBox->layout())->addStretch(1);

    m_clearColorFilterButton->setVisible(!m_viewModel.selectedColors().isEmpty());
    m_clearCategoryFilterButton->setVisible(!m_viewModel.selectedCategories().isEmpty());
}
