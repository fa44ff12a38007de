// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogSetupView.h"

#include "Views/FailureMessageView.h"
#include "Views/QuitCommand.h"
#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int sheetWidth = 420;
constexpr int sheetPadding = 40;
constexpr int partSpacing = 20;
constexpr int headerSymbolSize = 48;
constexpr int closeDelayMilliseconds = 500;
constexpr int progressSteps = 1000;

QLabel *wrappedLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    return label;
}
} // namespace

CatalogSetupView::CatalogSetupView(CatalogDatabaseService &service, QWidget *parent)
    : QDialog(parent)
    , m_service(service)
    , m_parts(new QStackedWidget(this))
{
    setObjectName(u"catalogSetupView"_s);
    setModal(true);
    setFixedWidth(sheetWidth);
    //% "LEGO Catalog"
    setWindowTitle(qtTrId("catalogSetup.windowTitle"));
    // The close button quits the program, like Ctrl+Q: the sheet ends with a catalog or
    // with the program. Neither needs the menu bar, which the sheet blocks.
    m_quitCommand = new QuitCommand(m_service, this);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(sheetPadding, sheetPadding, sheetPadding, sheetPadding);
    layout->setSpacing(partSpacing);

    auto *symbol = new QLabel(this);
    symbol->setPixmap(SymbolIcon::icon(u"square.stack.3d.up"_s).pixmap(headerSymbolSize, headerSymbolSize));
    symbol->setAlignment(Qt::AlignCenter);
    layout->addWidget(symbol);

    //% "Set Up the LEGO Catalog"
    auto *title = wrappedLabel(qtTrId("catalogSetup.title"), this);
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.5);
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    layout->addWidget(title);
    layout->addWidget(m_parts);

    m_downloadPart = makeIdlePart(
        //% "Tessaloom keeps a copy of the Rebrickable catalog on this computer: every set, part, colour and theme. It is downloaded once (about 20 MB) and built here in under a minute."
        qtTrId("catalogSetup.download.description"));
    m_rebuildPart = makeIdlePart(
        //% "Download the newest Rebrickable data and rebuild the catalog on this computer."
        qtTrId("catalogSetup.rebuild.description"));
    m_workingPart = makeWorkingPart();
    //% "The catalog is ready."
    m_completedPart = makeOutcomePart(u"checkmark.circle.fill"_s, qtTrId("catalogSetup.completed"));
    m_failedPart = makeOutcomePart(u"exclamationmark.triangle.fill"_s, QString());
    m_failureMessage = new FailureMessageView(m_failedPart);
    m_failedPart->layout()->addWidget(m_failureMessage);

    // One row whose buttons never trade places: Cancel at the left, the build's button at
    // the right. A hidden Cancel keeps its room, so the row never reflows.
    auto *buttons = new QHBoxLayout;
    //% "Cancel"
    m_cancelButton = new QPushButton(qtTrId("catalogSetup.cancel"), this);
    m_cancelButton->setObjectName(u"catalogSetupCancel"_s);
    m_cancelButton->setAutoDefault(false);
    QSizePolicy keepRoom = m_cancelButton->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true);
    m_cancelButton->setSizePolicy(keepRoom);
    m_primaryButton = new QPushButton(this);
    m_primaryButton->setObjectName(u"catalogSetupPrimary"_s);
    m_primaryButton->setDefault(true);
    buttons->addWidget(m_cancelButton);
    buttons->addStretch(1);
    buttons->addWidget(m_primaryButton);
    layout->addLayout(buttons);

    connect(m_primaryButton, &QPushButton::clicked, &m_service, &CatalogDatabaseService::startBuild);
    connect(m_cancelButton, &QPushButton::clicked, &m_service, &CatalogDatabaseService::cancelCurrentTask);
    connect(&m_service, &CatalogDatabaseService::stateChanged, this, &CatalogSetupView::showState);

    showState(m_service.state());
}

QWidget *CatalogSetupView::makeIdlePart(const QString &description)
{
    auto *part = new QWidget(m_parts);
    auto *layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(wrappedLabel(description, part));
    m_parts->addWidget(part);
    return part;
}

QWidget *CatalogSetupView::makeWorkingPart()
{
    auto *part = new QWidget(m_parts);
    auto *layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(partSpacing / 2);
    m_statusLabel = wrappedLabel(QString(), part);
    m_progressBar = new QProgressBar(part);
    m_progressBar->setRange(0, progressSteps);
    m_progressBar->setTextVisible(false);
    layout->addWidget(m_progressBar);
    layout->addWidget(m_statusLabel);
    m_parts->addWidget(part);
    return part;
}

QWidget *CatalogSetupView::makeOutcomePart(const QString &symbolName, const QString &text)
{
    auto *part = new QWidget(m_parts);
    auto *layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(partSpacing / 2);
    auto *symbol = new QLabel(part);
    symbol->setPixmap(SymbolIcon::icon(symbolName).pixmap(32, 32));
    symbol->setAlignment(Qt::AlignCenter);
    layout->addWidget(symbol);
    if (!text.isEmpty())
        layout->addWidget(wrappedLabel(text, part));
    m_parts->addWidget(part);
    return part;
}

QString CatalogSetupView::startText() const
{
    if (QFileInfo::exists(m_service.liveDatabasePath())) {
        //% "Rebuild Catalog"
        return qtTrId("catalogSetup.rebuild.button");
    }
    //% "Download Catalog"
    return qtTrId("catalogSetup.download.button");
}

void CatalogSetupView::showState(const CatalogDatabaseService::State &state)
{
    using Kind = CatalogDatabaseService::State::Kind;
    m_cancelButton->setVisible(state.kind == Kind::working);
    m_primaryButton->setEnabled(state.kind == Kind::idle || state.kind == Kind::failed);
    switch (state.kind) {
    case Kind::idle: {
        const bool hasCatalogFile = QFileInfo::exists(m_service.liveDatabasePath());
        m_parts->setCurrentWidget(hasCatalogFile ? m_rebuildPart : m_downloadPart);
        m_primaryButton->setText(startText());
        break;
    }
    case Kind::working:
        if (m_primaryButton->text().isEmpty())
            m_primaryButton->setText(startText()); // a sheet opened while a build runs
        // The build's button keeps its text and place, disabled: what was under the pointer
        // a moment ago does not turn into something else.
        m_statusLabel->setText(state.status);
        m_progressBar->setValue(int(state.progress * progressSteps));
        m_parts->setCurrentWidget(m_workingPart);
        break;
    case Kind::completed:
        m_parts->setCurrentWidget(m_completedPart);
        QTimer::singleShot(closeDelayMilliseconds, this, [this] {
            m_closing = true;
            accept();
        });
        break;
    case Kind::failed: {
        ErrorExplanation failure = m_service.lastFailure();
        if (failure.isEmpty())
            failure = ErrorExplanation(ErrorExplanation::Kind::other, state.errorText, QString());
        m_failureMessage->setFailure(failure);
        m_parts->setCurrentWidget(m_failedPart);
        //% "Try Again"
        m_primaryButton->setText(qtTrId("catalogSetup.retry"));
        break;
    }
    }
}

QString CatalogSetupView::currentPart() const
{
    const QWidget *part = m_parts->currentWidget();
    if (part == m_downloadPart)
        return u"download"_s;
    if (part == m_rebuildPart)
        return u"rebuild"_s;
    if (part == m_workingPart)
        return u"working"_s;
    if (part == m_completedPart)
        return u"completed"_s;
    return u"failed"_s;
}

QString CatalogSetupView::statusText() const
{
    return m_statusLabel->text();
}

QString CatalogSetupView::failureText() const
{
    return m_failureMessage->sentence();
}

QString CatalogSetupView::failureDetails() const
{
    return m_failureMessage->details();
}

void CatalogSetupView::reject()
{
}

// Closing the sheet is quitting the program; a quit agreed to elsewhere closes it as well.
void CatalogSetupView::closeEvent(QCloseEvent *event)
{
    if (m_closing || QuitCommand::isQuitting()) {
        event->accept();
        return;
    }
    event->ignore();
    // After this event: the confirmation must not run inside the window system's close.
    QTimer::singleShot(0, m_quitCommand, &QuitCommand::quit);
}
