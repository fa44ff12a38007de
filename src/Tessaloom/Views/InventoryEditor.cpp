// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventoryEditor.h"

#include "OfferedCurrencies.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/InventoryEditorState.h"
#include "Views/OptionalDateEdit.h"
#include "Views/PriceLabel.h"
#include "Views/SymbolIcon.h"
#include "Vocabulary.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QShowEvent>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// A picker listing every case of a vocabulary by display name, in declaration order, so a
// row's index is the case's position in allCases().
template <ClosedVocabulary E>
QComboBox *vocabularyPicker(QWidget *parent, const QString &objectName)
{
    auto *picker = new QComboBox(parent);
    picker->setObjectName(objectName);
    for (const E value : Vocabulary::allCases<E>())
        picker->addItem(Vocabulary::displayName(value), Vocabulary::rawValue(value));
    return picker;
}

template <ClosedVocabulary E>
void showCase(QComboBox *picker, E value)
{
    picker->setCurrentIndex(int(Vocabulary::allCases<E>().indexOf(value)));
}

template <ClosedVocabulary E>
E pickedCase(int index)
{
    return Vocabulary::allCases<E>().value(index);
}

QComboBox *currencyPicker(QWidget *parent, const QString &objectName)
{
    auto *picker = new QComboBox(parent);
    picker->setObjectName(objectName);
    picker->addItems(OfferedCurrencies::codes());
    return picker;
}

// A stored currency outside the offered ones is still shown, as its own entry, rather
// than replaced by the first code in the list.
void showCurrency(QComboBox *picker, const QString &code)
{
    int index = picker->findText(code);
    if (index < 0 && !code.isEmpty()) {
        picker->addItem(code);
        index = picker->count() - 1;
    }
    picker->setCurrentIndex(index);
}

QLabel *readPriceLabel(QWidget *parent, const QString &objectName)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(u"CHF 00,000.00"_s));
    return label;
}

QFormLayout *sectionLayout(QGroupBox *section)
{
    auto *layout = new QFormLayout(section);
    layout->setLabelAlignment(Qt::AlignRight);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return layout;
}

void nameControl(QWidget *control, const QString &name)
{
    control->setAccessibleName(name);
}

// A picked day is stored as the start of that day on the user's clock, as the collection
// file's day dates are, and shown as the day it falls on there.
std::optional<QDateTime> storedDay(const std::optional<QDate> &day)
{
    return day ? std::optional<QDateTime>(day->startOfDay()) : std::nullopt;
}

std::optional<QDate> shownDay(const std::optional<QDateTime> &date)
{
    return date ? std::optional<QDate>(date->toLocalTime().date()) : std::nullopt;
}

} // namespace

InventoryEditor::InventoryEditor(ManagedObjectContext &viewContext, const std::optional<ObjectID> &brickSet,
                                 QWidget *parent)
    : QWidget(parent)
    , m_state(new InventoryEditorState(viewContext, this))
{
    setObjectName(u"inventoryEditor"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    layout->addWidget(m_scrollArea);

    auto *content = new QWidget(m_scrollArea);
    content->setObjectName(u"inventoryEditorContent"_s);
    auto *contentLayout = new QVBoxLayout(content);
    contentLayout->setSpacing(12);
    buildAcquisitionSection(content);
    buildConditionSection(content);
    buildDisposalSection(content);
    buildNotesSection(content);
    for (QGroupBox *section : {m_acquisitionSection, m_conditionSection, m_disposalSection, m_notesSection})
        contentLayout->addWidget(section);

    m_moveToTrash = new QPushButton(SymbolIcon::icon(u"trash"_s),
                                    //% "Move to Trash"
                                    qtTrId("detail.inventory.moveToTrash"), content);
    m_moveToTrash->setObjectName(u"moveToTrashButton"_s);
    m_moveToTrash->setVisible(false);
    connect(m_moveToTrash, &QPushButton::clicked, this, &InventoryEditor::moveToTrash);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_moveToTrash);
    buttons->addStretch(1);
    contentLayout->addLayout(buttons);
    contentLayout->addStretch(1);
    m_scrollArea->setWidget(content);
    orderTabs();

    connect(m_state, &InventoryEditorState::loaded, this, &InventoryEditor::fillFromState);
    connect(m_state, &InventoryEditorState::saved, this, &InventoryEditor::saved);
    m_state->setBrickSet(brickSet);
    fillFromState();
    watchWindow();
}

InventoryEditor::~InventoryEditor()
{
    flushPendingSave();
}

std::optional<ObjectID> InventoryEditor::brickSet() const
{
    return m_state->brickSet();
}

void InventoryEditor::setBrickSet(const std::optional<ObjectID> &brickSet)
{
    m_state->setBrickSet(brickSet);
}

void InventoryEditor::flushPendingSave()
{
    m_state->flushPendingSave();
}

void InventoryEditor::setTrash(CollectionTrash *trash)
{
    m_trash = trash;
    m_moveToTrash->setVisible(trash != nullptr);
}

void InventoryEditor::buildAcquisitionSection(QWidget *content)
{
    //% "Acquisition"
    m_acquisitionSection = new QGroupBox(qtTrId("detail.inventory.acquisition"), content);
    m_acquisitionSection->setObjectName(u"acquisitionSection"_s);
    QFormLayout *form = sectionLayout(m_acquisitionSection);

    m_acquisitionType = vocabularyPicker<AcquisitionType>(m_acquisitionSection, u"acquisitionTypePicker"_s);
    //% "How Acquired"
    const QString howAcquired = qtTrId("detail.inventory.howAcquired");
    nameControl(m_acquisitionType, howAcquired);
    form->addRow(howAcquired, m_acquisitionType);
    connect(m_acquisitionType, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.acquisitionType = pickedCase<AcquisitionType>(index); });
    });

    m_pricePaid = new QLineEdit(m_acquisitionSection);
    m_pricePaid->setObjectName(u"pricePaidField"_s);
    m_pricePaid->setPlaceholderText(u"0.00"_s);
    m_priceCurrency = currencyPicker(m_acquisitionSection, u"priceCurrencyPicker"_s);
    m_pricePaidRead = readPriceLabel(m_acquisitionSection, u"pricePaidRead"_s);
    //% "Price Paid"
    const QString pricePaid = qtTrId("detail.inventory.pricePaid");
    //% "Currency"
    const QString currency = qtTrId("detail.inventory.currency");
    nameControl(m_pricePaid, pricePaid);
    nameControl(m_priceCurrency, currency);
    nameControl(m_pricePaidRead, pricePaid);
    auto *priceRow = new QHBoxLayout;
    priceRow->addWidget(m_pricePaid, 1);
    priceRow->addWidget(m_priceCurrency);
    priceRow->addWidget(m_pricePaidRead);
    form->addRow(pricePaid, priceRow);
    if (auto *label = qobject_cast<QLabel *>(form->labelForField(priceRow)))
        label->setBuddy(m_pricePaid);
    connect(m_pricePaid, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_state->edit([&text](InventoryEditorFields &fields) { fields.pricePaidText = text; });
        showReadPrices();
    });
    connect(m_priceCurrency, &QComboBox::textActivated, this, [this](const QString &code) {
        m_state->edit([&code](InventoryEditorFields &fields) { fields.priceCurrency = code; });
        showReadPrices();
    });

    m_acquisitionDate = new OptionalDateEdit(m_acquisitionSection);
    m_acquisitionDate->setObjectName(u"acquisitionDateEdit"_s);
    //% "Date"
    const QString date = qtTrId("detail.inventory.date");
    m_acquisitionDate->setAccessibleLabel(date);
    form->addRow(date, m_acquisitionDate);
    connect(m_acquisitionDate, &OptionalDateEdit::dateEdited, this, [this](const std::optional<QDate> &day) {
        m_state->edit([&day](InventoryEditorFields &fields) { fields.acquisitionDate = storedDay(day); });
    });

    m_source = new QLineEdit(m_acquisitionSection);
    m_source->setObjectName(u"sourceField"_s);
    //% "Where it came from"
    m_source->setPlaceholderText(qtTrId("detail.inventory.sourcePrompt"));
    //% "Source"
    const QString source = qtTrId("detail.inventory.source");
    nameControl(m_source, source);
    form->addRow(source, m_source);
    connect(m_source, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_state->edit([&text](InventoryEditorFields &fields) { fields.source = text; });
    });
}

void InventoryEditor::buildConditionSection(QWidget *content)
{
    //% "Condition"
    m_conditionSection = new QGroupBox(qtTrId("detail.inventory.condition"), content);
    m_conditionSection->setObjectName(u"conditionSection"_s);
    QFormLayout *form = sectionLayout(m_conditionSection);
    const auto addPicker = [this, form](QComboBox *picker, const QString &label) {
        nameControl(picker, label);
        form->addRow(label, picker);
    };

    m_overallCondition = vocabularyPicker<OverallCondition>(m_conditionSection, u"overallConditionPicker"_s);
    //% "Overall"
    addPicker(m_overallCondition, qtTrId("detail.inventory.overall"));
    connect(m_overallCondition, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.overallCondition = pickedCase<OverallCondition>(index); });
    });
    m_completeness = vocabularyPicker<SetCompleteness>(m_conditionSection, u"completenessPicker"_s);
    //% "Completeness"
    addPicker(m_completeness, qtTrId("detail.inventory.completeness"));
    connect(m_completeness, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.completeness = pickedCase<SetCompleteness>(index); });
    });
    m_boxCondition = vocabularyPicker<BoxCondition>(m_conditionSection, u"boxConditionPicker"_s);
    //% "Box"
    addPicker(m_boxCondition, qtTrId("detail.inventory.box"));
    connect(m_boxCondition, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.boxCondition = pickedCase<BoxCondition>(index); });
    });
    m_instructionsCondition = vocabularyPicker<InstructionsCondition>(m_conditionSection, u"instructionsConditionPicker"_s);
    //% "Instructions"
    addPicker(m_instructionsCondition, qtTrId("detail.inventory.instructions"));
    connect(m_instructionsCondition, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) {
            fields.instructionsCondition = pickedCase<InstructionsCondition>(index);
        });
    });
    m_builtStatus = vocabularyPicker<BuiltStatus>(m_conditionSection, u"builtStatusPicker"_s);
    //% "Build Status"
    addPicker(m_builtStatus, qtTrId("detail.inventory.builtStatus"));
    connect(m_builtStatus, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.builtStatus = pickedCase<BuiltStatus>(index); });
    });
    m_stickerStatus = vocabularyPicker<StickerStatus>(m_conditionSection, u"stickerStatusPicker"_s);
    //% "Stickers"
    addPicker(m_stickerStatus, qtTrId("detail.inventory.stickers"));
    connect(m_stickerStatus, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.stickerStatus = pickedCase<StickerStatus>(index); });
    });
}

void InventoryEditor::buildDisposalSection(QWidget *content)
{
    //% "Disposal"
    m_disposalSection = new QGroupBox(qtTrId("detail.inventory.disposal"), content);
    m_disposalSection->setObjectName(u"disposalSection"_s);
    auto *sectionLayout = new QVBoxLayout(m_disposalSection);

    //% "Disposed"
    m_isDisposed = new QCheckBox(qtTrId("detail.inventory.disposed"), m_disposalSection);
    m_isDisposed->setObjectName(u"disposedToggle"_s);
    nameControl(m_isDisposed, m_isDisposed->text());
    sectionLayout->addWidget(m_isDisposed);
    connect(m_isDisposed, &QCheckBox::toggled, this, [this](bool disposed) {
        m_disposalDetails->setVisible(disposed);
        if (!m_filling)
            m_state->edit([disposed](InventoryEditorFields &fields) { fields.isDisposed = disposed; });
    });

    m_disposalDetails = new QWidget(m_disposalSection);
    m_disposalDetails->setObjectName(u"disposalDetails"_s);
    auto *form = new QFormLayout(m_disposalDetails);
    form->setContentsMargins(0, 0, 0, 0);
    form->setLabelAlignment(Qt::AlignRight);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    sectionLayout->addWidget(m_disposalDetails);

    m_disposalType = vocabularyPicker<DisposalType>(m_disposalDetails, u"disposalTypePicker"_s);
    //% "How"
    const QString how = qtTrId("detail.inventory.how");
    nameControl(m_disposalType, how);
    form->addRow(how, m_disposalType);
    connect(m_disposalType, &QComboBox::activated, this, [this](int index) {
        m_state->edit([index](InventoryEditorFields &fields) { fields.disposalType = pickedCase<DisposalType>(index); });
    });

    m_disposalDate = new OptionalDateEdit(m_disposalDetails);
    m_disposalDate->setObjectName(u"disposalDateEdit"_s);
    const QString date = qtTrId("detail.inventory.date");
    m_disposalDate->setAccessibleLabel(date);
    form->addRow(date, m_disposalDate);
    connect(m_disposalDate, &OptionalDateEdit::dateEdited, this, [this](const std::optional<QDate> &day) {
        m_state->edit([&day](InventoryEditorFields &fields) { fields.disposalDate = storedDay(day); });
    });

    m_disposalPrice = new QLineEdit(m_disposalDetails);
    m_disposalPrice->setObjectName(u"disposalPriceField"_s);
    m_disposalPrice->setPlaceholderText(u"0.00"_s);
    m_disposalCurrency = currencyPicker(m_disposalDetails, u"disposalCurrencyPicker"_s);
    m_disposalPriceRead = readPriceLabel(m_disposalDetails, u"disposalPriceRead"_s);
    //% "Sale Price"
    const QString salePrice = qtTrId("detail.inventory.salePrice");
    nameControl(m_disposalPrice, salePrice);
    nameControl(m_disposalCurrency, qtTrId("detail.inventory.currency"));
    nameControl(m_disposalPriceRead, salePrice);
    auto *priceRow = new QHBoxLayout;
    priceRow->addWidget(m_disposalPrice, 1);
    priceRow->addWidget(m_disposalCurrency);
    priceRow->addWidget(m_disposalPriceRead);
    form->addRow(salePrice, priceRow);
    if (auto *label = qobject_cast<QLabel *>(form->labelForField(priceRow)))
        label->setBuddy(m_disposalPrice);
    connect(m_disposalPrice, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_state->edit([&text](InventoryEditorFields &fields) { fields.disposalPriceText = text; });
        showReadPrices();
    });
    connect(m_disposalCurrency, &QComboBox::textActivated, this, [this](const QString &code) {
        m_state->edit([&code](InventoryEditorFields &fields) { fields.disposalCurrency = code; });
        showReadPrices();
    });

    m_disposalNotes = new QLineEdit(m_disposalDetails);
    m_disposalNotes->setObjectName(u"disposalNotesField"_s);
    //% "Notes"
    const QString notes = qtTrId("detail.inventory.notes");
    nameControl(m_disposalNotes, notes);
    form->addRow(notes, m_disposalNotes);
    connect(m_disposalNotes, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_state->edit([&text](InventoryEditorFields &fields) { fields.disposalNotes = text; });
    });
}

void InventoryEditor::buildNotesSection(QWidget *content)
{
    const QString notes = qtTrId("detail.inventory.notes");
    m_notesSection = new QGroupBox(notes, content);
    m_notesSection->setObjectName(u"notesSection"_s);
    auto *layout = new QVBoxLayout(m_notesSection);
    m_notes = new QPlainTextEdit(m_notesSection);
    m_notes->setObjectName(u"notesField"_s);
    // Tab moves on to the next control, as everywhere else in the form.
    m_notes->setTabChangesFocus(true);
    m_notes->setMinimumHeight(m_notes->fontMetrics().lineSpacing() * 5);
    nameControl(m_notes, notes);
    layout->addWidget(m_notes);
    connect(m_notes, &QPlainTextEdit::textChanged, this, [this] {
        if (m_filling)
            return;
        const QString text = m_notes->toPlainText();
        m_state->edit([&text](InventoryEditorFields &fields) { fields.notes = text; });
    });
}

// Top to bottom, the order in which the form reads.
void InventoryEditor::orderTabs()
{
    const QList<QWidget *> order{
        m_acquisitionType,  m_pricePaid,        m_priceCurrency,
        m_acquisitionDate->presentBox(),        m_acquisitionDate->dateEdit(),
        m_source,           m_overallCondition, m_completeness,
        m_boxCondition,     m_instructionsCondition, m_builtStatus,
        m_stickerStatus,    m_isDisposed,       m_disposalType,
        m_disposalDate->presentBox(),           m_disposalDate->dateEdit(),
        m_disposalPrice,    m_disposalCurrency, m_disposalNotes,
        m_notes,            m_moveToTrash,
    };
    for (qsizetype index = 1; index < order.size(); ++index)
        QWidget::setTabOrder(order[index - 1], order[index]);
}

void InventoryEditor::fillFromState()
{
    const QScopedValueRollback filling(m_filling, true);
    const InventoryEditorFields &fields = m_state->fields();
    m_scrollArea->widget()->setEnabled(m_state->hasCopy());
    showCase(m_acquisitionType, fields.acquisitionType);
    m_pricePaid->setText(fields.pricePaidText);
    showCurrency(m_priceCurrency, fields.priceCurrency);
    m_acquisitionDate->setDate(shownDay(fields.acquisitionDate));
    m_source->setText(fields.source);
    showCase(m_overallCondition, fields.overallCondition);
    showCase(m_completeness, fields.completeness);
    showCase(m_boxCondition, fields.boxCondition);
    showCase(m_instructionsCondition, fields.instructionsCondition);
    showCase(m_builtStatus, fields.builtStatus);
    showCase(m_stickerStatus, fields.stickerStatus);
    m_isDisposed->setChecked(fields.isDisposed);
    m_disposalDetails->setVisible(fields.isDisposed);
    showCase(m_disposalType, fields.disposalType);
    m_disposalDate->setDate(shownDay(fields.disposalDate));
    m_disposalPrice->setText(fields.disposalPriceText);
    showCurrency(m_disposalCurrency, fields.disposalCurrency);
    m_disposalNotes->setText(fields.disposalNotes);
    m_notes->setPlainText(fields.notes);
    showReadPrices();
}

// The amount each price text reads as, in the user's number format and with its currency,
// so that a typed "1,5" visibly reads as 1 rather than one and a half.
void InventoryEditor::showReadPrices()
{
    const InventoryEditorFields &fields = m_state->fields();
    m_pricePaidRead->setText(
        PriceLabel::text(InventoryEditorFields::readPrice(fields.pricePaidText), fields.priceCurrency, locale()));
    m_disposalPriceRead->setText(PriceLabel::text(InventoryEditorFields::readPrice(fields.disposalPriceText),
                                                  fields.disposalCurrency, locale()));
}

bool InventoryEditor::event(QEvent *event)
{
    // Embedded, the editor's window is whatever window it was placed in, now or later.
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::Show)
        watchWindow();
    return QWidget::event(event);
}

void InventoryEditor::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // A window coming back from being minimised is not the editor appearing; and on its
    // first appearance the form was filled a moment ago, when the copy was given.
    if (event->spontaneous())
        return;
    if (std::exchange(m_hasAppeared, true))
        m_state->reload();
}

bool InventoryEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_watchedWindow && event->type() == QEvent::Close)
        flushPendingSave();
    return QWidget::eventFilter(watched, event);
}

void InventoryEditor::watchWindow()
{
    QWidget *current = window();
    if (current == m_watchedWindow)
        return;
    if (m_watchedWindow)
        m_watchedWindow->removeEventFilter(this);
    m_watchedWindow = current;
    m_watchedWindow->installEventFilter(this);
}

void InventoryEditor::moveToTrash()
{
    const std::optional<ObjectID> copy = m_state->brickSet();
    if (!m_trash || !copy)
        return;
    // What was just typed goes with the copy into the trash, and comes back with it.
    flushPendingSave();
    m_trash->moveToTrash(*copy);
}
