// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/FailureMessageView.h"

#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

FailureMessageView::FailureMessageView(QWidget *parent)
    : QWidget(parent)
    , m_sentence(new QLabel(this))
    , m_detailsToggle(new QToolButton(this))
    , m_details(new QLabel(this))
{
    setObjectName(u"failureMessage"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    m_sentence->setObjectName(u"failureSentence"_s);
    m_sentence->setWordWrap(true);
    m_sentence->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_sentence);

    m_detailsToggle->setObjectName(u"failureDetailsToggle"_s);
    //% "Details"
    m_detailsToggle->setText(qtTrId("error.details"));
    m_detailsToggle->setCheckable(true);
    m_detailsToggle->setAutoRaise(true);
    m_detailsToggle->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_detailsToggle->setArrowType(Qt::RightArrow);
    layout->addWidget(m_detailsToggle, 0, Qt::AlignLeft);

    m_details->setObjectName(u"failureDetails"_s);
    m_details->setWordWrap(true);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->setForegroundRole(QPalette::PlaceholderText);
    m_details->hide();
    layout->addWidget(m_details);

    connect(m_detailsToggle, &QToolButton::toggled, this, [this](bool shown) {
        m_detailsToggle->setArrowType(shown ? Qt::DownArrow : Qt::RightArrow);
        m_details->setVisible(shown);
    });
    clear();
}

void FailureMessageView::setFailure(const ErrorExplanation &failure)
{
    m_sentence->setText(failure.sentence());
    m_details->setText(failure.details());
    m_detailsToggle->setChecked(false);
    m_detailsToggle->setVisible(!failure.details().isEmpty());
}

void FailureMessageView::clear()
{
    setFailure(ErrorExplanation());
}

QString FailureMessageView::sentence() const
{
    return m_sentence->text();
}

QString FailureMessageView::details() const
{
    return m_details->text();
}
