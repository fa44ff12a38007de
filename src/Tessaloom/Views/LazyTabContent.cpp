// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/LazyTabContent.h"

#include <QVBoxLayout>

LazyTabContent::LazyTabContent(ContentFactory factory, QWidget *parent)
    : QWidget(parent)
    , m_factory(std::move(factory))
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
}

void LazyTabContent::setSelected(bool selected)
{
    m_isSelected = selected;
    if (selected && !m_hasAppeared) {
        m_hasAppeared = true;
        m_content = m_factory(this);
        m_layout->addWidget(m_content);
        Q_EMIT contentBuilt(m_content);
    }
    if (m_content)
        m_content->setVisible(selected);
}
