// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"

#include <QCoroTask>
#include <QList>
#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>

class ImageCacheService;
class InstructionBookletButton;
class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

// The building-instructions block of a catalog set's detail screen: its title, a busy line
// while the booklets are looked up, one button per booklet (opening its PDF) and a link to
// the set's building-instructions page on LEGO's web site.
//
// The booklets live in this block only; nothing is written to the store, so every set
// shown asks anew. An answer that comes after another set was shown is dropped, and a
// lookup that fails ends with no booklets and without a message.
class CatalogSetInstructionsView : public QWidget
{
    Q_OBJECT

public:
    // Opens a web page or a PDF: the desktop's browser in the program, a recorder in tests.
    using UrlOpener = std::function<void(const QUrl &url)>;

    CatalogSetInstructionsView(LegoInstructionsService::Fetcher fetcher, QWidget *parent = nullptr);

    void setUrlOpener(UrlOpener opener);
    void setImageCache(ImageCacheService *cache);

    // Starts the lookup of `setNumber`'s booklets, forgetting those of the set before.
    void showSet(const QString &setNumber);

    QList<LegoInstructionsService::Instruction> instructions() const { return m_instructions; }
    bool isLoadingInstructions() const { return m_isLoading; }
    QList<InstructionBookletButton *> bookletButtons() const { return m_bookletButtons; }
    QPushButton *viewOnLegoButton() const { return m_viewOnLego; }
    QLabel *loadingLabel() const { return m_loadingLabel; }

    // The set's building-instructions page on LEGO's web site, named by the set's number as
    // the catalog gives it: "75192-1" leads to ".../building-instructions/75192-1".
    static QUrl viewOnLegoUrl(const QString &setNumber);

    void openViewOnLego();
    void openBooklet(const LegoInstructionsService::Instruction &booklet);

Q_SIGNALS:
    void instructionsChanged();
    void loadingChanged(bool isLoading);

private:
    static QCoro::Task<void> fetch(QPointer<CatalogSetInstructionsView> self, LegoInstructionsService::Fetcher fetcher,
                                   QString setNumber, quint64 lookup);
    void finishLookup(const QList<LegoInstructionsService::Instruction> &instructions);
    void setLoading(bool isLoading);
    void rebuildBooklets();

    LegoInstructionsService::Fetcher m_fetcher;
    UrlOpener m_urlOpener;
    QPointer<ImageCacheService> m_imageCache;
    QString m_setNumber;
    QList<LegoInstructionsService::Instruction> m_instructions;
    bool m_isLoading = false;
    quint64 m_lookup = 0; // only the latest lookup's answer is shown

    QWidget *m_loadingRow;
    QProgressBar *m_loadingIndicator;
    QLabel *m_loadingLabel;
    QVBoxLayout *m_bookletsLayout;
    QList<InstructionBookletButton *> m_bookletButtons;
    QPushButton *m_viewOnLego;
};
