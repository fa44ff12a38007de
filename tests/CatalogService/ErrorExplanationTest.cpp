// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "LoopbackHttpServer.h"
#include "RebrickableKit/DownloadError.h"
#include "RebrickableKit/FileOperationError.h"
#include "RebrickableKit/SQLiteError.h"
#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/ErrorExplanation.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QNetworkAccessManager>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;
using Kind = ErrorExplanation::Kind;
using Server = ErrorExplanation::Server;

// Each kind of failure told as a sentence of what happened and what to do, with the
// technical text kept for "Details". Network failures are real ones, on 127.0.0.1.
class ErrorExplanationTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    QNetworkAccessManager m_network;

    ErrorExplanation explainRequest(const QUrl &url, int transferTimeout = 0)
    {
        QNetworkRequest request(url);
        if (transferTimeout > 0)
            request.setTransferTimeout(transferTimeout);
        std::unique_ptr<QNetworkReply> reply(m_network.get(request));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        if (!reply->isFinished())
            finished.wait(10'000);
        return ErrorExplanation::fromNetworkError(reply->error(),
                                                  reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                                                  reply->errorString(), Server::catalog);
    }

    // An address on 127.0.0.1 where nothing listens any more.
    static QUrl closedAddress()
    {
        LoopbackHttpServer server;
        if (!server.listen())
            return {};
        const QUrl url = server.url(u"/sets.csv.gz"_s);
        server.close();
        return url;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English)));
        QVERIFY(m_server.listen());
    }

    void refusedConnectionSaysTheServerCouldNotBeReached()
    {
        const ErrorExplanation failure = explainRequest(closedAddress());
        QCOMPARE(failure.kind(), Kind::connectionRefused);
        QCOMPARE(failure.sentence(), u"Tessaloom could not reach the catalog server (connection refused). "
                                     "Check your connection and try again."_s);
        QVERIFY2(failure.details().contains(u"refused"_s, Qt::CaseInsensitive), qPrintable(failure.details()));
    }

    void serverErrorStatusIsNamedInTheSentence()
    {
        m_server.serveBytes(u"/broken"_s, "oops", 500);
        const ErrorExplanation failure = explainRequest(m_server.url(u"/broken"_s));
        QCOMPARE(failure.kind(), Kind::httpStatus);
        QCOMPARE(failure.sentence(), u"Tessaloom could not download from the catalog server (the server answered "
                                     "with error 500). Try again later."_s);
        QVERIFY(!failure.details().isEmpty());
    }

    void silentServerCountsAsATimeOut()
    {
        LoopbackHttpServer::Response slow;
        slow.body = "late";
        slow.delayMilliseconds = 3000;
        m_server.setResponse(u"/slow"_s, slow);
        const ErrorExplanation failure = explainRequest(m_server.url(u"/slow"_s), 200);
        QCOMPARE(failure.kind(), Kind::timedOut);
        QCOMPARE(failure.sentence(), u"Tessaloom could not reach the catalog server (no answer in time). "
                                     "Check your connection and try again."_s);
    }

    void failedSecureHandshakeSaysSo()
    {
        // A server on 127.0.0.1 that answers a TLS greeting in plain text, as a web server
        // without TLS on that port would.
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        connect(&plain, &QTcpServer::newConnection, &plain, [&plain] {
            QTcpSocket *socket = plain.nextPendingConnection();
            socket->write("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
            socket->disconnectFromHost();
        });
        QUrl url(u"https://127.0.0.1/sets.csv.gz"_s);
        url.setPort(plain.serverPort());
        const ErrorExplanation failure = explainRequest(url, 5000);
        QCOMPARE(failure.kind(), Kind::secureConnectionFailed);
        QVERIFY(failure.sentence().startsWith(
            u"Tessaloom could not open a secure connection to the catalog server (TLS handshake failed)."_s));
    }

    void unknownHostSaysTheServerWasNotFound()
    {
        // Looking up a name would leave this machine; the error the lookup ends in is given.
        const ErrorExplanation failure = ErrorExplanation::fromNetworkError(
            QNetworkReply::HostNotFoundError, 0, u"Host cdn.example not found"_s, Server::updates);
        QCOMPARE(failure.kind(), Kind::hostNotFound);
        QCOMPARE(failure.sentence(), u"Tessaloom could not find the update server (host not found). "
                                     "Check your internet connection and try again."_s);
        QCOMPARE(failure.details(), u"Host cdn.example not found"_s);
    }

    void fullDiskAsksForFreeSpace()
    {
        const RebrickableKit::SQLiteError error(RebrickableKit::SQLiteError::Kind::executeFailed,
                                                u"database or disk is full"_s, SQLITE_FULL);
        const ErrorExplanation failure = ErrorExplanation::fromException(error, QString::fromUtf8(error.what()),
                                                                         Server::catalog);
        QCOMPARE(failure.kind(), Kind::diskFull);
        QCOMPARE(failure.sentence(),
                 u"Tessaloom could not save the catalog (the disk is full). Free some disk space and try again."_s);
        QVERIFY(failure.details().contains(u"disk is full"_s));
    }

    void unwritableFolderIsNamed()
    {
        const QString folder = TestEnvironment::temporaryRoot() + u"/locked"_s;
        QVERIFY(QDir().mkpath(folder));
        const RebrickableKit::FileOperationError error(RebrickableKit::FileOperationError::Kind::writeFailed,
                                                       folder + u"/sets.csv.gz.partial"_s);
        const ErrorExplanation failure = ErrorExplanation::fromException(error, QString::fromUtf8(error.what()),
                                                                         Server::catalog);
        QCOMPARE(failure.kind(), Kind::notWritable);
        QCOMPARE(failure.sentence(), u"Tessaloom could not write its files (the folder %1 cannot be written). Check "
                                     "that the folder exists and that you may write to it, then try again."_s
                                         .arg(QDir::toNativeSeparators(folder)));
    }

    void damagedDumpIsBadData()
    {
        const auto error = RebrickableKit::DownloadError::decompressionFailed(u"sets.csv.gz"_s);
        const ErrorExplanation failure = ErrorExplanation::fromException(error, QString::fromUtf8(error.what()),
                                                                         Server::catalog);
        QCOMPARE(failure.kind(), Kind::badData);
        QCOMPARE(failure.sentence(), u"Tessaloom received data from the catalog server that it could not read "
                                     "(damaged or unexpected data). Try again later."_s);
        QCOMPARE(failure.details(), u"Failed to decompress sets.csv.gz"_s);
    }

    void unreadableUpdateFeedIsBadDataFromTheUpdateServer()
    {
        m_server.serveBytes(u"/appcast.xml"_s, "<html>maintenance</html>");
        AppUpdateService service(m_server.url(u"/appcast.xml"_s), QVersionNumber(0, 1, 0));
        const AppUpdateService::CheckResult result = QCoro::waitFor(service.checkForUpdates());
        QCOMPARE(result.outcome, AppUpdateService::CheckResult::Outcome::failed);
        QCOMPARE(result.errorText, u"Tessaloom received data from the update server that it could not read "
                                   "(damaged or unexpected data). Try again later."_s);
        QVERIFY(!result.errorDetails.isEmpty());
    }

    void refusedUpdateCheckIsASentenceWithDetails()
    {
        QUrl feed = closedAddress();
        feed.setQuery(u"key=SECRET123"_s);
        AppUpdateService service(feed, QVersionNumber(0, 1, 0));
        const AppUpdateService::CheckResult result = QCoro::waitFor(service.checkForUpdates());
        QCOMPARE(result.errorText, u"Tessaloom could not reach the update server (connection refused). "
                                   "Check your connection and try again."_s);
        QVERIFY(!result.errorDetails.isEmpty());
        QVERIFY2(!result.errorDetails.contains(u"SECRET123"_s), qPrintable(result.errorDetails));
    }

    void refusedCatalogDownloadFailsTheBuildWithASentence()
    {
        QSettings().clear();
        const QString directory = TestEnvironment::temporaryRoot() + u"/refused-build"_s;
        QUrl base = closedAddress();
        base.setPath(QString());
        CatalogDatabaseService service(directory, base);
        service.startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, CatalogDatabaseService::State::Kind::failed, 30'000);
        QCOMPARE(service.lastFailure().kind(), Kind::connectionRefused);
        QCOMPARE(service.lastFailure().sentence(), u"Tessaloom could not reach the catalog server (connection "
                                                   "refused). Check your connection and try again."_s);
        // The state keeps the technical text; it is the sentence's details.
        QCOMPARE(service.lastFailure().details(), service.state().errorText);
        RebrickableCatalog::replaceShared(nullptr);
    }
};

QTEST_MAIN(ErrorExplanationTest)
#include "ErrorExplanationTest.moc"
