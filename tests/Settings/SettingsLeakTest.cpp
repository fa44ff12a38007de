// SPDX-License-Identifier: GPL-3.0-or-later
// A key typed into the settings window goes to the secret service and nowhere else: after
// typing it, waiting for its save, going through every tab and exporting the collection,
// no file under the run's home (HOME, the XDG folders and TMPDIR all lie there, see
// tests/Pricing/run-with-secret-service.sh), none under the test's own settings and data
// folders, and no log line at any level holds its text. Run with and without a secret
// service: without one the save fails, and the key must not have found another place.
//
// gnome-keyring keeps its keyring file under the scanned home too
// (~/.local/share/keyrings/login.keyring). It is encrypted with the keyring's password, so
// the key's text never appears in it; the scan covers it on purpose.
#include "LogCapture.h"
#include "SecretStoreDirectly.h"
#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/ImageCacheService.h"
#include "Store/PersistenceController.h"
#include "SecretFileSearch.h"
#include "TestEnvironment.h"
#include "ViewModels/SettingsViewModel.h"
#include "Views/APIKeysSettingsTab.h"
#include "Views/CacheSettingsTab.h"
#include "Views/SettingsView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPointer>
#include <QSettings>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// Distinctive, and with characters outside ASCII so that its UTF-8 and UTF-16 forms differ.
const QString apiKey = u"settings-Schlüssel-5e1b77aa-Ключ-93c0ffee"_s;
const QString tokenKey = u"pricing.brickeconomy.api_token"_s;

// Types `text` key by key, as a keyboard would; QTest::keyClicks takes ASCII only.
void typeInto(QWidget *field, const QString &text)
{
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
        QApplication::sendEvent(field, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(character));
        QApplication::sendEvent(field, &release);
    }
}

} // namespace

class SettingsLeakTest : public QObject
{
    Q_OBJECT

    bool m_hasSecretService = false;
    QString m_home;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QByteArray setting = qgetenv("TESSALOOM_TEST_SECRET_SERVICE");
        if (setting != "present" && setting != "absent")
            QFAIL("Run through tests/Pricing/run-with-secret-service.sh (present or absent).");
        m_hasSecretService = setting == "present";
        m_home = qEnvironmentVariable("TESSALOOM_TEST_SECRET_SERVICE_HOME");
        QVERIFY(!m_home.isEmpty());
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        // Every category at every level, so that a debug line would be caught too.
        QLoggingCategory::setFilterRules(u"*.debug=true"_s);
        if (m_hasSecretService) {
            QTRY_VERIFY_WITH_TIMEOUT(SecretStoreDirectly::deleteDirectly(tokenKey) == QKeychain::NoError
                                         || SecretStoreDirectly::deleteDirectly(tokenKey) == QKeychain::EntryNotFound,
                                     10000);
        }
    }

    void aTypedKeyIsInNoFileAndNoLogLineAfterTheWholeSettingsFlow()
    {
        LogCapture log;
        const QString root = TestEnvironment::temporaryRoot();
        {
            // The store on disk, where the program keeps it.
            const std::unique_ptr<PersistenceController> store =
                PersistenceController::open(PersistenceController::defaultStorePath());
            CatalogDatabaseService catalogService(root + u"/app"_s, QUrl(u"http://127.0.0.1:9"_s));
            AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
            ImageCacheService imageCache(root + u"/caches"_s);

            QPointer<SettingsView> view = new SettingsView(store->container(), catalogService, updates, imageCache);
            view->setAttribute(Qt::WA_DeleteOnClose);
            view->show();
            QVERIFY(QTest::qWaitForWindowExposed(view));
            view->tabs()->setCurrentIndex(1);
            APIKeysSettingsTab *keys = view->apiKeysTab();
            QTRY_VERIFY_WITH_TIMEOUT(keys->hasLoaded(), 10000);
            QLineEdit *field = keys->field(tokenKey);
            QVERIFY(field);
            typeInto(field, apiKey);
            QCOMPARE(field->text(), apiKey);
            keys->showToggle(tokenKey)->click(); // shown in clear on screen, stored nowhere else
            QTRY_VERIFY(keys->viewModel().saveTask(tokenKey));
            QTRY_VERIFY_WITH_TIMEOUT(!keys->viewModel().saveTask(tokenKey), 10000);
            if (m_hasSecretService)
                QCOMPARE(SecretStoreDirectly::readDirectly(tokenKey), std::optional<QByteArray>(apiKey.toUtf8()));

            for (int tab = 0; tab < view->tabs()->count(); ++tab) {
                view->tabs()->setCurrentIndex(tab);
                QTest::qWait(50);
            }
            const QString exported = m_home + u"/export.csv"_s;
            view->cacheTab()->setFileChooser([exported](const QString &) { return exported; });
            QVERIFY(view->cacheTab()->exportData());
            QVERIFY(QFile::exists(exported));
            view->close();
            QTRY_VERIFY(!view);

            // A second window loads the key back into its field, and only there.
            QPointer<SettingsView> again = new SettingsView(store->container(), catalogService, updates, imageCache);
            again->setAttribute(Qt::WA_DeleteOnClose);
            again->tabs()->setCurrentIndex(1);
            again->show();
            QTRY_VERIFY_WITH_TIMEOUT(again->apiKeysTab()->hasLoaded(), 10000);
            QCOMPARE(again->apiKeysTab()->field(tokenKey)->text(), m_hasSecretService ? apiKey : QString());
            again->close();
            QTRY_VERIFY(!again);
        }
        QSettings().sync();

        qInfo("Settings leak check: every line of the run is captured up to here.");
        QVERIFY(log.indexOfMessageStartingWith(u"Settings leak check"_s) >= 0);
        for (const QString &line : log.messages())
            QVERIFY2(!line.contains(apiKey), qPrintable(u"A log line holds the key: "_s + line));
        for (const QString &folder : {m_home, root}) {
            const QStringList holding = SecretFileSearch::filesHolding(folder, apiKey);
            QVERIFY2(holding.isEmpty(), qPrintable(u"Files holding the key: "_s + holding.join(u", "_s)));
        }
    }
};

QTEST_MAIN(SettingsLeakTest)
#include "SettingsLeakTest.moc"
