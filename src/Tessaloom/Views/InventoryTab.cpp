// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventoryTab.h"

#include "Logging.h"
#include "StoredVocabulary.h"
#include "Store/BrickSetQueries.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreChanges.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/MoneyText.h"
#include "ViewModels/SetDetailViewModel.h"
#include "Views/ConditionBadge.h"
#include "Views/InventoryEditor.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int copyRole = Qt::UserRole + 1;

// The commits that change the list or a row: copies, their part counts, catalog sets.
constexpr std::array<EntityType, 3> listedEntities{
    EntityType::BrickSet,
    EntityType::PartInventoryEntry,
    EntityType::CatalogSet,
};

} // namespace

QString InventoryTab::RowFacts::partsText() const
{
    if (allPartsComplete()) {
        //% "All parts complete"
        return qtTrId("detail.inventory.allPartsComplete");
    }
    if (parts.entries == 0 || parts.required == 0)
        return {};
    const QLocale locale;
    //% "%1/%2 parts"
    const QString ratio = qtTrId("detail.inventory.partsRatio.")
                              .arg(locale.toString(parts.owned), locale.toString(parts.required));
    //% "%1% complete"
    const QString progress = qtTrId("detail.inventory.partsProgress.")
                                 .arg(locale.toString(parts.owned * 100 / parts.required));
    return ratio + u" · "_s + progress;
}

InventoryTab::InventoryTab(SetDetailViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_ownCount(new QLabel(this))
    , m_addCopyButton(new QPushButton(this))
    , m_partsChecklistButton(new QPushButton(this))
    , m_list(new QListWidget(this))
    , m_editorArea(new QStackedWidget(this))
    , m_selectCopy(new QWidget(m_editorArea))
    , m_editorHolder(new QWidget(m_editorArea))
    , m_editorLayout(new QVBoxLayout(m_editorHolder))
    , m_editorDelay(new QTimer(this))
{
    setObjectName(u"inventoryTab"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);

    auto *summary = new QHBoxLayout;
    summary->addWidget(m_ownCount, 1);
    m_addCopyButton->setObjectName(u"addCopy"_s);
    //% "Add Copy"
    m_addCopyButton->setText(qtTrId("detail.inventory.addCopy"));
    m_addCopyButton->setIcon(SymbolIcon::icon(u"plus.circle"_s));
    connect(m_addCopyButton, &QPushButton::clicked, this, &InventoryTab::addCopy);
    summary->addWidget(m_addCopyButton);
    m_partsChecklistButton->setObjectName(u"partsChecklist"_s);
    //% "Parts Checklist"
    m_partsChecklistButton->setText(qtTrId("detail.inventory.partsChecklist"));
    m_partsChecklistButton->setIcon(SymbolIcon::icon(u"checklist"_s));
    connect(m_partsChecklistButton, &QPushButton::clicked, this, &InventoryTab::openPartsChecklist);
    summary->addWidget(m_partsChecklistButton);
    layout->addLayout(summary);

    auto *splitter = new QSplitter(Qt::Vertical, this);
    m_list->setObjectName(u"copies"_s);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    splitter->addWidget(m_list);
    splitter->addWidget(m_editorArea);
    splitter->setStretchFactor(1, 2);
    layout->addWidget(splitter, 1);

    auto *placeholderLayout = new QVBoxLayout(m_selectCopy);
    auto *placeholderIcon = new QLabel(m_selectCopy);
    placeholderIcon->setPixmap(SymbolIcon::icon(u"archivebox"_s).pixmap(32, 32));
    placeholderIcon->setAlignment(Qt::AlignCenter);
    //% "Select a copy to edit it"
    auto *placeholderText = new QLabel(qtTrId("detail.inventory.selectCopy"), m_selectCopy);
    placeholderText->setAlignment(Qt::AlignCenter);
    placeholderText->setForegroundRole(QPalette::PlaceholderText);
    placeholderLayout->addStretch(1);
    placeholderLayout->addWidget(placeholderIcon);
    placeholderLayout->addWidget(placeholderText);
    placeholderLayout->addStretch(1);
    m_editorLayout->setContentsMargins(0, 0, 0, 0);
    m_editorArea->addWidget(m_selectCopy);
    m_editorArea->addWidget(m_editorHolder);

    m_editorDelay->setSingleShot(true);
    m_editorDelay->setInterval(editorDelayMilliseconds);
    connect(m_editorDelay, &QTimer::timeout, this, [this] {
        m_editorReady = true;
        showEditor();
        Q_EMIT editorReadyChanged(true);
    });

    connect(m_list, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
        if (item)
            setSelectedID(item->data(copyRole).value<ObjectID>());
    });
    connect(m_list, &QWidget::customContextMenuRequested, this, [this](const QPoint &position) {
        QListWidgetItem *item = m_list->itemAt(position);
        if (!item)
            return;
        QMenu menu(this);
        menu.addActions(contextActions(item->data(copyRole).value<ObjectID>(), &menu));
        menu.exec(m_list->viewport()->mapToGlobal(position));
    });
    connect(&m_viewModel.viewContext().container(), &PersistentContainer::objectsDidChange, this,
            &InventoryTab::objectsChanged);

    m_ownTrash = new CollectionTrash(m_viewModel.viewContext(), this);
    m_trash = m_ownTrash;
    refetch();
}

InventoryTab::~InventoryTab() = default;

void InventoryTab::setEditorFactory(EditorFactory factory)
{
    m_editorFactory = std::move(factory);
    m_editorCopy.reset();
    showEditor();
}

void InventoryTab::setCollectionTrash(CollectionTrash *trash)
{
    m_trash = trash ? trash : m_ownTrash;
}

void InventoryTab::objectsChanged(const StoreChanges &changes)
{
    if (changes.touchesAny(listedEntities))
        refetch();
}

void InventoryTab::refetch()
{
    m_activeInstances.clear();
    m_rows.clear();
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    ManagedObjectContext &context = m_viewModel.viewContext();
    try {
        if (set && set->setNumber) {
            const FetchRequest<BrickSet> request(
                BrickSetQueries::setNumber(*set->setNumber) && BrickSetQueries::notTrashed(),
                {SortDescriptor{u"dateAdded"_s, true}});
            m_activeInstances = context.fetch(request);
        }
        const QLocale locale;
        for (const BrickSet &copy : std::as_const(m_activeInstances)) {
            RowFacts row;
            row.copy = copy.objectID;
            row.condition = ConditionBadge::text(copy.overallCondition.value_or(QString()));
            row.pricePaid = MoneyText::text(copy.pricePaid, copy.priceCurrency.value_or(QString()), locale);
            row.acquisition = Vocabulary::displayName(StoredVocabulary::acquisitionType(copy.acquisitionType));
            row.buildStatus = Vocabulary::displayName(StoredVocabulary::builtStatus(copy.builtStatus));
            row.isDisposed = copy.isDisposed;
            row.parts = context.partsCount(copy.objectID);
            m_rows.append(row);
        }
    } catch (const StoreError &error) {
        // Shown empty; the next change notice reads again.
        qCWarning(lcPersistence) << "Reading the copies of a set failed:" << error.description();
    }
    //% "Copies owned: %1"
    m_ownCount->setText(qtTrId("detail.inventory.ownCount.").arg(QLocale().toString(qlonglong(m_activeInstances.size()))));
    rebuildList();
    showEditor();
}

void InventoryTab::rebuildList()
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    for (const RowFacts &row : std::as_const(m_rows)) {
        QStringList first{row.condition, row.pricePaid, row.acquisition, row.buildStatus};
        first.removeAll(QString());
        QStringList second;
        if (row.isDisposed) {
            //% "Disposed"
            second.append(qtTrId("detail.inventory.disposed"));
        }
        const QString parts = row.partsText();
        if (!parts.isEmpty())
            second.append(parts);
        QString text = first.join(u" · "_s);
        if (!second.isEmpty())
            text += u'\n' + second.join(u" · "_s);
        auto *item = new QListWidgetItem(text, m_list);
        item->setData(copyRole, QVariant::fromValue(row.copy));
        if (row.allPartsComplete())
            item->setIcon(SymbolIcon::icon(u"checkmark.circle.fill"_s));
        if (m_selectedID == row.copy)
            m_list->setCurrentItem(item);
    }
}

void InventoryTab::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_selectedID && !m_activeInstances.isEmpty())
        setSelectedID(m_activeInstances.constFirst().objectID);
    if (!m_editorReady && !m_editorDelay->isActive())
        m_editorDelay->start();
}

void InventoryTab::setSelectedID(const std::optional<ObjectID> &copy)
{
    if (copy == m_selectedID)
        return;
    m_selectedID = copy;
    {
        const QSignalBlocker blocker(m_list);
        for (int row = 0; row < m_list->count(); ++row) {
            if (copy && m_list->item(row)->data(copyRole).value<ObjectID>() == *copy)
                m_list->setCurrentRow(row);
        }
    }
    showEditor();
    Q_EMIT selectedIDChanged();
}

std::optional<BrickSet> InventoryTab::selectedCopy() const
{
    if (!m_selectedID)
        return std::nullopt;
    for (const BrickSet &copy : m_activeInstances) {
        if (copy.objectID == *m_selectedID)
            return copy;
    }
    return std::nullopt;
}

void InventoryTab::showEditor()
{
    const std::optional<BrickSet> copy = selectedCopy();
    m_partsChecklistButton->setEnabled(copy.has_value());
    if (!copy || !m_editorReady || !m_editorFactory) {
        if (!copy && m_editor) {
            delete m_editor;
            m_editorCopy.reset();
        }
        m_editorArea->setCurrentWidget(m_selectCopy);
        return;
    }
    if (m_editor && m_editorCopy == copy->objectID) {
        m_editorArea->setCurrentWidget(m_editorHolder);
        return;
    }
    // The copy editor is kept and pointed at the other copy: that drops what is pending for
    // the previous one, where destroying it would write it.
    if (auto *editor = qobject_cast<InventoryEditor *>(m_editor.data())) {
        editor->setBrickSet(copy->objectID);
        m_editorCopy = copy->objectID;
        m_editorArea->setCurrentWidget(m_editorHolder);
        return;
    }
    delete m_editor;
    m_editor = m_editorFactory(copy->objectID, m_editorHolder);
    m_editorCopy = copy->objectID;
    if (m_editor)
        m_editorLayout->addWidget(m_editor);
    m_editorArea->setCurrentWidget(m_editor ? m_editorHolder : m_selectCopy);
}

void InventoryTab::addCopy()
{
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = set ? std::optional<ObjectID>(set->objectID) : m_viewModel.brickSet().catalogSet;
    copy.setAcquisitionType(AcquisitionType::unknown);
    ManagedObjectContext &context = m_viewModel.viewContext();
    try {
        copy = context.insert(copy);
        context.save();
    } catch (const StoreError &error) {
        // Dropped: the copy stays pending for the next save and is not selected.
        qCWarning(lcPersistence) << "Adding a copy failed:" << error.description();
        return;
    }
    refetch();
    setSelectedID(copy.objectID);
}

void InventoryTab::moveToTrash(const ObjectID &copy)
{
    if (m_trash)
        m_trash->moveToTrash(copy);
    if (m_selectedID == copy)
        setSelectedID(std::nullopt);
}

QList<QAction *> InventoryTab::contextActions(const ObjectID &copy, QObject *owner)
{
    //% "Move to Trash"
    auto *trash = new QAction(SymbolIcon::icon(u"trash"_s), qtTrId("detail.inventory.moveToTrash"), owner);
    trash->setObjectName(u"moveToTrash"_s);
    connect(trash, &QAction::triggered, this, [this, copy] { moveToTrash(copy); });
    return {trash};
}

void InventoryTab::openPartsChecklist()
{
    if (const std::optional<BrickSet> copy = selectedCopy())
        Q_EMIT partsChecklistRequested(copy->objectID.uriRepresentation());
}
