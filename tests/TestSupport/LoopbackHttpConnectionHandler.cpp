// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpConnectionHandler.h"

#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTimer>

namespace {

constexpr auto pendingRequestProperty = "loopbackPendingBytes";

QByteArray reasonPhrase(int status)
{
    switch (status) {
    case 200: return "OK";
    case 204: return "No Content";
    case 206: return "Partial Content";
    case 301: return "Moved Permanently";
    case 302: return "Found";
    case 304: return "Not Modified";
    case 400: return "Bad Request";
    case 401: return "Unauthorized";
    case 403: return "Forbidden";
    case 404: return "Not Found";
    case 429: return "Too Many Requests";
    case 500: return "Internal Server Error";
    case 503: return "Service Unavailable";
    default: return "Status";
    }
}

// Parses one complete request out of `buffer`, or nothing while it is still incomplete.
std::optional<LoopbackHttpServer::Request> parseRequest(const QByteArray &buffer)
{
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return std::nullopt;
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    LoopbackHttpServer::Request request;
    request.method = requestLine.value(0);
    request.path = requestLine.value(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon > 0)
            request.headers.insert(lines[i].left(colon).trimmed().toLower(), lines[i].mid(colon + 1).trimmed());
    }
    const qint64 contentLength = request.headers.value("content-length", "0").toLongLong();
    if (buffer.size() < headerEnd + 4 + contentLength)
        return std::nullopt;
    request.body = buffer.mid(headerEnd + 4, contentLength);
    return request;
}

} // namespace

LoopbackHttpConnectionHandler::LoopbackHttpConnectionHandler(LoopbackHttpServer *server)
    : m_server(server)
{
}

quint16 LoopbackHttpConnectionHandler::startListening()
{
    m_listener = new QTcpServer(this);
    connect(m_listener, &QTcpServer::newConnection, this, &LoopbackHttpConnectionHandler::accept);
    if (!m_listener->listen(QHostAddress::LocalHost, 0))
        return 0;
    return m_listener->serverPort();
}

void LoopbackHttpConnectionHandler::stop()
{
    if (m_listener)
        m_listener->close();
    for (QTcpSocket *socket : findChildren<QTcpSocket *>())
        socket->abort();
}

void LoopbackHttpConnectionHandler::accept()
{
    while (QTcpSocket *socket = m_listener->nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void LoopbackHttpConnectionHandler::readRequest(QTcpSocket *socket)
{
    if (socket->property("loopbackAnswered").toBool())
        return; // one request per connection: every answer closes it
    QByteArray buffer = socket->property(pendingRequestProperty).toByteArray() + socket->readAll();
    const std::optional<LoopbackHttpServer::Request> request = parseRequest(buffer);
    if (!request) {
        socket->setProperty(pendingRequestProperty, buffer);
        return;
    }
    socket->setProperty("loopbackAnswered", true);
    m_server->recordRequestStarted(*request);
    answer(socket, *request);
}

void LoopbackHttpConnectionHandler::answer(QTcpSocket *socket, const LoopbackHttpServer::Request &request)
{
    const LoopbackHttpServer::Response response = m_server->responseFor(request.path);
    QPointer<QTcpSocket> guarded(socket);
    QTimer::singleShot(response.delayMilliseconds, this, [this, guarded, request, response] {
        if (!guarded) {
            m_server->recordRequestFinished();
            return;
        }
        if (response.closeWithoutAnswer) {
            finish(guarded, true);
            return;
        }
        QByteArray body = response.body;
        if (!response.filePath.isEmpty()) {
            QFile file(response.filePath);
            body = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + ' ' + reasonPhrase(response.status) + "\r\n";
        bool hasContentLength = false;
        for (const auto &[name, value] : response.headers) {
            hasContentLength = hasContentLength || name.toLower() == "content-length";
            head += name + ": " + value + "\r\n";
        }
        if (!hasContentLength)
            head += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
        head += "Connection: close\r\n\r\n";
        guarded->write(head);
        if (request.method == "HEAD" || response.status == 304 || response.status == 204) {
            finish(guarded, false);
            return;
        }
        writeBody(guarded, body, 0, response);
    });
}

void LoopbackHttpConnectionHandler::writeBody(QPointer<QTcpSocket> socket, QByteArray body, qint64 offset,
                                              const LoopbackHttpServer::Response &response)
{
    if (!socket) {
        m_server->recordRequestFinished();
        return;
    }
    qint64 end = response.chunkSize > 0 ? std::min<qint64>(body.size(), offset + response.chunkSize) : body.size();
    const bool cut = response.cutAfterBodyBytes && *response.cutAfterBodyBytes <= end;
    if (cut)
        end = std::max(offset, *response.cutAfterBodyBytes);
    socket->write(body.constData() + offset, end - offset);
    if (cut) {
        socket->flush();
        finish(socket, true);
        return;
    }
    if (end >= body.size()) {
        finish(socket, false);
        return;
    }
    QTimer::singleShot(response.chunkDelayMilliseconds, this, [this, socket, body, end, response] {
        writeBody(socket, body, end, response);
    });
}

void LoopbackHttpConnectionHandler::finish(QTcpSocket *socket, bool abort)
{
    m_server->recordRequestFinished();
    if (abort) {
        socket->abort();
        return;
    }
    // Close once everything written has left; disconnectFromHost waits for the buffer.
    socket->disconnectFromHost();
}
