// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <chrono>

class CollectionUndoStack;
class QLabel;
class QTimer;

// The status bar's word on the latest change to the collection, with a link that takes it
// back: "Moved 75192-1 to the trash — Undo". It stands until the change is undone, another
// one replaces it, or a while has passed.
class UndoStatusNotice : public QWidget
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultShowTime{12'000};

    explicit UndoStatusNotice(CollectionUndoStack &undoStack, QWidget *parent = nullptr);

    // The sentence on show, without the link; empty while hidden.
    QString statusText() const { return m_statusText; }
    QLabel *label() const { return m_label; }
    void setShowTime(std::chrono::milliseconds showTime);

private:
    void showAction(const QString &statusText);
    void showUndone(const QString &statusText);
    void dismiss();

    CollectionUndoStack &m_undoStack;
    QLabel *m_label;
    QTimer *m_hideTimer;
    QString m_statusText;
};
