// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/ErrorExplanation.h"

#include <QWidget>

class QLabel;
class QToolButton;

// A failure as a screen shows it in place: the sentence, and below it a "Details" toggle
// that discloses the technical text (selectable, for a bug report). Without technical text
// the toggle stays hidden.
class FailureMessageView : public QWidget
{
    Q_OBJECT

public:
    explicit FailureMessageView(QWidget *parent = nullptr);

    void setFailure(const ErrorExplanation &failure);
    void clear();

    QString sentence() const;
    QString details() const;
    QToolButton *detailsToggle() const { return m_detailsToggle; }
    QLabel *sentenceLabel() const { return m_sentence; }
    QLabel *detailsLabel() const { return m_details; }

private:
    QLabel *m_sentence;
    QToolButton *m_detailsToggle;
    QLabel *m_details;
};
