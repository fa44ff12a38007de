// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"

#include <QObject>
#include <QPointer>
#include <QTcpServer>

class QTcpSocket;

// The part of LoopbackHttpServer that lives on its thread: accepts connections, parses
// each request and writes the configured answer, with its delays, chunks and cuts.
class LoopbackHttpConnectionHandler : public QObject
{
    Q_OBJECT

public:
    explicit LoopbackHttpConnectionHandler(LoopbackHttpServer *server);

    Q_INVOKABLE quint16 startListening();
    Q_INVOKABLE void stop();

private:
    void accept();
    void readRequest(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const LoopbackHttpServer::Request &request);
    void writeBody(QPointer<QTcpSocket> socket, QByteArray body, qint64 offset,
                   const LoopbackHttpServer::Response &response);
    void finish(QTcpSocket *socket, bool abort);

    LoopbackHttpServer *m_server;
    QTcpServer *m_listener = nullptr;
};
