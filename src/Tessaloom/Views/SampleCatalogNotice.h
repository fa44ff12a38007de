// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

class CatalogDatabaseService;
class QPushButton;

// A quiet bar above the columns while the catalog in use is the small sample that ships
// with the program: it says so (its parts lists are illustrative) and offers the full
// download. It goes away once a downloaded catalog is live.
class SampleCatalogNotice : public QFrame
{
    Q_OBJECT

public:
    SampleCatalogNotice(CatalogDatabaseService &service, QWidget *parent = nullptr);

    // Shows or hides the bar for the catalog in use now.
    void refresh();
    QPushButton *downloadButton() const { return m_downloadButton; }

    static bool sampleCatalogInUse();

private:
    CatalogDatabaseService &m_service;
    QPushButton *m_downloadButton;
};
