// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ErrorExplanation.h"

#include "RebrickableKit/CSVFileError.h"
#include "RebrickableKit/DownloadError.h"
#include "RebrickableKit/FileOperationError.h"
#include "RebrickableKit/SQLiteError.h"
#include "RebrickableKit/TransportError.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

namespace {

// Below this much free space a failed write is taken for a full disk: a dump or a catalog
// needs far more than that.
constexpr qint64 fullDiskThresholdBytes = 1024 * 1024;

QString serverName(ErrorExplanation::Server server)
{
    switch (server) {
    case ErrorExplanation::Server::catalog:
        //% "the catalog server"
        return qtTrId("error.server.catalog");
    case ErrorExplanation::Server::updates:
        //% "the update server"
        return qtTrId("error.server.updates");
    }
    return {};
}

ErrorExplanation::Kind kindOfNetworkError(QNetworkReply::NetworkError code)
{
    using Kind = ErrorExplanation::Kind;
    switch (code) {
    case QNetworkReply::HostNotFoundError:
        return Kind::hostNotFound;
    case QNetworkReply::ConnectionRefusedError:
        return Kind::connectionRefused;
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // a transfer time-out aborts the reply
        return Kind::timedOut;
    case QNetworkReply::SslHandshakeFailedError:
        return Kind::secureConnectionFailed;
    default:
        return Kind::connectionFailed;
    }
}

QString networkSentence(ErrorExplanation::Kind kind, int httpStatus, ErrorExplanation::Server server)
{
    using Kind = ErrorExplanation::Kind;
    const QString name = serverName(server);
    switch (kind) {
    case Kind::hostNotFound:
        //% "Tessaloom could not find %1 (host not found). Check your internet connection and try again."
        return qtTrId("error.network.hostNotFound").arg(name);
    case Kind::connectionRefused:
        //% "Tessaloom could not reach %1 (connection refused). Check your connection and try again."
        return qtTrId("error.network.connectionRefused").arg(name);
    case Kind::timedOut:
        //% "Tessaloom could not reach %1 (no answer in time). Check your connection and try again."
        return qtTrId("error.network.timedOut").arg(name);
    case Kind::secureConnectionFailed:
        //% "Tessaloom could not open a secure connection to %1 (TLS handshake failed). Check the computer's date and time and any proxy settings, then try again."
        return qtTrId("error.network.secureConnectionFailed").arg(name);
    case Kind::httpStatus:
        //% "Tessaloom could not download from %1 (the server answered with error %2). Try again later."
        return qtTrId("error.network.httpStatus").arg(name).arg(httpStatus);
    default:
        //% "Tessaloom lost the connection to %1 (connection failed). Check your connection and try again."
        return qtTrId("error.network.connectionFailed").arg(name);
    }
}

QString folderOf(const QString &path)
{
    const QFileInfo file(path);
    return QDir::toNativeSeparators(file.isDir() ? file.absoluteFilePath() : file.absolutePath());
}

ErrorExplanation notWritable(const QString &path, const QString &details)
{
    return {ErrorExplanation::Kind::notWritable,
            //% "Tessaloom could not write its files (the folder %1 cannot be written). Check that the folder exists and that you may write to it, then try again."
            qtTrId("error.disk.notWritable").arg(folderOf(path)), details};
}

ErrorExplanation diskFull(const QString &details)
{
    return {ErrorExplanation::Kind::diskFull,
            //% "Tessaloom could not save the catalog (the disk is full). Free some disk space and try again."
            qtTrId("error.disk.full"), details};
}

} // namespace

ErrorExplanation::ErrorExplanation(Kind kind, QString sentence, QString details)
    : m_kind(kind)
    , m_sentence(std::move(sentence))
    , m_details(std::move(details))
{
}

ErrorExplanation ErrorExplanation::fromNetworkError(QNetworkReply::NetworkError code, int httpStatus,
                                                    const QString &details, Server server)
{
    // An HTTP error status is the server's answer, whatever connection error Qt reports with
    // it (a 404 arrives as ContentNotFoundError).
    const Kind kind = httpStatus >= 400 ? Kind::httpStatus : kindOfNetworkError(code);
    return {kind, networkSentence(kind, httpStatus, server), details};
}

ErrorExplanation ErrorExplanation::badData(const QString &details, Server server)
{
    return {Kind::badData,
            //% "Tessaloom received data from %1 that it could not read (damaged or unexpected data). Try again later."
            qtTrId("error.data.unreadable").arg(serverName(server)), details};
}

ErrorExplanation ErrorExplanation::diskWriteFailed(const QString &path, const QString &details)
{
    QStorageInfo volume(folderOf(path));
    for (QDir folder(folderOf(path)); !volume.isValid() && folder.cdUp();)
        volume = QStorageInfo(folder.absolutePath());
    if (volume.isValid() && volume.bytesAvailable() < fullDiskThresholdBytes)
        return diskFull(details);
    return notWritable(path, details);
}

ErrorExplanation ErrorExplanation::fromException(const std::exception &error, const QString &details, Server server)
{
    if (const auto *transport = dynamic_cast<const TransportError *>(&error)) {
        if (transport->kind() == TransportError::Kind::timedOut)
            return {Kind::timedOut, networkSentence(Kind::timedOut, 0, server), details};
        return fromNetworkError(transport->code(), 0, details, server);
    }
    if (const auto *download = dynamic_cast<const DownloadError *>(&error)) {
        if (download->kind() == DownloadError::Kind::decompressionFailed || download->status() == 0)
            return badData(details, server);
        return {Kind::httpStatus, networkSentence(Kind::httpStatus, download->status(), server), details};
    }
    if (const auto *file = dynamic_cast<const FileOperationError *>(&error))
        return diskWriteFailed(file->path(), details);
    if (const auto *csv = dynamic_cast<const CSVFileError *>(&error)) {
        if (csv->kind() == CSVFileError::Kind::invalidUTF8)
            return badData(details, server);
    }
    if (const auto *sqlite = dynamic_cast<const SQLiteError *>(&error)) {
        switch (sqlite->code() & 0xff) { // the primary code of an extended one
        case SQLITE_FULL:
            return diskFull(details);
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
            return {Kind::notWritable,
                    //% "Tessaloom could not write the catalog database (the file or its folder cannot be written). Check that you may write to the application's data folder, then try again."
                    qtTrId("error.disk.databaseNotWritable"), details};
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return badData(details, server);
        default:
            break;
        }
    }
    return {Kind::other,
            //% "Tessaloom could not finish setting up the catalog (an unexpected error). Try again; if it fails again, the details say what went wrong."
            qtTrId("error.other"), details};
}
