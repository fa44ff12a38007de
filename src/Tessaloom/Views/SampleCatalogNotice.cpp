// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SampleCatalogNotice.h"

#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Views/FailureMessageView.h"
#include "Views/SymbolIcon.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SampleCatalogNotice::SampleCatalogNotice(CatalogDatabaseService &service, QWidget *parent)
    : QFrame(parent)
    , m_service(service)
    //% "Download Full Catalog"
    , m_downloadButton(new QPushButton(qtTrId("sampleCatalog.download"), this))
    , m_failureMessage(new FailureMessageView(this))
{
    setObjectName(u"sampleCatalogNotice"_s);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 6);
    auto *icon = new QLabel(this);
    icon->setPixmap(SymbolIcon::icon(u"info.circle"_s).pixmap(16, 16));
    layout->addWidget(icon);
    //% "You are using the small sample catalog that comes with Tessaloom. Its parts lists are illustrative, not LEGO's real ones."
    auto *text = new QLabel(qtTrId("sampleCatalog.message"), this);
    text->setWordWrap(true);
    auto *texts = new QVBoxLayout;
    texts->setContentsMargins(0, 0, 0, 0);
    texts->addWidget(text);
    texts->addWidget(m_failureMessage);
    m_failureMessage->hide();
    layout->addLayout(texts, 1);
    layout->addWidget(m_downloadButton, 0, Qt::AlignTop);

    connect(m_downloadButton, &QPushButton::clicked, &m_service, &CatalogDatabaseService::startBuild);
    connect(&m_service, &CatalogDatabaseService::stateChanged, this, [this](const CatalogDatabaseService::State &state) {
        using Kind = CatalogDatabaseService::State::Kind;
        m_downloadButton->setEnabled(state.kind != Kind::working);
        // A failure stays in view until the next attempt: a line in the status bar that
        // goes away on its own is easily missed.
        if (state.kind == Kind::failed) {
            m_failureMessage->setFailure(m_service.lastFailure());
            m_failureMessage->show();
        } else if (state.kind == Kind::working) {
            m_failureMessage->clear();
            m_failureMessage->hide();
        }
    });
    connect(&m_service, &CatalogDatabaseService::catalogDatabaseDidUpdate, this, &SampleCatalogNotice::refresh);
    refresh();
}

bool SampleCatalogNotice::sampleCatalogInUse()
{
    const auto catalog = RebrickableCatalog::shared();
    return catalog
        && QFileInfo(catalog->path()).canonicalFilePath()
        == QFileInfo(RebrickableCatalog::bundledDatabasePath()).canonicalFilePath();
}

void SampleCatalogNotice::refresh()
{
    setVisible(sampleCatalogInUse());
}
