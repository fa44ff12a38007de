// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPair>
#include <QString>
#include <QThread>
#include <QUrl>

#include <memory>
#include <optional>

class LoopbackHttpConnectionHandler;

// A small HTTP/1.1 server on 127.0.0.1 for tests of network code: it serves bytes or files
// per path with a chosen status and headers, answers HEAD with headers only, counts
// requests and how many are served at once, and can delay, throttle or cut a response.
//
// It runs on a thread of its own, so a test whose main thread waits (a blocking call, a
// command-line tool started as a process) is still answered. Every response closes its
// connection, so "connections open at once" and "requests in flight" are the same number.
class LoopbackHttpServer : public QObject
{
    Q_OBJECT

public:
    struct Response
    {
        int status = 200;
        QList<QPair<QByteArray, QByteArray>> headers;
        QByteArray body;
        QString filePath;             // when set, the body is this file's bytes
        int delayMilliseconds = 0;    // before the status line is sent
        int chunkSize = 0;            // > 0: the body goes out in chunks of this size...
        int chunkDelayMilliseconds = 0; // ...with this pause between them
        std::optional<qint64> cutAfterBodyBytes; // drop the connection after this much body
        bool closeWithoutAnswer = false;         // drop the connection before any byte
    };

    struct Request
    {
        QByteArray method;
        QByteArray path; // with the query, as sent
        QHash<QByteArray, QByteArray> headers; // names lower-cased
        QByteArray body;
    };

    explicit LoopbackHttpServer(QObject *parent = nullptr);
    ~LoopbackHttpServer() override;

    // Starts listening on a free port of 127.0.0.1. False when no port could be had.
    bool listen();
    quint16 port() const;
    QUrl baseUrl() const; // "http://127.0.0.1:PORT"
    QUrl url(const QString &path) const;

    // What a path answers; the path is matched without its query string. Unknown paths
    // answer the fallback (404 with an empty body unless changed).
    void setResponse(const QString &path, const Response &response);
    void serveBytes(const QString &path, const QByteArray &body, int status = 200,
                    const QList<QPair<QByteArray, QByteArray>> &headers = {});
    void serveFile(const QString &path, const QString &filePath,
                   const QList<QPair<QByteArray, QByteArray>> &headers = {});
    void setFallbackResponse(const Response &response);
    void removeResponse(const QString &path);

    int requestCount() const;
    int requestCount(const QString &path) const;           // any method
    int requestCount(const QByteArray &method, const QString &path) const;
    QList<Request> requests() const;
    int inFlightRequests() const;
    int maximumInFlightRequests() const;
    void resetCounters();

    // Stops accepting and drops every open connection, like a server that dies.
    void close();

private:
    friend class LoopbackHttpConnectionHandler;

    Response responseFor(const QByteArray &path) const;
    void recordRequestStarted(const Request &request);
    void recordRequestFinished();

    mutable QMutex m_mutex;
    QHash<QString, Response> m_responses;
    Response m_fallback;
    QList<Request> m_requests;
    int m_inFlight = 0;
    int m_maximumInFlight = 0;

    QThread m_thread;
    LoopbackHttpConnectionHandler *m_handler = nullptr; // lives on m_thread
    quint16 m_port = 0;
};
