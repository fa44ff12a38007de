// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;

// What a pane shows when it has nothing to show: a large symbol, a title and a line that
// says what to do next, centred.
class EmptyStateView : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyStateView(QWidget *parent = nullptr);
    EmptyStateView(const QString &symbolName, const QString &title, const QString &description,
                   QWidget *parent = nullptr);

    void setContent(const QString &symbolName, const QString &title, const QString &description);
    QString symbolName() const { return m_symbolName; }
    QString title() const;
    QString description() const;

private:
    QString m_symbolName;
    QLabel *m_iconLabel;
    QLabel *m_titleLabel;
    QLabel *m_descriptionLabel;
};
