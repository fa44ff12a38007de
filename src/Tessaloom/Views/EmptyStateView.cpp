// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/EmptyStateView.h"

#include "Views/SymbolIcon.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {
constexpr int symbolSize = 64;
}

EmptyStateView::EmptyStateView(QWidget *parent)
    : QWidget(parent)
    , m_iconLabel(new QLabel(this))
    , m_titleLabel(new QLabel(this))
    , m_descriptionLabel(new QLabel(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->addStretch(1);
    for (QLabel *label : {m_iconLabel, m_titleLabel, m_descriptionLabel}) {
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
    }
    layout->addStretch(1);

    QFont titleFont = m_titleLabel->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.4);
    titleFont.setBold(true);
    m_titleLabel->setFont(titleFont);
    m_titleLabel->setObjectName(QStringLiteral("emptyStateTitle"));
    m_descriptionLabel->setWordWrap(true);
    m_descriptionLabel->setForegroundRole(QPalette::PlaceholderText);
    m_descriptionLabel->setObjectName(QStringLiteral("emptyStateDescription"));
}

EmptyStateView::EmptyStateView(const QString &symbolName, const QString &title, const QString &description,
                               QWidget *parent)
    : EmptyStateView(parent)
{
    setContent(symbolName, title, description);
}

void EmptyStateView::setContent(const QString &symbolName, const QString &title, const QString &description)
{
    m_symbolName = symbolName;
    m_iconLabel->setPixmap(SymbolIcon::icon(symbolName).pixmap(symbolSize, symbolSize));
    m_titleLabel->setText(title);
    m_descriptionLabel->setText(description);
}

QString EmptyStateView::title() const
{
    return m_titleLabel->text();
}

QString EmptyStateView::description() const
{
    return m_descriptionLabel->text();
}
