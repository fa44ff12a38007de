// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-fetch DIR: downloads the twelve catalog dumps into DIR and unpacks them there,
// one after another, ready for rebrickable-build-db DIR OUTPUT. The host is Rebrickable's,
// or whatever TESSALOOM_ENDPOINTS names for "rebrickable".
//
// rebrickable-fetch --check: only asks the host for the dumps' "Last-Modified" header.
//
// Addresses are printed without user information, query or fragment: the base URL may
// carry credentials or a key, and this output ends up in logs and bug reports.

#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/FileOperationError.h>
#include <RebrickableKit/RebrickableDownloader.h>
#include <RebrickableKit/TransportError.h>

#include <Endpoints.h>

#include "ToolConsole.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <exception>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;
using namespace ToolConsole;

namespace {

// Failure lines of this tool start with its name.
int fail(const QString &message)
{
    return ToolConsole::fail(u"rebrickable-fetch"_s, message);
}

// The sentence of any error the downloader raises; the same words the application shows.
QString describe(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const DownloadError &error) {
        return error.description();
    } catch (const TransportError &error) {
        return error.description() + u" ("_s + TransportError::displayAddress(error.url()) + u')';
    } catch (const FileOperationError &error) {
        return error.description();
    } catch (const CancellationError &error) {
        return error.description();
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    }
}

// Runs `task` to its end in a local event loop and hands back its value or its failure.
template<typename T>
std::pair<std::optional<T>, std::exception_ptr> runToEnd(QCoro::Task<T> task)
{
    auto capture = [](QCoro::Task<T> inner) -> QCoro::Task<std::pair<std::optional<T>, std::exception_ptr>> {
        try {
            co_return {co_await std::move(inner), nullptr};
        } catch (...) {
            co_return {std::nullopt, std::current_exception()};
        }
    };
    return QCoro::waitFor(capture(std::move(task)));
}

int check(const QUrl &baseUrl)
{
    RebrickableDownloader downloader(QDir::tempPath(), baseUrl);
    out() << "Checking " << TransportError::displayAddress(downloader.downloadUrl(u"sets"_s)) << Qt::endl;
    const auto [result, failure] = runToEnd(downloader.checkForUpdates(std::nullopt));
    if (failure)
        return fail(describe(failure));
    if (result->lastModified)
        out() << "Last-Modified: " << *result->lastModified << Qt::endl;
    else
        out() << "The server sent no Last-Modified header." << Qt::endl;
    return exitSuccess;
}

int fetch(const QString &directory, const QUrl &baseUrl)
{
    if (QFileInfo(directory).exists() && !QFileInfo(directory).isDir())
        return fail(u"Not a directory: "_s + directory);

    RebrickableDownloader downloader(directory, baseUrl);
    out() << "Downloading the catalog dumps from "
          << TransportError::displayAddress(downloader.downloadUrl(u"NAME"_s)) << Qt::endl
          << "into " << QDir(directory).absolutePath() << Qt::endl;

    QElapsedTimer clock;
    clock.start();
    QString current;
    const auto progress = [&current](const QString &name, int index, int total) {
        current = name;
        if (index < total)
            out() << '[' << qSetFieldWidth(2) << Qt::right << index + 1 << qSetFieldWidth(0) << '/' << total
                  << "] " << name << ".csv.gz" << Qt::endl;
    };
    const auto [paths, failure] = runToEnd(downloader.downloadAll(progress));
    if (failure) {
        // The file in hand may be half written; the ones before it are whole and stay.
        const QDir dir(directory);
        if (!current.isEmpty()) {
            QFile::remove(dir.filePath(current + u".csv"_s));
            QFile::remove(dir.filePath(current + u".csv.gz"_s));
        }
        return fail(describe(failure));
    }

    qint64 totalBytes = 0;
    out() << "Unpacked " << paths->size() << " files in "
          << QString::number(double(clock.elapsed()) / 1000.0, 'f', 1) << " s:" << Qt::endl;
    for (const QString &path : *paths) {
        const qint64 size = QFileInfo(path).size();
        totalBytes += size;
        out() << "  " << qSetFieldWidth(24) << Qt::left << QFileInfo(path).fileName() << qSetFieldWidth(14)
              << Qt::right << QString::number(size) << qSetFieldWidth(0) << " bytes" << Qt::endl;
    }
    out() << "  " << qSetFieldWidth(24) << Qt::left << "total" << qSetFieldWidth(14) << Qt::right
          << QString::number(totalBytes) << qSetFieldWidth(0) << " bytes" << Qt::endl;
    out() << "Next: rebrickable-build-db " << directory << " rebrickable.sqlite" << Qt::endl;
    return exitSuccess;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"rebrickable-fetch"_s);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Downloads the twelve Rebrickable catalog dumps into DIR and unpacks them there.\n"
        "The host can be changed with TESSALOOM_ENDPOINTS=\"rebrickable=URL\"."_s);
    parser.addHelpOption();
    const QCommandLineOption checkOption(u"check"_s,
                                         u"Only print the dumps' Last-Modified header; download nothing."_s);
    parser.addOption(checkOption);
    parser.addPositionalArgument(u"DIR"_s, u"Folder for themes.csv, colors.csv, … inventory_minifigs.csv"_s);
    parser.process(application);

    const QUrl baseUrl = Endpoints::baseUrl(Endpoints::Service::rebrickable);
    const QStringList arguments = parser.positionalArguments();
    if (parser.isSet(checkOption)) {
        if (!arguments.isEmpty()) {
            err() << parser.helpText();
            return exitUsage;
        }
        return check(baseUrl);
    }
    if (arguments.size() != 1) {
        err() << parser.helpText();
        return exitUsage;
    }
    return fetch(arguments.at(0), baseUrl);
}
