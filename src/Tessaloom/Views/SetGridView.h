// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

// Sets as a grid of pictures: equal cells that flow left to right and wrap with the
// column's width, scrolled by pixel. As many cells as fit share each row's width, so the
// row meets both edges instead of leaving a gap at the right. What a cell shows is its
// delegate's business; the grid of copies and the grid of catalog results differ only in
// that.
class SetGridView : public QListView
{
    Q_OBJECT

public:
    explicit SetGridView(QWidget *parent = nullptr);

    // The least room a cell takes: the cell and the spacing around it.
    static QSize leastGridSize();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void spreadCellsOverTheWidth();
};
