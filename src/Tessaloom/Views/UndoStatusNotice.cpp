// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/UndoStatusNotice.h"

#include "ViewModels/CollectionUndoStack.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
const QString undoLink = u"undo"_s;
} // namespace

UndoStatusNotice::UndoStatusNotice(CollectionUndoStack &undoStack, QWidget *parent)
    : QWidget(parent)
    , m_undoStack(undoStack)
    , m_label(new QLabel(this))
    , m_hideTimer(new QTimer(this))
{
    setObjectName(u"undoStatusNotice"_s);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label);
    m_label->setTextFormat(Qt::RichText);
    m_label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(m_label, &QLabel::linkActivated, this, [this](const QString &link) {
        if (link == undoLink)
            m_undoStack.undo();
    });

    m_hideTimer->setSingleShot(true);
    m_hideTimer->setInterval(defaultShowTime);
    connect(m_hideTimer, &QTimer::timeout, this, &UndoStatusNotice::dismiss);
    connect(&m_undoStack, &CollectionUndoStack::actionRecorded, this, &UndoStatusNotice::showAction);
    connect(&m_undoStack, &CollectionUndoStack::actionUndone, this, &UndoStatusNotice::showUndone);
    hide();
}

void UndoStatusNotice::setShowTime(std::chrono::milliseconds showTime)
{
    m_hideTimer->setInterval(showTime);
}

void UndoStatusNotice::showAction(const QString &statusText)
{
    m_statusText = statusText;
    //% "Undo"
    const QString link = qtTrId("undo.status.link");
    m_label->setText(u"%1 — <a href=\"%2\">%3</a>"_s.arg(statusText.toHtmlEscaped(), undoLink, link.toHtmlEscaped()));
    //% "%1. Press Ctrl+Z to undo."
    m_label->setAccessibleName(qtTrId("undo.status.accessible.").arg(statusText));
    show();
    m_hideTimer->start();
}

void UndoStatusNotice::showUndone(const QString &statusText)
{
    if (statusText.isEmpty()) {
        dismiss();
        return;
    }
    //% "Undone: %1"
    m_statusText = qtTrId("undo.status.undone.").arg(statusText);
    m_label->setText(m_statusText.toHtmlEscaped());
    m_label->setAccessibleName(m_statusText);
    show();
    m_hideTimer->start();
}

void UndoStatusNotice::dismiss()
{
    m_hideTimer->stop();
    m_statusText.clear();
    m_label->clear();
    hide();
}
