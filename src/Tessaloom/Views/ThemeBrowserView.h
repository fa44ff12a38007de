// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <optional>

class FillingColumnFitter;
class FlatThemeTableModel;
class QLabel;
class QLineEdit;
class QTableView;

// The middle column for "All Themes": a table of every theme that has sets, with its path,
// set count and years, narrowed by a search field that also understands a year ("1990"
// keeps the themes active in 1990). Selecting a theme leads the window to that theme's sets
// through themeSelected().
//
// The theme column takes the width the others leave (FillingColumnFitter); the user's
// column widths are kept under "themeBrowser.columnWidths".
//
// The themes are read from the process-wide catalog each time the view is shown, so a
// catalog built while it was hidden appears on the next visit; without a catalog the table
// is empty. The search text belongs to the window: it sets and saves it through
// searchText() / setSearchText() / searchTextChanged().
class ThemeBrowserView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)

public:
    // Least and initial widths of the columns, in device-independent pixels.
    struct ColumnWidth
    {
        int least;
        int ideal;
    };
    static ColumnWidth columnWidth(int column);

    explicit ThemeBrowserView(QWidget *parent = nullptr);

    QString searchText() const;
    void setSearchText(const QString &searchText);

    // The theme of the selected row; nothing when no row is selected.
    std::optional<int> selectedThemeID() const { return m_selectedThemeID; }

    FlatThemeTableModel *model() const { return m_model; }
    QLineEdit *searchField() const { return m_searchField; }
    QTableView *tableView() const { return m_tableView; }
    FillingColumnFitter *columnFitter() const { return m_columnFitter; }

public Q_SLOTS:
    // Reads the themes from the process-wide catalog again (it is loaded if nobody has
    // tried yet) and clears the selection. Runs on every show.
    void reloadThemes();
    void focusSearchField();

Q_SIGNALS:
    void searchTextChanged(const QString &searchText);
    // The user selected a row (by click, keys, Enter or double-click). Not emitted when
    // the selection is cleared or when the id is not among the loaded themes. Enter or a
    // double-click on the row already selected emits again for the same theme.
    void themeSelected(int id, const QString &name);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void configureColumns();
    void keepLeastWidth(int column, int newSize);
    void selectionChanged();
    void activate(const QModelIndex &index);
    void restoreSelection();
    void emitThemeSelected(int id);

    FlatThemeTableModel *m_model;
    QLabel *m_title;
    QLineEdit *m_searchField;
    QTableView *m_tableView;
    FillingColumnFitter *m_columnFitter = nullptr;
    std::optional<int> m_selectedThemeID;
    bool m_restoringSelection = false;
};
