// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetPreviewView.h"

#include "ViewModels/SetListColumnTitle.h"
#include "ViewModels/SetListGroupModel.h"
#include "Views/CachedAsyncImage.h"
#include "Views/ConditionBadge.h"

#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int pictureHeight = 280;
}

SetPreviewView::SetPreviewView(QWidget *parent)
    : QWidget(parent)
    , m_picture(new CachedAsyncImage(this))
    , m_name(new QLabel(this))
    , m_setNumber(new QLabel(this))
    , m_factsBox(new QWidget(this))
    , m_factsLayout(new QFormLayout(m_factsBox))
{
    setObjectName(u"setPreview"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(10);
    m_picture->setMinimumHeight(pictureHeight);
    m_picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout->addWidget(m_picture);

    QFont nameFont = m_name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.5);
    m_name->setFont(nameFont);
    m_name->setWordWrap(true);
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_setNumber->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_setNumber->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_name);
    layout->addWidget(m_setNumber);
    m_factsLayout->setContentsMargins(0, 8, 0, 0);
    m_factsLayout->setLabelAlignment(Qt::AlignRight);
    layout->addWidget(m_factsBox);
    layout->addStretch(1);
}

QString SetPreviewView::name() const
{
    return m_name->text();
}

QString SetPreviewView::setNumber() const
{
    return m_setNumber->text();
}

QList<std::pair<QString, QString>> SetPreviewView::facts() const
{
    return m_facts;
}

void SetPreviewView::setFacts(const QList<std::pair<QString, QString>> &facts)
{
    m_facts = facts;
    while (m_factsLayout->rowCount() > 0)
        m_factsLayout->removeRow(0);
    for (const auto &[label, value] : facts) {
        auto *valueLabel = new QLabel(value, m_factsBox);
        valueLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_factsLayout->addRow(label, valueLabel);
    }
}

void SetPreviewView::showCopy(const BrickSetWithCatalogSet &copy)
{
    const std::optional<CatalogSet> &set = copy.catalogSet;
    const QString number = set ? set->setNumber.value_or(QString()) : QString();
    m_name->setText(SetListGroupModel::nameText(copy));
    m_setNumber->setText(number);
    QStringList fallbacks;
    if (set && set->thumbnailURL)
        fallbacks.append(*set->thumbnailURL);
    m_picture->setSource(set ? set->imageURL.value_or(QString()) : QString(), fallbacks);

    const QLocale locale;
    QList<std::pair<QString, QString>> facts;
    if (set) {
        facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::theme), set->themeName.value_or(QString())});
        facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::year), set->year > 0 ? QString::number(set->year) : QString()});
        facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::pieces), locale.toString(int(set->pieceCount))});
    }
    facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::condition), ConditionBadge::text(copy.brickSet.overallCondition.value_or(QString()))});
    facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::added),
                  copy.brickSet.dateAdded ? locale.toString(copy.brickSet.dateAdded->toLocalTime().date(), QLocale::LongFormat)
                                          : QString()});
    if (copy.brickSet.isFavorite)
        facts.append({qtTrId("accessibility.favorited"), u"★"_s});
    setFacts(facts);
}

void SetPreviewView::showCatalogSet(const CatalogSetResult &set, const QString &themeName)
{
    m_name->setText(set.name.isEmpty() ? set.setNum : set.name);
    m_setNumber->setText(set.setNum);
    m_picture->setSource(set.imgURL.value_or(QString()));
    const QLocale locale;
    setFacts({
        {SetListColumnTitle::text(SetListColumnTitle::Kind::theme), themeName},
        {SetListColumnTitle::text(SetListColumnTitle::Kind::year), set.year > 0 ? QString::number(set.year) : QString()},
        {SetListColumnTitle::text(SetListColumnTitle::Kind::pieces), locale.toString(set.numParts)},
    });
}
