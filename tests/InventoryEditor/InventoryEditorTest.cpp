// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "ViewModels/CollectionTrash.h"
#include "ViewModels/InventoryEditorState.h"
#include "Views/InventoryEditor.h"
#include "Views/OptionalDateEdit.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {
QDateTime noon(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(12, 0), Qt::UTC);
}

// Comfortably longer than the editor's pause before a save.
constexpr int longerThanThePause = 800;
} // namespace

// The copy editor offscreen over a real store file: the form filled from copies in several
// states, the delayed save and what it writes, a change of copy within the pause, and the
// pending save carried out when the window closes, the application quits or the editor goes.
class InventoryEditorTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    std::unique_ptr<QWidget> m_window;
    InventoryEditor *m_editor = nullptr;
    std::unique_ptr<QSignalSpy> m_commits;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    // The copy as stored in the file, read through a context of its own so that nothing
    // pending in the view context is seen.
    BrickSet storedCopy(const ObjectID &id)
    {
        const std::shared_ptr<ManagedObjectContext> reader = m_store->newBackgroundContext();
        const std::optional<BrickSet> copy =
            reader->performAndWait([id](ManagedObjectContext &context) { return context.existingObject<BrickSet>(id); });
        if (!copy)
            qFatal("the copy is not in the store");
        return *copy;
    }

    void openEditor(const std::optional<ObjectID> &copy)
    {
        m_window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(m_window.get());
        m_editor = new InventoryEditor(context(), copy, m_window.get());
        layout->addWidget(m_editor);
        m_window->resize(600, 900);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_commits = std::make_unique<QSignalSpy>(m_store.get(), &PersistentContainer::objectsDidChange);
    }

    template <typename T>
    T *control(const QString &name)
    {
        T *found = m_editor->findChild<T *>(name);
        if (!found)
            qFatal("no control %s", qPrintable(name));
        return found;
    }

    QLineEdit *pricePaidField() { return control<QLineEdit>(u"pricePaidField"_s); }
    QLineEdit *sourceField() { return control<QLineEdit>(u"sourceField"_s); }
    QCheckBox *disposedToggle() { return control<QCheckBox>(u"disposedToggle"_s); }

    // Waits until the pending save was written, and for no second one.
    void waitForOneSave()
    {
        QTRY_COMPARE(m_commits->count(), 1);
        QVERIFY(!m_commits->wait(longerThanThePause));
        QCOMPARE(m_commits->count(), 1);
    }

    void reopenStore()
    {
        m_window.reset();
        m_commits.reset();
        m_store.reset();
        m_store = openStore(*m_folder);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        QSettings().setValue(u"preferredCurrency"_s, u"EUR"_s);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
    }

    void cleanup()
    {
        m_window.reset();
        m_commits.reset();
        m_store.reset();
        m_folder.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void theSectionsStandInTheirOrderWithTheirTitles()
    {
        openEditor(saveCopy(context(), std::nullopt).objectID);
        const QList<QGroupBox *> sections{control<QGroupBox>(u"acquisitionSection"_s),
                                          control<QGroupBox>(u"conditionSection"_s),
                                          control<QGroupBox>(u"disposalSection"_s), control<QGroupBox>(u"notesSection"_s)};
        QCOMPARE(sections.at(0)->title(), u"Acquisition"_s);
        QCOMPARE(sections.at(1)->title(), u"Condition"_s);
        QCOMPARE(sections.at(2)->title(), u"Disposal"_s);
        QCOMPARE(sections.at(3)->title(), u"Notes"_s);
        for (qsizetype index = 1; index < sections.size(); ++index)
            QVERIFY(sections.at(index - 1)->y() < sections.at(index)->y());
        QCOMPARE(sourceField()->placeholderText(), u"Where it came from"_s);
    }

    void aCopyWithoutCatalogSetOpensWithTheFallbacksAndThePreferredCurrency()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QCOMPARE(control<QComboBox>(u"acquisitionTypePicker"_s)->currentText(), u"Unknown"_s);
        QCOMPARE(control<QComboBox>(u"overallConditionPicker"_s)->currentText(), u"Used"_s);
        QCOMPARE(control<QComboBox>(u"completenessPicker"_s)->currentText(), u"Unknown"_s);
        QCOMPARE(control<QComboBox>(u"boxConditionPicker"_s)->currentText(), u"Good"_s);
        QCOMPARE(control<QComboBox>(u"instructionsConditionPicker"_s)->currentText(), u"Good"_s);
        QCOMPARE(control<QComboBox>(u"builtStatusPicker"_s)->currentText(), u"Built"_s);
        QCOMPARE(control<QComboBox>(u"stickerStatusPicker"_s)->currentText(), u"No Stickers"_s);
        QCOMPARE(control<QComboBox>(u"priceCurrencyPicker"_s)->currentText(), u"EUR"_s);
        QCOMPARE(pricePaidField()->text(), QString());
        QVERIFY(!control<OptionalDateEdit>(u"acquisitionDateEdit"_s)->date());
        QVERIFY(!disposedToggle()->isChecked());
        QVERIFY(control<QWidget>(u"disposalDetails"_s)->isHidden());
        QVERIFY(m_editor->findChild<QWidget *>(u"inventoryEditorContent"_s)->isEnabled());
    }

    void aCopyWithPricesShowsTheirTextAndTheAmountInTheUsersFormat()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) {
            copy.setAcquisitionType(AcquisitionType::gwp);
            copy.pricePaid = Decimal::fromString(u"1234.5"_s);
            copy.priceCurrency = u"USD"_s;
            copy.acquisitionDate = noon(2024, 12, 24);
            copy.acquisitionSource = u"LEGO Store"_s;
            copy.overallCondition = u"new"_s;
            copy.builtStatus = u"never_built"_s;
        });
        openEditor(copy.objectID);
        QCOMPARE(pricePaidField()->text(), u"1234.5"_s);
        QCOMPARE(control<QComboBox>(u"priceCurrencyPicker"_s)->currentText(), u"USD"_s);
        QCOMPARE(control<QLabel>(u"pricePaidRead"_s)->text(), u"$1.234,50"_s);
        QCOMPARE(control<QComboBox>(u"acquisitionTypePicker"_s)->currentText(), u"Gift With Purchase"_s);
        QCOMPARE(control<OptionalDateEdit>(u"acquisitionDateEdit"_s)->date(), QDate(2024, 12, 24));
        QCOMPARE(sourceField()->text(), u"LEGO Store"_s);
        QCOMPARE(control<QComboBox>(u"overallConditionPicker"_s)->currentText(), u"New/Sealed"_s);
        QCOMPARE(control<QComboBox>(u"builtStatusPicker"_s)->currentText(), u"Never Built"_s);
    }

    void aDisposedCopyShowsItsDisposal()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalType = u"gifted"_s;
            copy.disposalDate = noon(2025, 6, 30);
            copy.disposalPrice = Decimal::fromString(u"80"_s);
            copy.disposalCurrency = u"XTS"_s; // not offered, still shown
            copy.disposalNotes = u"to my nephew"_s;
        });
        openEditor(copy.objectID);
        QVERIFY(disposedToggle()->isChecked());
        QVERIFY(control<QWidget>(u"disposalDetails"_s)->isVisible());
        QCOMPARE(control<QComboBox>(u"disposalTypePicker"_s)->currentText(), u"Gifted"_s);
        QCOMPARE(control<OptionalDateEdit>(u"disposalDateEdit"_s)->date(), QDate(2025, 6, 30));
        QCOMPARE(control<QLineEdit>(u"disposalPriceField"_s)->text(), u"80"_s);
        QCOMPARE(control<QComboBox>(u"disposalCurrencyPicker"_s)->currentText(), u"XTS"_s);
        QCOMPARE(control<QLineEdit>(u"disposalNotesField"_s)->text(), u"to my nephew"_s);
    }

    void aMissingCopyLeavesTheFormDisabled()
    {
        openEditor(ObjectID{EntityType::BrickSet, 999});
        QVERIFY(!m_editor->findChild<QWidget *>(u"inventoryEditorContent"_s)->isEnabled());
        QVERIFY(!m_editor->state().hasCopy());
    }

    void aPriceWithADecimalPointStoresThatExactDecimal()
    {
        // "." is the decimal point whatever the user's number format says.
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(pricePaidField(), u"349.99"_s);
        waitForOneSave();
        QCOMPARE(storedCopy(copy.objectID).pricePaid, Decimal::fromString(u"349.99"_s));
        QCOMPARE(storedCopy(copy.objectID).priceCurrency, u"EUR"_s);
    }

    void lettersAloneStoreNoPriceAndTheFieldKeepsThem()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) {
            copy.pricePaid = Decimal::fromString(u"10"_s);
        });
        openEditor(copy.objectID);
        pricePaidField()->selectAll();
        QTest::keyClicks(pricePaidField(), u"abc"_s);
        waitForOneSave();
        QVERIFY(!storedCopy(copy.objectID).pricePaid);
        QCOMPARE(pricePaidField()->text(), u"abc"_s);
        QCOMPARE(control<QLabel>(u"pricePaidRead"_s)->text(), QString());
    }

    void tenKeystrokesWithinThePauseCauseOneSave()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QElapsedTimer typing;
        typing.start();
        QTest::keyClicks(sourceField(), u"Brick fair"_s);
        QVERIFY(typing.elapsed() < InventoryEditorState::saveDelay.count());
        QVERIFY(m_editor->state().hasPendingSave());
        QCOMPARE(m_commits->count(), 0);
        waitForOneSave();
        QCOMPARE(storedCopy(copy.objectID).acquisitionSource, u"Brick fair"_s);
    }

    void switchingDisposalOnAndOffWithAPriceTypedLeavesNoDisposalFields()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        disposedToggle()->click();
        QTest::keyClicks(control<QLineEdit>(u"disposalPriceField"_s), u"55.5"_s);
        m_editor->flushPendingSave();
        QCOMPARE(storedCopy(copy.objectID).disposalPrice, Decimal::fromString(u"55.5"_s));
        QVERIFY(storedCopy(copy.objectID).isDisposed);

        disposedToggle()->click();
        m_editor->flushPendingSave();
        const BrickSet stored = storedCopy(copy.objectID);
        QVERIFY(!stored.isDisposed);
        QVERIFY(!stored.disposalType);
        QVERIFY(!stored.disposalDate);
        QVERIFY(!stored.disposalPrice);
        QVERIFY(!stored.disposalCurrency);
        QVERIFY(!stored.disposalNotes);
        // The form still holds them until it is filled again.
        QCOMPARE(control<QLineEdit>(u"disposalPriceField"_s)->text(), u"55.5"_s);
        QVERIFY(control<QWidget>(u"disposalDetails"_s)->isHidden());
    }

    void openingACopyAndClosingItUnchangedWritesNothing()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QVERIFY(!m_editor->state().hasPendingSave());
        m_window->close();
        m_window.reset();
        QVERIFY(!m_commits->wait(longerThanThePause));
        const BrickSet stored = storedCopy(copy.objectID);
        QVERIFY(!stored.overallCondition);
        QVERIFY(!stored.completeness);
        QVERIFY(!stored.boxCondition);
        QVERIFY(!stored.instructionsCondition);
        QVERIFY(!stored.builtStatus);
        QVERIFY(!stored.stickerStatus);
        QVERIFY(!stored.priceCurrency);
    }

    void changingOneFieldWritesEveryEnumeratedFieldWithItsFallback()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) { copy.acquisitionType.reset(); });
        openEditor(copy.objectID);
        QTest::keyClick(control<QComboBox>(u"boxConditionPicker"_s), Qt::Key_Down); // Good → Fair
        waitForOneSave();
        const BrickSet stored = storedCopy(copy.objectID);
        QCOMPARE(stored.boxCondition, u"fair"_s);
        QCOMPARE(stored.acquisitionType, u"unknown"_s);
        QCOMPARE(stored.overallCondition, u"used"_s);
        QCOMPARE(stored.completeness, u"unknown"_s);
        QCOMPARE(stored.instructionsCondition, u"good"_s);
        QCOMPARE(stored.builtStatus, u"built"_s);
        QCOMPARE(stored.stickerStatus, u"no_stickers"_s);
        QCOMPARE(stored.priceCurrency, u"EUR"_s);
        QVERIFY(!stored.disposalType); // not disposed: no disposal fields
    }

    void anEditKeepsWhatTheFormDoesNotShow()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(sourceField(), u"x"_s);
        BrickSet elsewhere = *context().existingObject<BrickSet>(copy.objectID);
        elsewhere.isFavorite = true;
        elsewhere.rating = 4;
        context().update(elsewhere);
        context().save();
        m_editor->flushPendingSave();
        const BrickSet stored = storedCopy(copy.objectID);
        QVERIFY(stored.isFavorite);
        QCOMPARE(stored.rating, 4);
        QCOMPARE(stored.acquisitionSource, u"x"_s);
    }

    void choosingAnotherCopyWithinThePauseWritesNothingForTheOldCopy()
    {
        const BrickSet first = saveCopy(context(), std::nullopt);
        const BrickSet second = saveCopy(context(), std::nullopt, [](BrickSet &copy) {
            copy.acquisitionSource = u"flea market"_s;
        });
        openEditor(first.objectID);
        QTest::keyClicks(sourceField(), u"typed"_s);
        m_editor->setBrickSet(second.objectID);
        QVERIFY(!m_editor->state().hasPendingSave());
        QCOMPARE(sourceField()->text(), u"flea market"_s);
        QVERIFY(!m_commits->wait(longerThanThePause));
        QVERIFY(!storedCopy(first.objectID).acquisitionSource);
        QVERIFY(!storedCopy(first.objectID).overallCondition);
        QVERIFY(!storedCopy(second.objectID).overallCondition);
    }

    void appearingAgainFillsTheFormFromTheStore()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        BrickSet elsewhere = *context().existingObject<BrickSet>(copy.objectID);
        elsewhere.notes = u"written elsewhere"_s;
        context().update(elsewhere);
        context().save();
        QCOMPARE(control<QPlainTextEdit>(u"notesField"_s)->toPlainText(), QString()); // not under the cursor
        m_editor->hide();
        m_editor->show();
        QCOMPARE(control<QPlainTextEdit>(u"notesField"_s)->toPlainText(), u"written elsewhere"_s);
    }

    void appearingAgainWritesWhatIsPendingBeforeFillingTheForm()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(sourceField(), u"typed"_s);
        m_editor->hide();
        m_editor->show();
        QVERIFY(!m_editor->state().hasPendingSave());
        QCOMPARE(sourceField()->text(), u"typed"_s);
        QCOMPARE(storedCopy(copy.objectID).acquisitionSource, u"typed"_s);
    }

    void closingTheWindowWithinThePauseWritesTheTypedValue()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(sourceField(), u"typed before closing"_s);
        QVERIFY(m_editor->state().hasPendingSave());
        m_window->close();
        QVERIFY(!m_editor->state().hasPendingSave());
        QCOMPARE(m_commits->count(), 1);
        reopenStore();
        QCOMPARE(context().existingObject<BrickSet>(copy.objectID)->acquisitionSource, u"typed before closing"_s);
    }

    void quittingWithinThePauseWritesTheTypedValue()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(pricePaidField(), u"19.95"_s);
        QVERIFY(m_editor->state().hasPendingSave());
        // What QCoreApplication::quit() announces before the event loop ends.
        QVERIFY(QMetaObject::invokeMethod(qApp, "aboutToQuit"));
        QCOMPARE(m_commits->count(), 1);
        reopenStore();
        QCOMPARE(context().existingObject<BrickSet>(copy.objectID)->pricePaid, Decimal::fromString(u"19.95"_s));
    }

    void destroyingTheEditorWithinThePauseWritesTheTypedValue()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QTest::keyClicks(sourceField(), u"gone"_s);
        delete m_editor;
        m_editor = nullptr;
        QCOMPARE(m_commits->count(), 1);
        QCOMPARE(storedCopy(copy.objectID).acquisitionSource, u"gone"_s);
    }

    void anEditorPlacedIntoAnotherWindowWritesWhenThatWindowCloses()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QWidget other;
        auto *layout = new QVBoxLayout(&other);
        layout->addWidget(m_editor);
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        QTest::keyClicks(sourceField(), u"moved"_s);
        other.close();
        QCOMPARE(storedCopy(copy.objectID).acquisitionSource, u"moved"_s);
        m_editor->setParent(m_window.get());
    }

    void anOptionalDateIsStoredAsThatDayAndClearedWithItsBox()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        OptionalDateEdit *date = control<OptionalDateEdit>(u"acquisitionDateEdit"_s);
        QVERIFY(!date->dateEdit()->isEnabled());
        date->presentBox()->click();
        QVERIFY(date->dateEdit()->isEnabled());
        date->dateEdit()->setDate(QDate(2023, 3, 14));
        m_editor->flushPendingSave();
        QCOMPARE(storedCopy(copy.objectID).acquisitionDate->toLocalTime().date(), QDate(2023, 3, 14));
        date->presentBox()->click();
        m_editor->flushPendingSave();
        QVERIFY(!storedCopy(copy.objectID).acquisitionDate);
    }

    void notesAreWrittenAndEmptyNotesBecomeAbsent()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) { copy.notes = u"x"_s; });
        openEditor(copy.objectID);
        QPlainTextEdit *notes = control<QPlainTextEdit>(u"notesField"_s);
        QCOMPARE(notes->toPlainText(), u"x"_s);
        QTest::keyClick(notes, Qt::Key_End);
        QTest::keyClick(notes, Qt::Key_Backspace);
        m_editor->flushPendingSave();
        QVERIFY(!storedCopy(copy.objectID).notes);
    }

    void tabMovesThroughTheFormInItsOrder()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt, [](BrickSet &copy) { copy.isDisposed = true; });
        openEditor(copy.objectID);
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        const QStringList expected{
            u"acquisitionTypePicker"_s, u"pricePaidField"_s,         u"priceCurrencyPicker"_s,
            u"datePresent"_s,            u"sourceField"_s,            u"overallConditionPicker"_s,
            u"completenessPicker"_s,     u"boxConditionPicker"_s,     u"instructionsConditionPicker"_s,
            u"builtStatusPicker"_s,      u"stickerStatusPicker"_s,    u"disposedToggle"_s,
            u"disposalTypePicker"_s,     u"datePresent"_s,            u"disposalPriceField"_s,
            u"disposalCurrencyPicker"_s, u"disposalNotesField"_s,     u"notesField"_s,
        };
        control<QComboBox>(u"acquisitionTypePicker"_s)->setFocus();
        QStringList visited{QApplication::focusWidget()->objectName()};
        for (qsizetype step = 1; step < expected.size(); ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            visited.append(QApplication::focusWidget()->objectName());
        }
        // The date edits are skipped while their box is unchecked.
        QCOMPARE(visited, expected);
    }

    void everyControlHasAnAccessibleName()
    {
        openEditor(saveCopy(context(), std::nullopt).objectID);
        const QList<QWidget *> controls = m_editor->findChildren<QWidget *>();
        for (QWidget *widget : controls) {
            if (qobject_cast<QLineEdit *>(widget) || qobject_cast<QComboBox *>(widget)
                || qobject_cast<QCheckBox *>(widget) || qobject_cast<QPlainTextEdit *>(widget)) {
                if (qobject_cast<QLineEdit *>(widget) && qobject_cast<QDateEdit *>(widget->parentWidget()))
                    continue; // the date edit's own inner field
                QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
            }
        }
        QCOMPARE(pricePaidField()->accessibleName(), u"Price Paid"_s);
        QCOMPARE(control<QComboBox>(u"stickerStatusPicker"_s)->accessibleName(), u"Stickers"_s);
    }

    void moveToTrashWritesWhatWasTypedAndTrashesTheCopy()
    {
        const BrickSet copy = saveCopy(context(), std::nullopt);
        openEditor(copy.objectID);
        QPushButton *button = control<QPushButton>(u"moveToTrashButton"_s);
        QVERIFY(button->isHidden());
        CollectionTrash trash(context());
        m_editor->setTrash(&trash);
        QVERIFY(!button->isHidden());
        QCOMPARE(button->text(), u"Move to Trash"_s);
        QTest::keyClicks(sourceField(), u"last words"_s);
        button->click();
        const BrickSet stored = storedCopy(copy.objectID);
        QVERIFY(stored.isTrashed);
        QCOMPARE(stored.acquisitionSource, u"last words"_s);
    }
};

QTEST_MAIN(InventoryEditorTest)
#include "InventoryEditorTest.moc"
