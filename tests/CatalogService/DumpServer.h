// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"

#include <QString>
#include <QStringList>

// Serves a set of catalog dumps over loopback HTTP at "/media/downloads/NAME.csv.gz", the
// way the real host does, with a "Last-Modified" header that tests can change.
class DumpServer
{
public:
    static QStringList dumpNames();

    // Gzips the twelve NAME.csv files of `csvDirectory` into `workDirectory` and serves them.
    bool serveCsvDirectory(const QString &csvDirectory, const QString &workDirectory);
    // Serves the twelve NAME.csv.gz files of `gzipDirectory` as they are.
    bool serveGzipDirectory(const QString &gzipDirectory);

    void setLastModified(const QByteArray &value); // empty: no header at all
    // Replaces one dump's answer, e.g. with a failure.
    void setResponse(const QString &name, const LoopbackHttpServer::Response &response);
    void setGzipBytes(const QString &name, const QByteArray &gzip);
    static QString path(const QString &name);

    static QByteArray gzip(const QByteArray &bytes);

    LoopbackHttpServer &server() { return m_server; }
    QUrl baseUrl() const { return m_server.baseUrl(); }

private:
    void serveAll();

    LoopbackHttpServer m_server;
    QString m_gzipDirectory;
    QByteArray m_lastModified = "Wed, 02 Apr 2026 06:00:00 GMT";
};
