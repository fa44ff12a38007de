// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

class CatalogDatabaseService;
class FailureMessageView;
class QPushButton;

// A quiet bar above the columns while the catalog in use is the small sample that ships
// with the program: it says so (its parts lists are illustrative) and offers the full
// download. It goes away once a downloaded catalog is live. A download that fails says why
// inside the bar, and stays there until the next attempt starts.
class SampleCatalogNotice : public QFrame
{
    Q_OBJECT

public:
    SampleCatalogNotice(CatalogDatabaseService &service, QWidget *parent = nullptr);

    // Shows or hides the bar for the catalog in use now.
    void refresh();
    QPushButton *downloadButton() const { return m_downloadButton; }
    // The last download's failure, hidden while there is none to show.
    FailureMessageView *failureMessage() const { return m_failureMessage; }

    static bool sampleCatalogInUse();

private:
    CatalogDatabaseService &m_service;
    QPushButton *m_downloadButton;
    FailureMessageView *m_failureMessage;
};
