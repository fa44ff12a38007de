// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/AboutSettingsTab.h"

#include "Services/AppUpdateService.h"
#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AboutSettingsTab::AboutSettingsTab(AppUpdateService &updateService, QWidget *parent)
    : QWidget(parent)
    , m_updateService(updateService)
    , m_checkButton(new QPushButton(this))
    , m_updateResult(new QLabel(this))
{
    auto *layout = new QVBoxLayout(this);

    auto *icon = new QLabel(this);
    icon->setObjectName(u"applicationIcon"_s);
    QIcon appIcon = QApplication::windowIcon();
    if (appIcon.isNull())
        appIcon = QIcon::fromTheme(QApplication::desktopFileName(), SymbolIcon::icon(u"square.stack.3d.up"_s));
    icon->setPixmap(appIcon.pixmap(64, 64));
    icon->setAlignment(Qt::AlignHCenter);
    layout->addWidget(icon);

    //% "Tessaloom"
    auto *title = new QLabel(qtTrId("app.title"), this);
    title->setObjectName(u"applicationTitle"_s);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    title->setFont(titleFont);
    title->setAlignment(Qt::AlignHCenter);
    layout->addWidget(title);

    auto *version = new QLabel(versionLine(), this);
    version->setObjectName(u"versionLine"_s);
    version->setAlignment(Qt::AlignHCenter);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(version);

    //% "© 2026 the Tessaloom developers. Free software under the GNU GPL, version 3 or later."
    auto *copyright = new QLabel(qtTrId("settings.about.copyright"), this);
    copyright->setObjectName(u"copyright"_s);
    copyright->setAlignment(Qt::AlignHCenter);
    copyright->setWordWrap(true);
    QFont caption = copyright->font();
    caption.setPointSizeF(caption.pointSizeF() * 0.85);
    copyright->setFont(caption);
    copyright->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(copyright);

    m_checkButton->setObjectName(u"checkForUpdatesButton"_s);
    m_checkButton->setText(qtTrId("settings.about.checkForUpdates"));
    m_checkButton->setEnabled(m_updateService.canCheckForUpdates());
    connect(&m_updateService, &AppUpdateService::canCheckForUpdatesChanged, m_checkButton, &QPushButton::setEnabled);
    connect(m_checkButton, &QPushButton::clicked, this, [this] { checkForUpdates(); });
    layout->addWidget(m_checkButton, 0, Qt::AlignHCenter);
    m_updateResult->setObjectName(u"updateResult"_s);
    m_updateResult->setAlignment(Qt::AlignHCenter);
    m_updateResult->setWordWrap(true);
    m_updateResult->setOpenExternalLinks(true);
    m_updateResult->hide();
    layout->addWidget(m_updateResult);

    //% "Data Sources"
    auto *sources = new QGroupBox(qtTrId("settings.about.dataSources"), this);
    sources->setObjectName(u"dataSources"_s);
    auto *sourcesForm = new QFormLayout(sources);
    //% "Sets, parts, colours and themes, from the downloads of rebrickable.com"
    sourcesForm->addRow(u"Rebrickable"_s, new QLabel(qtTrId("settings.about.source.rebrickable"), sources));
    //% "LEGO"
    sourcesForm->addRow(qtTrId("settings.about.source.lego.name"),
                        //% "Building instructions, from lego.com"
                        new QLabel(qtTrId("settings.about.source.lego"), sources));
    layout->addWidget(sources);
    layout->addStretch(1);
}

QString AboutSettingsTab::versionLine()
{
    const QString version = QApplication::applicationVersion();
    //% "Version %1 (%2)"
    return qtTrId("settings.about.version").arg(version, version);
}

QCoro::Task<> AboutSettingsTab::checkForUpdates()
{
    QPointer<AboutSettingsTab> self(this);
    //% "Checking for updates…"
    m_updateResult->setText(qtTrId("update.status.checking"));
    m_updateResult->show();
    const AppUpdateService::CheckResult result = co_await m_updateService.checkForUpdates();
    if (!self)
        co_return;
    switch (result.outcome) {
    case AppUpdateService::CheckResult::Outcome::upToDate:
        m_updateResult->setText(qtTrId("update.upToDate.message").arg(QApplication::applicationVersion()));
        break;
    case AppUpdateService::CheckResult::Outcome::updateAvailable: {
        QString text = qtTrId("update.available.message")
                           .arg(result.newest.displayVersion, QApplication::applicationVersion())
                           .toHtmlEscaped();
        if (result.newest.pageUrl.isValid())
            text += u" <a href=\"%1\">%2</a>"_s.arg(result.newest.pageUrl.toString(QUrl::FullyEncoded).toHtmlEscaped(),
                                                   qtTrId("update.available.openPage").toHtmlEscaped());
        m_updateResult->setText(text);
        break;
    }
    case AppUpdateService::CheckResult::Outcome::failed:
        m_updateResult->setText(result.errorText);
        break;
    }
}
