// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageDownloader.h"

#include "AddressRedaction.h"

#include <QCoroNetworkReply>
#include <QMetaObject>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct DeleteLater
{
    // The reply is still inside its own finished() signal when the coroutine resumes.
    void operator()(QNetworkReply *reply) const { reply->deleteLater(); }
};

// Errors that Qt derives from an HTTP status: the answer itself arrived whole.
bool isHttpStatusError(QNetworkReply::NetworkError error)
{
    return (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

} // namespace

ImageDownloader::ImageDownloader(QObject *parent)
    : QObject(parent)
{
    for (QNetworkAccessManager &manager : m_managers)
        manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

QNetworkAccessManager &ImageDownloader::lessBusyManager()
{
    return m_activeTransfers[0] <= m_activeTransfers[1] ? m_managers[0] : m_managers[1];
}

QCoro::Task<ImageDownloader::Result> ImageDownloader::get(QUrl url, std::stop_token stop)
{
    Result result;
    if (stop.stop_requested()) {
        result.outcome = Result::Outcome::cancelled;
        co_return result;
    }

    QNetworkAccessManager &manager = lessBusyManager();
    const std::size_t slot = &manager == &m_managers[0] ? 0 : 1;
    ++m_activeTransfers[slot];
    const auto done = qScopeGuard([this, slot] { --m_activeTransfers[slot]; });

    const std::unique_ptr<QNetworkReply, DeleteLater> reply(manager.get(QNetworkRequest(url)));
    QNetworkReply *const rawReply = reply.get();

    // The transfer time-out of QNetworkRequest ends a transfer exactly like an abort, so a
    // silent server could not be told from a cancellation; this timer marks its own.
    bool timedOut = false;
    QTimer idle;
    idle.setSingleShot(true);
    idle.setInterval(m_idleTimeout);
    QObject::connect(&idle, &QTimer::timeout, rawReply, [&timedOut, rawReply] {
        timedOut = true;
        rawReply->abort();
    });
    const auto restartIdle = [&idle] { idle.start(); };
    QObject::connect(rawReply, &QNetworkReply::metaDataChanged, &idle, restartIdle);
    QObject::connect(rawReply, &QNetworkReply::downloadProgress, &idle, restartIdle);
    idle.start();

    // A stop may be asked for from inside the destructor of whoever waits: the abort waits
    // for the event loop, so nothing resumes while that object is half gone.
    const std::stop_callback abortOnStop(stop, [guarded = QPointer<QNetworkReply>(rawReply)] {
        QMetaObject::invokeMethod(
            guarded, [guarded] { if (guarded) guarded->abort(); }, Qt::QueuedConnection);
    });

    co_await rawReply;
    idle.stop();

    const QNetworkReply::NetworkError error = rawReply->error();
    const QVariant status = rawReply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (error == QNetworkReply::OperationCanceledError && stop.stop_requested()) {
        result.outcome = Result::Outcome::cancelled;
    } else if (timedOut) {
        result.outcome = Result::Outcome::networkError;
        result.errorDescription = u"The request timed out."_s;
    } else if (error == QNetworkReply::OperationCanceledError) {
        result.outcome = Result::Outcome::urlCancelled;
    } else if (status.isValid() && (error == QNetworkReply::NoError || isHttpStatusError(error))) {
        result.outcome = Result::Outcome::http;
        result.status = status.toInt();
        result.body = rawReply->readAll();
    } else if (error == QNetworkReply::NoError) {
        result.outcome = Result::Outcome::nonHttp;
        result.body = rawReply->readAll();
    } else {
        result.outcome = Result::Outcome::networkError;
        result.errorDescription = AddressRedaction::redactAddressesIn(rawReply->errorString());
    }
    co_return result;
}
