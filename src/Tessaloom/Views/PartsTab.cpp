// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PartsTab.h"

#include "Services/PartImageURL.h"
#include "Services/RebrickableCatalog.h"
#include "Views/CellPictureLoader.h"
#include "Views/ColorSwatch.h"
#include "Views/PartPictureDelegate.h"

#include <QComboBox>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QHash>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize pictureSize(40, 40);

QString sectionTitle(PartsTabModel::Section::Kind kind)
{
    if (kind == PartsTabModel::Section::Kind::spare) {
        //% "Spare Parts"
        return qtTrId("detail.parts.spareParts");
    }
    //% "Parts"
    return qtTrId("detail.parts.parts");
}

} // namespace

PartsTab::PartsTab(QWidget *parent)
    : QWidget(parent)
    , m_pictures(new CellPictureLoader(pictureSize, 4 * 1024 * 1024, this))
    , m_loadingIndicator(new QProgressBar(this))
    , m_loadingLabel(new QLabel(this))
    , m_uniqueCountLabel(new QLabel(this))
    , m_totalPiecesLabel(new QLabel(this))
    , m_sparesCountLabel(new QLabel(this))
    , m_searchField(new QLineEdit(this))
    , m_groupPicker(new QComboBox(this))
    , m_sortPicker(new QComboBox(this))
    , m_body(new QStackedWidget(this))
    , m_list(new QTreeWidget(this))
    , m_noDataLabel(new QLabel(this))
{
    auto *layout = new QVBoxLayout(this);

    auto *header = new QHBoxLayout;
    m_loadingIndicator->setRange(0, 0);
    m_loadingIndicator->setTextVisible(false);
    m_loadingIndicator->setMaximumWidth(64);
    m_loadingIndicator->setObjectName(u"partsLoadingIndicator"_s);
    //% "Loading parts…"
    m_loadingLabel->setText(qtTrId("detail.parts.loading"));
    m_loadingLabel->setObjectName(u"partsLoadingLabel"_s);
    m_uniqueCountLabel->setObjectName(u"partsUniqueCount"_s);
    m_totalPiecesLabel->setObjectName(u"partsTotalPieces"_s);
    m_sparesCountLabel->setObjectName(u"partsSparesCount"_s);
    for (QWidget *part : {static_cast<QWidget *>(m_loadingIndicator), static_cast<QWidget *>(m_loadingLabel),
                          static_cast<QWidget *>(m_uniqueCountLabel), static_cast<QWidget *>(m_totalPiecesLabel),
                          static_cast<QWidget *>(m_sparesCountLabel)})
        header->addWidget(part);
    header->addStretch(1);

    //% "Group"
    const QString groupTitle = qtTrId("detail.parts.group");
    m_groupPicker->setObjectName(u"partsGroupPicker"_s);
    m_groupPicker->setAccessibleName(groupTitle);
    m_groupPicker->setToolTip(groupTitle);
    m_groupPicker->setFixedWidth(groupPickerWidth);
    //% "None"
    m_groupPicker->addItem(qtTrId("detail.parts.group.none"), QVariant::fromValue(int(GroupMode::none)));
    //% "Color"
    m_groupPicker->addItem(qtTrId("detail.parts.group.color"), QVariant::fromValue(int(GroupMode::color)));
    //% "Category"
    m_groupPicker->addItem(qtTrId("detail.parts.group.category"), QVariant::fromValue(int(GroupMode::category)));
    header->addWidget(m_groupPicker);

    //% "Sort"
    const QString sortTitle = qtTrId("detail.parts.sort");
    m_sortPicker->setObjectName(u"partsSortPicker"_s);
    m_sortPicker->setAccessibleName(sortTitle);
    m_sortPicker->setToolTip(sortTitle);
    //% "Name"
    m_sortPicker->addItem(qtTrId("detail.parts.sort.name"), QVariant::fromValue(int(SortMode::name)));
    //% "Quantity"
    m_sortPicker->addItem(qtTrId("detail.parts.sort.quantity"), QVariant::fromValue(int(SortMode::quantity)));
    //% "Part Number"
    m_sortPicker->addItem(qtTrId("detail.parts.sort.partNumber"), QVariant::fromValue(int(SortMode::partNumber)));
    header->addWidget(m_sortPicker);
    layout->addLayout(header);

    m_searchField->setObjectName(u"partsSearchField"_s);
    m_searchField->setClearButtonEnabled(true);
    //% "Filter parts"
    m_searchField->setPlaceholderText(qtTrId("detail.parts.filterPrompt"));
    layout->addWidget(m_searchField);

    m_list->setObjectName(u"partsList"_s);
    m_list->setColumnCount(ColumnCount);
    m_list->setHeaderHidden(true);
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformRowHeights(false);
    m_list->setIconSize(pictureSize);
    m_list->setItemDelegateForColumn(NameColumn, new PartPictureDelegate(*m_pictures, pictureSize, m_list));
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    for (const int column : {int(NumberColumn), int(ColorColumn), int(QuantityColumn)})
        m_list->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);

    m_noDataLabel->setObjectName(u"partsNoData"_s);
    //% "No parts data for this set."
    m_noDataLabel->setText(qtTrId("detail.parts.noDataShort"));
    m_noDataLabel->setAlignment(Qt::AlignCenter);
    m_noDataLabel->setEnabled(false);
    m_body->addWidget(m_list);
    m_body->addWidget(m_noDataLabel);
    layout->addWidget(m_body, 1);

    connect(m_searchField, &QLineEdit::textChanged, this, &PartsTab::setSearchText);
    connect(m_groupPicker, &QComboBox::currentIndexChanged, this,
            [this] { setGroupBy(GroupMode(m_groupPicker->currentData().toInt())); });
    connect(m_sortPicker, &QComboBox::currentIndexChanged, this,
            [this] { setSortBy(SortMode(m_sortPicker->currentData().toInt())); });

    m_groupPicker->setCurrentIndex(m_groupPicker->findData(int(m_model.groupBy())));
    m_sortPicker->setCurrentIndex(m_sortPicker->findData(int(m_model.sortBy())));
    refreshHeader();
    refreshList();
}

PartsTab::~PartsTab() = default;

void PartsTab::setSetNumber(const QString &setNumber)
{
    const quint64 generation = ++m_generation;
    m_model.setSetNum(setNumber);
    m_model.setParts({});
    m_model.setLoading(true);
    refreshHeader();
    refreshList();

    // The shared catalog is fetched on the worker as well: the first caller opens its file.
    auto *watcher = new QFutureWatcher<QList<PartRow>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, generation] {
        watcher->deleteLater();
        // A later set number has been asked for meanwhile: its read decides.
        if (generation != m_generation)
            return;
        m_model.setParts(watcher->result());
        m_model.setLoading(false);
        refreshHeader();
        refreshList();
        Q_EMIT loaded();
    });
    watcher->setFuture(QtConcurrent::run([setNumber] {
        const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
        return catalog ? PartsTabModel::readRows(*catalog, setNumber) : QList<PartRow>();
    }));
}

void PartsTab::setSearchText(const QString &text)
{
    if (m_searchField->text() != text)
        m_searchField->setText(text); // comes back here through textChanged
    if (text == m_model.searchText())
        return;
    m_model.setSearchText(text);
    refreshList();
}

void PartsTab::setGroupBy(GroupMode groupBy)
{
    const int index = m_groupPicker->findData(int(groupBy));
    if (m_groupPicker->currentIndex() != index)
        m_groupPicker->setCurrentIndex(index);
    if (groupBy == m_model.groupBy())
        return;
    m_model.setGroupBy(groupBy);
    refreshList();
}

void PartsTab::setSortBy(SortMode sortBy)
{
    const int index = m_sortPicker->findData(int(sortBy));
    if (m_sortPicker->currentIndex() != index)
        m_sortPicker->setCurrentIndex(index);
    if (sortBy == m_model.sortBy())
        return;
    m_model.setSortBy(sortBy);
    refreshList();
}

void PartsTab::setImageCache(ImageCacheService *cache)
{
    m_pictures->setImageCache(cache);
}

void PartsTab::refreshHeader()
{
    const bool loading = m_model.isLoading();
    m_loadingIndicator->setVisible(loading);
    m_loadingLabel->setVisible(loading);
    m_uniqueCountLabel->setVisible(!loading);
    m_totalPiecesLabel->setVisible(!loading);
    m_sparesCountLabel->setVisible(!loading && m_model.spareCount() > 0);
    //% "%Ln unique part(s)"
    m_uniqueCountLabel->setText(qtTrId("detail.parts.uniqueCount.", m_model.uniqueCount()));
    //% "%Ln piece(s)"
    m_totalPiecesLabel->setText(qtTrId("detail.parts.totalPieces.", m_model.totalPieces()));
    //% "%Ln spare(s)"
    m_sparesCountLabel->setText(m_model.spareCount() > 0 ? qtTrId("detail.parts.sparesCount.", m_model.spareCount())
                                                         : QString());
}

void PartsTab::refreshList()
{
    m_list->clear();
    const bool noData = !m_model.isLoading() && m_model.parts().isEmpty();
    m_body->setCurrentWidget(noData ? static_cast<QWidget *>(m_noDataLabel) : static_cast<QWidget *>(m_list));
    // The items are built apart from the list and handed to it in one batch: an item made
    // inside the list announces each row and each value it is given to the view, which for
    // the largest inventories cost more than the items themselves.
    QFont headingFont = m_list->font();
    headingFont.setBold(true);
    QHash<QString, QIcon> swatches; // a set uses few colours on many rows
    const auto swatch = [&swatches](const QString &hex) {
        auto found = swatches.find(hex);
        if (found == swatches.end())
            found = swatches.insert(hex, ColorSwatch::icon(hex));
        return found.value();
    };
    QList<QTreeWidgetItem *> sectionItems;
    QList<QTreeWidgetItem *> headings;
    for (const PartsTabModel::Section &section : m_model.sections()) {
        QTreeWidgetItem *sectionItem = heading(sectionTitle(section.kind), headingFont);
        headings.append(sectionItem);
        for (const PartsTabModel::Block &block : section.blocks) {
            QTreeWidgetItem *blockParent = sectionItem;
            if (!block.title.isEmpty()) {
                blockParent = heading(block.title, headingFont);
                headings.append(blockParent);
                if (block.colorID)
                    blockParent->setIcon(NameColumn, swatch(block.colorHex));
                sectionItem->addChild(blockParent);
            }
            QList<QTreeWidgetItem *> rowItems;
            rowItems.reserve(block.rows.size());
            for (const PartRow &row : block.rows)
                rowItems.append(rowItem(row, swatch(row.colorHex)));
            blockParent->addChildren(rowItems);
        }
        sectionItems.append(sectionItem);
    }
    m_list->addTopLevelItems(sectionItems);
    // Spanning is the list's to keep, so it is asked for once the headings are in it.
    for (QTreeWidgetItem *item : std::as_const(headings))
        item->setFirstColumnSpanned(true);
    m_list->expandAll();
}

QTreeWidgetItem *PartsTab::heading(const QString &title, const QFont &font)
{
    auto *item = new QTreeWidgetItem;
    item->setText(NameColumn, title);
    item->setFont(NameColumn, font);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}

QTreeWidgetItem *PartsTab::rowItem(const PartRow &row, const QIcon &swatch)
{
    auto *item = new QTreeWidgetItem;
    item->setFlags(Qt::ItemIsEnabled);
    item->setData(NameColumn, Qt::UserRole, row.id);
    item->setData(NameColumn, PartPictureDelegate::PictureURLRole,
                  PartImageURL::forPart(row.imgURL, row.colorID, row.partNum));
    item->setText(NameColumn, row.partName);
    item->setToolTip(NameColumn, row.partName);
    item->setText(NumberColumn, row.partNum);
    item->setText(ColorColumn, row.colorName);
    item->setIcon(ColorColumn, swatch);
    //% "×%L1"
    item->setText(QuantityColumn, qtTrId("parts.quantity.").arg(row.quantity));
    item->setTextAlignment(QuantityColumn, Qt::AlignRight | Qt::AlignVCenter);
    return item;
}
