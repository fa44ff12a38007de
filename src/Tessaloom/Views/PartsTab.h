// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/PartsTabModel.h"

#include <QWidget>

class CellPictureLoader;
class ImageCacheService;
class QComboBox;
class QFont;
class QIcon;
class QLabel;
class QLineEdit;
class QProgressBar;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

// The parts tab of a set's detail: the set's inventory straight from the catalog, read
// only. A header with the figures (or a progress line while the rows are read), the
// search field and the group and sort pickers, then the regular parts (grouped as
// chosen) and, when the set has any, its spare parts. Each row shows the part's picture,
// name, number, colour and count.
//
// The rows are read on the thread pool; the catalog is never asked on the main thread.
class PartsTab : public QWidget
{
    Q_OBJECT

public:
    using SortMode = PartsTabModel::SortMode;
    using GroupMode = PartsTabModel::GroupMode;

    // The columns of the list.
    enum Column { NameColumn, NumberColumn, ColorColumn, QuantityColumn, ColumnCount };
    static constexpr int groupPickerWidth = 130;

    explicit PartsTab(QWidget *parent = nullptr);
    ~PartsTab() override;

    // Shows the inventory of `setNumber`, read anew from the shared catalog.
    void setSetNumber(const QString &setNumber);
    QString setNumber() const { return m_model.setNum(); }

    void setSearchText(const QString &text);
    void setGroupBy(GroupMode groupBy);
    void setSortBy(SortMode sortBy);
    // The cache pictures come from; the shared one unless set.
    void setImageCache(ImageCacheService *cache);

    const PartsTabModel &model() const { return m_model; }
    bool isLoading() const { return m_model.isLoading(); }

    // The parts of the screen, for tests and for the detail screen that embeds it.
    QLineEdit *searchField() const { return m_searchField; }
    QComboBox *groupPicker() const { return m_groupPicker; }
    QComboBox *sortPicker() const { return m_sortPicker; }
    QProgressBar *loadingIndicator() const { return m_loadingIndicator; }
    QLabel *loadingLabel() const { return m_loadingLabel; }
    QLabel *uniqueCountLabel() const { return m_uniqueCountLabel; }
    QLabel *totalPiecesLabel() const { return m_totalPiecesLabel; }
    QLabel *sparesCountLabel() const { return m_sparesCountLabel; }
    QLabel *noDataLabel() const { return m_noDataLabel; }
    QTreeWidget *list() const { return m_list; }
    CellPictureLoader *pictures() const { return m_pictures; }

Q_SIGNALS:
    // The rows of the set in hand have been read (or found absent).
    void loaded();

private:
    void refreshHeader();
    void refreshList();
    // A row's and a heading's item, made outside the list.
    static QTreeWidgetItem *rowItem(const PartRow &row, const QIcon &swatch);
    static QTreeWidgetItem *heading(const QString &title, const QFont &font);

    PartsTabModel m_model;
    quint64 m_generation = 0; // the read whose answer is still wanted
    CellPictureLoader *m_pictures;
    QProgressBar *m_loadingIndicator;
    QLabel *m_loadingLabel;
    QLabel *m_uniqueCountLabel;
    QLabel *m_totalPiecesLabel;
    QLabel *m_sparesCountLabel;
    QLineEdit *m_searchField;
    QComboBox *m_groupPicker;
    QComboBox *m_sortPicker;
    QStackedWidget *m_body;
    QTreeWidget *m_list;
    QLabel *m_noDataLabel;
};
