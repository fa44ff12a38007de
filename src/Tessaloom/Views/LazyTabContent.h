// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <functional>

class QVBoxLayout;

// One tab's page that builds its content the first time the tab is selected and keeps it
// from then on, only hidden while another tab is open: a heavy tab costs nothing until it
// is first opened, and keeps its state (scroll position, search text) when the user
// comes back.
class LazyTabContent : public QWidget
{
    Q_OBJECT

public:
    using ContentFactory = std::function<QWidget *(QWidget *parent)>;

    explicit LazyTabContent(ContentFactory factory, QWidget *parent = nullptr);

    bool isSelected() const { return m_isSelected; }
    // Selecting builds the content on the first time.
    void setSelected(bool selected);
    bool hasAppeared() const { return m_hasAppeared; }
    // Nothing until the tab has appeared.
    QWidget *content() const { return m_content; }

Q_SIGNALS:
    void contentBuilt(QWidget *content);

private:
    ContentFactory m_factory;
    QVBoxLayout *m_layout;
    QWidget *m_content = nullptr;
    bool m_isSelected = false;
    bool m_hasAppeared = false;
};
