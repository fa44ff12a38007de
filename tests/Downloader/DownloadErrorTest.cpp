// SPDX-License-Identifier: GPL-3.0-or-later
#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/FileOperationError.h>
#include <RebrickableKit/TransportError.h>

#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

class DownloadErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void httpErrorNamesTheDumpFileAndTheStatus()
    {
        const DownloadError error = DownloadError::httpError(u"sets"_s, 404);
        QCOMPARE(error.kind(), DownloadError::Kind::httpError);
        QCOMPARE(error.name(), u"sets"_s);
        QCOMPARE(error.status(), 404);
        QCOMPARE(error.description(), u"Failed to download sets.csv.gz: HTTP 404"_s);
    }

    void anAnswerThatIsNotHttpShowsStatusZero()
    {
        QCOMPARE(DownloadError::httpError(u"themes"_s, 0).description(),
                 u"Failed to download themes.csv.gz: HTTP 0"_s);
    }

    void decompressionFailureNamesTheFileAsGiven()
    {
        QCOMPARE(DownloadError::decompressionFailed(u"sets.csv.gz"_s).description(),
                 u"Failed to decompress sets.csv.gz"_s);
        QCOMPARE(DownloadError::decompressionFailed(u"sets"_s).description(), u"Failed to decompress sets"_s);
        QCOMPARE(DownloadError::decompressionFailed(u"sets"_s).kind(), DownloadError::Kind::decompressionFailed);
    }

    void whatCarriesTheSameSentenceAsDescription()
    {
        const DownloadError error = DownloadError::httpError(u"inventory_parts"_s, 500);
        QCOMPARE(QString::fromUtf8(error.what()), error.description());
        const DownloadError copy = error; // the sentence survives a copy
        QCOMPARE(QString::fromUtf8(copy.what()), u"Failed to download inventory_parts.csv.gz: HTTP 500"_s);
    }

    void aTimedOutRequestSaysSoRatherThanCancelled()
    {
        const TransportError error(TransportError::Kind::timedOut, QNetworkReply::OperationCanceledError,
                                   QUrl(u"http://127.0.0.1/x"_s), u"Operation canceled"_s);
        QCOMPARE(error.description(), u"The request timed out."_s);
        QCOMPARE(QString::fromUtf8(error.what()), u"The request timed out."_s);
    }

    void aBodyShortOfItsLengthSaysTheConnectionClosedEarly()
    {
        const TransportError error(TransportError::Kind::incomplete, QNetworkReply::RemoteHostClosedError,
                                   QUrl(u"http://127.0.0.1/x"_s), QString());
        QCOMPARE(error.description(), u"The connection closed before the whole file arrived."_s);
    }

    void otherTransportFailuresKeepTheNetworkLayersSentence()
    {
        const TransportError error(TransportError::Kind::failed, QNetworkReply::ConnectionRefusedError,
                                   QUrl(u"http://127.0.0.1/x"_s), u"Connection refused"_s);
        QCOMPARE(error.description(), u"Connection refused"_s);
        QCOMPARE(error.code(), QNetworkReply::ConnectionRefusedError);
    }

    void fileOperationErrorsNameTheirPath()
    {
        using Kind = FileOperationError::Kind;
        QCOMPARE(FileOperationError(Kind::createDirectoryFailed, u"/a"_s).description(), u"Could not create the folder /a"_s);
        QCOMPARE(FileOperationError(Kind::removeFailed, u"/b"_s).description(), u"Could not remove /b"_s);
        QCOMPARE(FileOperationError(Kind::writeFailed, u"/c"_s).description(), u"Could not write /c"_s);
        QCOMPARE(FileOperationError(Kind::moveFailed, u"/d"_s).description(),
                 u"Could not move the download into place at /d"_s);
    }
};

QTEST_GUILESS_MAIN(DownloadErrorTest)
#include "DownloadErrorTest.moc"
