// SPDX-License-Identifier: GPL-3.0-or-later
// A separate process that starts the way the program does, with the store's failure
// dialog installed, and opens the shared store, so that a test can watch the whole path
// from a failure through the dialog to the fatal end from outside:
//
//   StoreOpenFailureProcess gui    a graphical application; when the dialog shows, prints
//                                  "dialog shown", its title and its message, each on one
//                                  line, and answers it as a user would
//   StoreOpenFailureProcess core   no graphical application: no dialog can show
//
// Either prints "opened" if opening the store did not end the process.

#include "Store/PersistenceController.h"
#include "Views/StoreOpenFailureDialog.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLocale>
#include <QPushButton>
#include <QTimer>

#include <cstdio>
#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    std::fputs(qUtf8Printable(QString(line).replace(u'\n', u' ')), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

// Stands in for the user: reads the dialog once it is on screen, then presses its button.
class DialogAnswerer : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *dialog = qobject_cast<StoreOpenFailureDialog *>(watched);
        if (dialog && event->type() == QEvent::Show) {
            say(u"dialog shown%1"_s.arg(dialog->isModal() ? u" modal"_s : QString()));
            say(u"title: "_s + dialog->windowTitle());
            say(u"message: "_s + dialog->informativeText());
            QTimer::singleShot(0, dialog, [dialog] { dialog->defaultButton()->click(); });
        }
        return false;
    }
};

} // namespace

int main(int argc, char *argv[])
{
    const bool graphical = argc >= 2 && std::strcmp(argv[1], "gui") == 0;
    std::unique_ptr<QCoreApplication> application;
    if (graphical)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setOrganizationName(u"Tessaloom"_s);
    QCoreApplication::setApplicationName(u"Tessaloom"_s);
    TranslationLoader::install(*application, QLocale(QLocale::English));
    DialogAnswerer answerer;
    application->installEventFilter(&answerer);

    StoreOpenFailureDialog::install();
    PersistenceController::shared();
    say(u"opened"_s);
    return 0;
}
