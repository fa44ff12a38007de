// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppUpdateService.h"

#include "AddressRedaction.h"
#include "Endpoints.h"
#include "Logging.h"
#include "Services/AppcastParser.h"
#include "Services/ErrorExplanation.h"

#include <QCoreApplication>
#include <QCoroNetworkReply>
#include <QNetworkReply>
#include <QScopeGuard>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr int feedTimeoutMilliseconds = 30'000;
}

AppUpdateService &AppUpdateService::shared()
{
    static AppUpdateService *instance = [] {
        auto *service = new AppUpdateService(Endpoints::baseUrl(Endpoints::Service::updates),
                                             QVersionNumber::fromString(QCoreApplication::applicationVersion()),
                                             QCoreApplication::instance());
        qCInfo(lcNetwork).noquote() << "Update service ready; feed" << AddressRedaction::redacted(service->feedUrl());
        return service;
    }();
    return *instance;
}

AppUpdateService::AppUpdateService(QUrl feedUrl, QVersionNumber currentVersion, QObject *parent)
    : QObject(parent)
    , m_feedUrl(std::move(feedUrl))
    , m_currentVersion(std::move(currentVersion))
{
}

void AppUpdateService::setCanCheckForUpdates(bool value)
{
    if (m_canCheckForUpdates == value)
        return;
    m_canCheckForUpdates = value;
    Q_EMIT canCheckForUpdatesChanged(value);
}

QCoro::Task<AppUpdateService::CheckResult> AppUpdateService::checkForUpdates()
{
    setCanCheckForUpdates(false);
    const auto enableAgain = qScopeGuard([this] { setCanCheckForUpdates(true); });

    QNetworkRequest request(m_feedUrl);
    request.setTransferTimeout(feedTimeoutMilliseconds);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    std::unique_ptr<QNetworkReply> reply(co_await m_network.get(request));

    CheckResult result;
    if (reply->error() != QNetworkReply::NoError) {
        // Qt's own error text names the whole address, query string included; the log gets
        // the address without its secrets and the user a sentence of our own.
        qCWarning(lcNetwork).noquote() << "Update check failed:" << AddressRedaction::redacted(m_feedUrl)
                                       << AddressRedaction::redactAddressesIn(reply->errorString());
        const ErrorExplanation failure = ErrorExplanation::fromNetworkError(
            reply->error(), reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            AddressRedaction::redactAddressesIn(reply->errorString()), ErrorExplanation::Server::updates);
        result.errorText = failure.sentence();
        result.errorDetails = failure.details();
        co_return result;
    }
    const auto items = AppcastParser::parse(reply->readAll());
    if (!items) {
        qCWarning(lcNetwork).noquote() << "Update feed unreadable:" << AddressRedaction::redacted(m_feedUrl);
        const ErrorExplanation failure = ErrorExplanation::badData(
            //% "The update feed is not a readable appcast."
            qtTrId("update.error.unreadableFeed"), ErrorExplanation::Server::updates);
        result.errorText = failure.sentence();
        result.errorDetails = failure.details();
        co_return result;
    }
    const auto newest = AppcastParser::newest(*items);
    if (newest && QVersionNumber::compare(newest->version, m_currentVersion) > 0) {
        result.outcome = CheckResult::Outcome::updateAvailable;
        result.newest = *newest;
    } else {
        result.outcome = CheckResult::Outcome::upToDate;
    }
    co_return result;
}
