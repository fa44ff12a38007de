// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ChecklistRowView.h"

#include "Services/PartImageURL.h"
#include "Views/CachedAsyncImage.h"
#include "Views/ColorSwatch.h"
#include "Views/SymbolIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int pictureSide = 44;
constexpr int markSide = 20;

} // namespace

ChecklistRowView::ChecklistRowView(const ChecklistItem &item, int owned, bool isComplete, QWidget *parent)
    : QWidget(parent)
    , m_item(item)
    , m_pictureURL(PartImageURL::forPart(item.imgURL, item.colorID, item.partNum))
    , m_owned(owned)
    , m_isComplete(isComplete)
    , m_completionMark(new QLabel(this))
    , m_picture(new CachedAsyncImage(this))
    , m_nameLabel(new QLabel(this))
    , m_swatch(new ColorSwatch(item.colorHex, 12, this))
    , m_detailLabel(new QLabel(this))
    , m_countLabel(new QLabel(this))
    , m_decrementButton(new QToolButton(this))
    , m_incrementButton(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);

    m_completionMark->setFixedSize(markSide, markSide);
    layout->addWidget(m_completionMark);

    m_picture->setFixedSize(pictureSide, pictureSide);
    layout->addWidget(m_picture);

    auto *facts = new QVBoxLayout;
    facts->setSpacing(1);
    m_nameLabel->setText(item.partName);
    m_nameLabel->setToolTip(item.partName);
    m_nameLabel->setTextFormat(Qt::PlainText);
    QFont nameFont = m_nameLabel->font();
    nameFont.setBold(true);
    m_nameLabel->setFont(nameFont);
    m_nameLabel->setMinimumWidth(80);
    facts->addWidget(m_nameLabel);
    auto *detailLine = new QHBoxLayout;
    detailLine->setSpacing(4);
    detailLine->addWidget(m_swatch);
    m_detailLabel->setTextFormat(Qt::PlainText);
    m_detailLabel->setText(QStringList{item.partNum, item.colorName, item.category}.join(u" · "_s));
    m_detailLabel->setEnabled(false); // the secondary text colour
    detailLine->addWidget(m_detailLabel, 1);
    facts->addLayout(detailLine);
    layout->addLayout(facts, 1);

    m_decrementButton->setIcon(SymbolIcon::icon(u"minus.circle"_s));
    //% "Remove one"
    m_decrementButton->setAccessibleName(qtTrId("accessibility.parts.decrement"));
    m_decrementButton->setToolTip(m_decrementButton->accessibleName());
    m_decrementButton->setAutoRaise(true);
    layout->addWidget(m_decrementButton);
    m_countLabel->setAlignment(Qt::AlignCenter);
    m_countLabel->setMinimumWidth(QFontMetrics(m_countLabel->font()).horizontalAdvance(u"0000 / 0000"_s));
    layout->addWidget(m_countLabel);
    m_incrementButton->setIcon(SymbolIcon::icon(u"plus.circle"_s));
    //% "Add one"
    m_incrementButton->setAccessibleName(qtTrId("accessibility.parts.increment"));
    m_incrementButton->setToolTip(m_incrementButton->accessibleName());
    m_incrementButton->setAutoRaise(true);
    layout->addWidget(m_incrementButton);

    connect(m_decrementButton, &QToolButton::clicked, this, [this] { Q_EMIT decrementRequested(m_item); });
    connect(m_incrementButton, &QToolButton::clicked, this, [this] { Q_EMIT incrementRequested(m_item); });
    refresh();
}

void ChecklistRowView::setOwned(int owned, bool isComplete)
{
    if (owned == m_owned && isComplete == m_isComplete)
        return;
    m_owned = owned;
    m_isComplete = isComplete;
    refresh();
}

void ChecklistRowView::setImageCache(ImageCacheService *cache)
{
    m_picture->setImageCache(cache);
}

void ChecklistRowView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}

bool ChecklistRowView::isPictureRequested() const
{
    return !m_picture->urlString().isEmpty();
}

void ChecklistRowView::requestPicture()
{
    m_picture->setUrlString(m_pictureURL);
}

void ChecklistRowView::refresh()
{
    // The mark keeps its place when the row is not complete, so the pictures stay in one
    // column.
    if (m_isComplete)
        m_completionMark->setPixmap(SymbolIcon::icon(u"checkmark.circle.fill"_s).pixmap(markSide, markSide));
    else
        m_completionMark->clear();
    //% "Complete"
    m_completionMark->setAccessibleName(m_isComplete ? qtTrId("accessibility.parts.complete") : QString());
    //% "%1 / %2"
    m_countLabel->setText(qtTrId("detail.parts.ownedOfRequired.").arg(m_owned).arg(m_item.quantity));
    m_decrementButton->setEnabled(m_owned > 0);
    m_incrementButton->setEnabled(!m_isComplete);
}
