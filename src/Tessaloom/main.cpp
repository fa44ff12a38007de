// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/BundledIconTheme.h"
#include "Views/MainWindow.h"
#include "Views/StoreOpenFailureDialog.h"
#include "Views/TessaloomApp.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLocale>
#include <QPixmap>
#include <QSaveFile>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Exit status of a command line this program does not understand, as for other commands.
constexpr int usageErrorStatus = 2;

void nameApplication()
{
    QCoreApplication::setOrganizationName(u"Tessaloom"_s);
    QCoreApplication::setApplicationName(u"Tessaloom"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TESSALOOM_VERSION));
}

// The options of the program itself. Qt's own (-platform, -style, …) are taken out by
// QApplication before these are read.
struct CommandLine
{
    QCommandLineParser parser;
    QCommandLineOption help = parser.addHelpOption();
    QCommandLineOption version = parser.addVersionOption();
    QCommandLineOption screenshot{u"screenshot"_s,
                                  u"Once the main window shows its content, saves a picture of it to <file> "
                                  "(PNG) and quits."_s,
                                  u"file"_s};

    CommandLine()
    {
        parser.setApplicationDescription(u"Tessaloom keeps your collection of LEGO sets, a catalog of every "
                                         "set and part, and their market prices."_s);
        parser.addOption(screenshot);
    }
};

QStringList argumentList(int argc, char *argv[])
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    return arguments;
}

void printUsageError(const QString &error)
{
    std::fprintf(stderr, "tessaloom: %s\nTry 'tessaloom --help' for the options.\n", qPrintable(error));
}

// A desktop program started where there is no screen (an SSH session, a container)
// would otherwise abort inside the platform plugin with a cryptic message.
bool hasDisplay(const QStringList &arguments)
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        || qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || arguments.contains(u"-platform"_s)
        || arguments.contains(u"--platform"_s);
#else
    Q_UNUSED(arguments);
    return true;
#endif
}

// Saves what the main window shows, for the README's and the software centres' pictures and
// for the checks of an installed program. Ends the program either way.
void saveScreenshotAndQuit(MainWindow &window, const QString &fileName)
{
    const QPixmap picture = window.grab();
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
        std::fprintf(stderr, "tessaloom: The picture of the main window could not be saved to %s.\n",
                     qPrintable(fileName));
        QCoreApplication::exit(1);
        return;
    }
    std::printf("Saved a picture of the main window (%dx%d) to %s.\n", picture.width(), picture.height(),
                qPrintable(fileName));
    window.close();
    QCoreApplication::exit(0);
}

} // namespace

int main(int argc, char *argv[])
{
    const QStringList arguments = argumentList(argc, argv);
    {
        // --help and --version answer before anything graphical starts, display or not.
        CommandLine commandLine;
        commandLine.parser.parse(arguments);
        const bool helpWithQtOptions = commandLine.parser.isSet(u"help-all"_s);
        if (commandLine.parser.isSet(commandLine.help) || helpWithQtOptions
            || commandLine.parser.isSet(commandLine.version)) {
            QCoreApplication application(argc, argv);
            nameApplication();
            if (commandLine.parser.isSet(commandLine.version))
                commandLine.parser.showVersion();
            if (helpWithQtOptions) // Qt prints its own options only on this path.
                commandLine.parser.process({arguments.constFirst(), u"--help-all"_s});
            commandLine.parser.showHelp(0);
        }
    }

    if (!hasDisplay(arguments)) {
        // Without a display no Qt option can apply, so the command line can be judged whole.
        CommandLine commandLine;
        if (!commandLine.parser.parse(arguments)) {
            printUsageError(commandLine.parser.errorText());
            return usageErrorStatus;
        }
        std::fputs("Tessaloom needs a graphical display, and none was found (DISPLAY and "
                   "WAYLAND_DISPLAY are unset); start it from a desktop session.\n", stderr);
        return 2;
    }

    QApplication application(argc, argv);
    nameApplication();
    QApplication::setApplicationDisplayName(u"Tessaloom"_s);
    QApplication::setDesktopFileName(u"com.tessaloom.app"_s);
    BundledIconTheme::install();
    QApplication::setWindowIcon(QIcon::fromTheme(u"com.tessaloom.app"_s));

    CommandLine commandLine;
    if (!commandLine.parser.parse(QApplication::arguments())) {
        printUsageError(commandLine.parser.errorText());
        return usageErrorStatus;
    }
    if (!commandLine.parser.positionalArguments().isEmpty()) {
        printUsageError(u"Unexpected argument '%1'."_s.arg(commandLine.parser.positionalArguments().constFirst()));
        return usageErrorStatus;
    }

    TranslationLoader::install(application, QLocale());
    StoreOpenFailureDialog::install();

    TessaloomApp tessaloom;
    tessaloom.showMainWindow();
    if (commandLine.parser.isSet(commandLine.screenshot)) {
        MainWindow &window = *tessaloom.mainWindow();
        window.resize(1280, 800);
        // Connected after the program's own handler, so the catalog is open and any set-up
        // sheet is up when the picture is taken; the next turn of the event loop paints it.
        QObject::connect(&window, &MainWindow::contentAppeared, &window,
                         [&window, fileName = commandLine.parser.value(commandLine.screenshot)] {
                             QTimer::singleShot(0, &window, [&window, fileName] { saveScreenshotAndQuit(window, fileName); });
                         });
    }
    return QApplication::exec();
}
