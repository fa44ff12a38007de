// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpServer.h"

#include "LoopbackHttpConnectionHandler.h"

#include <QMetaObject>
#include <QMutexLocker>

using namespace Qt::StringLiterals;

LoopbackHttpServer::LoopbackHttpServer(QObject *parent)
    : QObject(parent)
{
    m_fallback.status = 404;
    m_thread.setObjectName(u"LoopbackHttpServer"_s);
}

LoopbackHttpServer::~LoopbackHttpServer()
{
    close();
    m_thread.quit();
    m_thread.wait();
}

bool LoopbackHttpServer::listen()
{
    if (m_handler)
        return m_port != 0;
    m_handler = new LoopbackHttpConnectionHandler(this);
    m_handler->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_handler, &QObject::deleteLater);
    m_thread.start();
    QMetaObject::invokeMethod(m_handler, "startListening", Qt::BlockingQueuedConnection,
                              Q_RETURN_ARG(quint16, m_port));
    return m_port != 0;
}

quint16 LoopbackHttpServer::port() const
{
    return m_port;
}

QUrl LoopbackHttpServer::baseUrl() const
{
    return QUrl(u"http://127.0.0.1:"_s + QString::number(m_port));
}

QUrl LoopbackHttpServer::url(const QString &path) const
{
    return QUrl(baseUrl().toString() + path);
}

void LoopbackHttpServer::setResponse(const QString &path, const Response &response)
{
    const QMutexLocker locker(&m_mutex);
    m_responses.insert(path, response);
}

void LoopbackHttpServer::serveBytes(const QString &path, const QByteArray &body, int status,
                                    const QList<QPair<QByteArray, QByteArray>> &headers)
{
    Response response;
    response.status = status;
    response.body = body;
    response.headers = headers;
    setResponse(path, response);
}

void LoopbackHttpServer::serveFile(const QString &path, const QString &filePath,
                                   const QList<QPair<QByteArray, QByteArray>> &headers)
{
    Response response;
    response.filePath = filePath;
    response.headers = headers;
    setResponse(path, response);
}

void LoopbackHttpServer::setFallbackResponse(const Response &response)
{
    const QMutexLocker locker(&m_mutex);
    m_fallback = response;
}

void LoopbackHttpServer::removeResponse(const QString &path)
{
    const QMutexLocker locker(&m_mutex);
    m_responses.remove(path);
}

LoopbackHttpServer::Response LoopbackHttpServer::responseFor(const QByteArray &path) const
{
    const qsizetype query = path.indexOf('?');
    const QString key = QString::fromUtf8(query < 0 ? path : path.left(query));
    const QMutexLocker locker(&m_mutex);
    return m_responses.value(key, m_fallback);
}

void LoopbackHttpServer::recordRequestStarted(const Request &request)
{
    const QMutexLocker locker(&m_mutex);
    m_requests.append(request);
    ++m_inFlight;
    m_maximumInFlight = std::max(m_maximumInFlight, m_inFlight);
}

void LoopbackHttpServer::recordRequestFinished()
{
    const QMutexLocker locker(&m_mutex);
    --m_inFlight;
}

int LoopbackHttpServer::requestCount() const
{
    const QMutexLocker locker(&m_mutex);
    return int(m_requests.size());
}

int LoopbackHttpServer::requestCount(const QString &path) const
{
    return requestCount(QByteArray(), path);
}

int LoopbackHttpServer::requestCount(const QByteArray &method, const QString &path) const
{
    const QMutexLocker locker(&m_mutex);
    int count = 0;
    for (const Request &request : m_requests) {
        const qsizetype query = request.path.indexOf('?');
        const QByteArray bare = query < 0 ? request.path : request.path.left(query);
        if (bare == path.toUtf8() && (method.isEmpty() || request.method == method))
            ++count;
    }
    return count;
}

QList<LoopbackHttpServer::Request> LoopbackHttpServer::requests() const
{
    const QMutexLocker locker(&m_mutex);
    return m_requests;
}

int LoopbackHttpServer::inFlightRequests() const
{
    const QMutexLocker locker(&m_mutex);
    return m_inFlight;
}

int LoopbackHttpServer::maximumInFlightRequests() const
{
    const QMutexLocker locker(&m_mutex);
    return m_maximumInFlight;
}

void LoopbackHttpServer::resetCounters()
{
    const QMutexLocker locker(&m_mutex);
    m_requests.clear();
    m_maximumInFlight = m_inFlight;
}

void LoopbackHttpServer::close()
{
    if (m_handler && m_thread.isRunning())
        QMetaObject::invokeMethod(m_handler, "stop", Qt::BlockingQueuedConnection);
}
