// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogSetupView.h"

#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
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
    // No close button: the sheet ends with a catalog or with the program.
    setWindowFlags((windowFlags() | Qt::CustomizeWindowHint) & ~Qt::WindowCloseButtonHint);

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
        qtTrId("catalogSetup.download.description"),
        //% "Download Catalog"
        qtTrId("catalogSetup.download.button"), &m_downloadButton);
    m_rebuildPart = makeIdlePart(
        //% "Download the newest Rebrickable data and rebuild the catalog on this computer."
        qtTrId("catalogSetup.rebuild.description"),
        //% "Rebuild Catalog"
        qtTrId("catalogSetup.rebuild.button"), &m_rebuildButton);
    m_workingPart = makeWorkingPart();
    //% "The catalog is ready."
    m_completedPart = makeOutcomePart(u"checkmark.circle.fill"_s, qtTrId("catalogSetup.completed"), nullptr);
    m_failedPart = makeOutcomePart(u"exclamationmark.triangle.fill"_s, QString(), &m_failureLabel);
    //% "Try Again"
    m_retryButton = new QPushButton(qtTrId("catalogSetup.retry"), m_failedPart);
    m_retryButton->setDefault(true);
    m_failedPart->layout()->addWidget(m_retryButton);
    m_failedPart->layout()->setAlignment(m_retryButton, Qt::AlignHCenter);

    for (QPushButton *start : {m_downloadButton, m_rebuildButton, m_retryButton})
        connect(start, &QPushButton::clicked, &m_service, &CatalogDatabaseService::startBuild);
    connect(m_cancelButton, &QPushButton::clicked, &m_service, &CatalogDatabaseService::cancelCurrentTask);
    connect(&m_service, &CatalogDatabaseService::stateChanged, this, &CatalogSetupView::showState);

    // Quitting stays possible while the sheet blocks the window.
    auto *quit = new QShortcut(QKeySequence::Quit, this);
    connect(quit, &QShortcut::activated, qApp, &QApplication::quit, Qt::QueuedConnection);

    showState(m_service.state());
}

QWidget *CatalogSetupView::makeIdlePart(const QString &description, const QString &buttonText, QPushButton **button)
{
    auto *part = new QWidget(m_parts);
    auto *layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(partSpacing);
    layout->addWidget(wrappedLabel(description, part));
    *button = new QPushButton(buttonText, part);
    (*button)->setDefault(true);
    layout->addWidget(*button, 0, Qt::AlignHCenter);
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
    //% "Cancel"
    m_cancelButton = new QPushButton(qtTrId("catalogSetup.cancel"), part);
    layout->addWidget(m_cancelButton, 0, Qt::AlignHCenter);
    m_parts->addWidget(part);
    return part;
}

QWidget *CatalogSetupView::makeOutcomePart(const QString &symbolName, const QString &text, QLabel **label)
{
    auto *part = new QWidget(m_parts);
    auto *layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(partSpacing / 2);
    auto *symbol = new QLabel(part);
    symbol->setPixmap(SymbolIcon::icon(symbolName).pixmap(32, 32));
    symbol->setAlignment(Qt::AlignCenter);
    layout->addWidget(symbol);
    auto *textLabel = wrappedLabel(text, part);
    if (label) {
        textLabel->setForegroundRole(QPalette::PlaceholderText);
        *label = textLabel;
    }
    layout->addWidget(textLabel);
    m_parts->addWidget(part);
    return part;
}

void CatalogSetupView::showState(const CatalogDatabaseService::State &state)
{
    using Kind = CatalogDatabaseService::State::Kind;
    switch (state.kind) {
    case Kind::idle:
        m_parts->setCurrentWidget(QFileInfo::exists(m_service.liveDatabasePath()) ? m_rebuildPart : m_downloadPart);
        break;
    case Kind::working:
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
    case Kind::failed:
        m_failureLabel->setText(state.errorText);
        m_parts->setCurrentWidget(m_failedPart);
        break;
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

QPushButton *CatalogSetupView::primaryButton() const
{
    const QWidget *part = m_parts->currentWidget();
    if (part == m_downloadPart)
        return m_downloadButton;
    if (part == m_rebuildPart)
        return m_rebuildButton;
    if (part == m_workingPart)
        return m_cancelButton;
    if (part == m_failedPart)
        return m_retryButton;
    return nullptr;
}

QString CatalogSetupView::statusText() const
{
    return m_statusLabel->text();
}

QString CatalogSetupView::failureText() const
{
    return m_failureLabel->text();
}

void CatalogSetupView::reject()
{
}

void CatalogSetupView::closeEvent(QCloseEvent *event)
{
    if (m_closing)
        event->accept();
    else
        event->ignore();
}
