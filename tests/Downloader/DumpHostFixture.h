// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"
#include "ToolRun.h"

#include <RebrickableKit/RebrickableDownloader.h>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

// What the downloader's and the fetch tool's tests set up for every test function: a
// loopback HTTP server that stands in for the download host, and a fresh work folder for
// what a download writes, with what the tests do with them: serve the dumps, point the
// downloader or a tool at the server, read what arrived. A test class inherits it beside
// QObject, calls start() from its init() and stop() from its cleanup().
class DumpHostFixture
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    // The date the host gives as the dumps' Last-Modified.
    static constexpr const char publishedDate[] = "Thu, 02 Apr 2026 06:12:44 GMT";

    // The path of a dump on the host: /media/downloads/NAME.csv.gz
    static QString urlPath(const QString &name);
    // Lines in a file, the header line counted; -1 when it cannot be read.
    static qint64 lineCount(const QString &path);
    // The parts of addressWithSecrets() that must never show in a text: user name,
    // password, API key (name and value) and fragment.
    static const QStringList &secretParts();

protected:
    // A listening server and an empty work folder; fails the current test without them.
    void start();
    void stop();

    // work/NAME
    QString folder(const QString &name) const;
    // Where the downloader writes, work/RebrickableCSV, and a file in it.
    QString outputDirectory() const;
    QString output(const QString &fileName) const;
    std::unique_ptr<RebrickableKit::RebrickableDownloader> makeDownloader() const;

    // Serves `dumpFolder`/NAME.csv.gz at the path of each of the twelve dumps, byte for byte.
    void serveDumpFolder(const QString &dumpFolder, const Headers &headers = {{"Last-Modified", publishedDate}});

    // Finds the full-size dumps beside the checkout for fullDump(); false when they are absent.
    bool findFullDumps();
    // NAME.csv.gz among the full-size dumps.
    QString fullDump(const QString &name) const;

    // The server's address with a user name, a password, a path, an API key in the query
    // and a fragment, as a careless configuration might give it.
    QUrl addressWithSecrets() const;

    // `program` run to its end against the server, or against `baseUrl` when one is given.
    ToolRun runTool(const QString &program, const QStringList &arguments, const QUrl &baseUrl = {}) const;

    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_work;
    QString m_fullDumps;
};
