// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TrashDetailView.h"

#include "Logging.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreChanges.h"
#include "Store/StoreError.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/SetListColumnTitle.h"
#include "Views/CachedAsyncImage.h"
#include "Views/ConditionBadge.h"
#include "Views/PriceLabel.h"
#include "Views/SymbolIcon.h"
#include "Views/TrashRowDelegate.h"

#include <QAction>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int pictureHeight = 240;
}

TrashDetailView::TrashDetailView(ManagedObjectContext &viewContext, CollectionTrash &trash, QWidget *parent)
    : QWidget(parent)
    , m_viewContext(viewContext)
    , m_trash(trash)
    , m_title(new QLabel(this))
    , m_picture(new CachedAsyncImage(this))
    , m_name(new QLabel(this))
    , m_setNumber(new QLabel(this))
    , m_trashed(new QLabel(this))
    , m_factsBox(new QWidget(this))
    , m_factsLayout(new QFormLayout(m_factsBox))
    , m_restoreAction(new QAction(this))
    , m_deleteAction(new QAction(this))
    , m_restoreButton(new QPushButton(this))
    , m_deleteButton(new QPushButton(this))
{
    setObjectName(u"trashDetailView"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(10);

    m_title->setObjectName(u"trashDetailTitle"_s);
    //% "Trashed Set"
    m_title->setText(qtTrId("trash.detail.title"));
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    m_title->setFont(titleFont);
    layout->addWidget(m_title);

    // A fixed height: a set's picture, often a thousand pixels tall, is scaled into the
    // area rather than pushing the facts below it out of sight.
    m_picture->setFixedHeight(pictureHeight);
    m_picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout->addWidget(m_picture);

    QFont nameFont = m_name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.5);
    m_name->setFont(nameFont);
    m_name->setWordWrap(true);
    for (QLabel *label : {m_name, m_setNumber, m_trashed})
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_setNumber->setForegroundRole(QPalette::PlaceholderText);
    m_trashed->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_name);
    layout->addWidget(m_setNumber);
    layout->addWidget(m_trashed);
    m_factsLayout->setContentsMargins(0, 8, 0, 0);
    m_factsLayout->setLabelAlignment(Qt::AlignRight);
    layout->addWidget(m_factsBox);

    m_restoreAction->setObjectName(u"restoreFromTrashAction"_s);
    m_restoreAction->setIcon(SymbolIcon::icon(u"arrow.uturn.backward"_s));
    //% "Restore"
    m_restoreAction->setText(qtTrId("trash.detail.restore"));
    m_restoreAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    m_deleteAction->setObjectName(u"deletePermanentlyAction"_s);
    m_deleteAction->setIcon(SymbolIcon::icon(u"trash"_s));
    //% "Delete Permanently"
    m_deleteAction->setText(qtTrId("trash.detail.deletePermanently"));
    m_deleteAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Backspace));
    for (QAction *action : {m_restoreAction, m_deleteAction}) {
        // Window-wide while the detail is on show, so they work with the keyboard still in
        // the trash list; a hidden page's shortcut does not fire.
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }
    connect(m_restoreAction, &QAction::triggered, this, &TrashDetailView::restore);
    connect(m_deleteAction, &QAction::triggered, this, &TrashDetailView::deletePermanently);

    m_restoreButton->setObjectName(u"restoreButton"_s);
    m_restoreButton->setIcon(m_restoreAction->icon());
    m_restoreButton->setText(m_restoreAction->text());
    m_restoreButton->setToolTip(m_restoreAction->shortcut().toString(QKeySequence::NativeText));
    // The way back is the prominent one; deleting is set apart in the destructive colour.
    m_restoreButton->setDefault(true);
    QFont prominent = m_restoreButton->font();
    prominent.setBold(true);
    m_restoreButton->setFont(prominent);
    m_deleteButton->setObjectName(u"deletePermanentlyButton"_s);
    m_deleteButton->setIcon(m_deleteAction->icon());
    m_deleteButton->setText(m_deleteAction->text());
    m_deleteButton->setToolTip(m_deleteAction->shortcut().toString(QKeySequence::NativeText));
    QPalette destructive = m_deleteButton->palette();
    destructive.setColor(QPalette::ButtonText, QColor(0xc6, 0x28, 0x28));
    m_deleteButton->setPalette(destructive);
    connect(m_restoreButton, &QPushButton::clicked, m_restoreAction, &QAction::trigger);
    connect(m_deleteButton, &QPushButton::clicked, m_deleteAction, &QAction::trigger);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_restoreButton);
    buttons->addWidget(m_deleteButton);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addStretch(1);

    connect(&viewContext.container(), &PersistentContainer::objectsDidChange, this, &TrashDetailView::objectsChanged);
    showCopy(std::nullopt);
}

TrashDetailView::~TrashDetailView() = default;

QString TrashDetailView::name() const
{
    return m_name->text();
}

QString TrashDetailView::setNumber() const
{
    return m_setNumber->text();
}

QString TrashDetailView::trashedText() const
{
    return m_trashed->text();
}

void TrashDetailView::setBrickSet(const std::optional<ObjectID> &brickSet)
{
    m_brickSet = brickSet;
    reload();
}

void TrashDetailView::objectsChanged(const StoreChanges &changes)
{
    if (m_brickSet && (changes.touches(EntityType::BrickSet) || changes.touches(EntityType::CatalogSet)))
        reload();
}

void TrashDetailView::reload()
{
    std::optional<BrickSetWithCatalogSet> copy;
    if (m_brickSet) {
        try {
            if (std::optional<BrickSet> brickSet = m_viewContext.existingObject<BrickSet>(*m_brickSet)) {
                copy = BrickSetWithCatalogSet{*brickSet, std::nullopt};
                if (brickSet->catalogSet)
                    copy->catalogSet = m_viewContext.existingObject<CatalogSet>(*brickSet->catalogSet);
            }
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Reading the trashed set failed:" << error.description();
        }
    }
    showCopy(copy);
}

void TrashDetailView::showCopy(const std::optional<BrickSetWithCatalogSet> &copy)
{
    m_copy = copy;
    m_restoreAction->setEnabled(copy.has_value());
    m_deleteAction->setEnabled(copy.has_value());
    m_restoreButton->setEnabled(copy.has_value());
    m_deleteButton->setEnabled(copy.has_value());
    while (m_factsLayout->rowCount() > 0)
        m_factsLayout->removeRow(0);
    m_facts.clear();
    if (!copy) {
        m_name->clear();
        m_setNumber->clear();
        m_trashed->clear();
        m_picture->setSource(QString());
        return;
    }
    const TrashRow row = TrashRowDelegate::row(*copy);
    m_name->setText(row.name);
    m_setNumber->setText(row.setNumber);
    m_trashed->setText(row.trashedText);
    const std::optional<CatalogSet> &set = copy->catalogSet;
    QStringList fallbacks;
    if (set && set->thumbnailURL)
        fallbacks.append(*set->thumbnailURL);
    m_picture->setSource(set ? set->imageURL.value_or(QString()) : QString(), fallbacks);

    const BrickSet &brickSet = copy->brickSet;
    m_facts.append({SetListColumnTitle::text(SetListColumnTitle::Kind::condition),
                    ConditionBadge::text(brickSet.overallCondition.value_or(QString()))});
    //% "Price Paid"
    m_facts.append({qtTrId("trash.detail.pricePaid"),
                    PriceLabel::text(brickSet.pricePaid, brickSet.priceCurrency.value_or(QString()))});
    for (const auto &[label, value] : std::as_const(m_facts)) {
        auto *valueLabel = new QLabel(value, m_factsBox);
        valueLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_factsLayout->addRow(label, valueLabel);
    }
}

DestructiveConfirmation TrashDetailView::deleteConfirmation() const
{
    DestructiveConfirmation confirmation;
    //% "Delete “%1” Permanently?"
    confirmation.title = qtTrId("trash.detail.deleteConfirm.").arg(name());
    //% "The set and its parts checklist will be deleted. This cannot be undone."
    confirmation.message = qtTrId("trash.detail.deleteWarning");
    confirmation.destructiveButtonText = qtTrId("trash.detail.deletePermanently");
    return confirmation;
}

void TrashDetailView::restore()
{
    if (m_copy)
        m_trash.restore(m_copy->brickSet.objectID);
}

void TrashDetailView::deletePermanently()
{
    if (!m_copy)
        return;
    const ObjectID copy = m_copy->brickSet.objectID;
    if (!m_confirm(this, deleteConfirmation()))
        return;
    m_trash.deletePermanently(copy);
}
