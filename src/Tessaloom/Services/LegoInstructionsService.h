// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class AsyncSemaphore;
class HTTPClient;

// Asks LEGO's public GraphQL endpoint (the "lego" host of Endpoints) for the building-
// instruction booklets of one set. No credentials are needed. Requests run one at a time:
// a second call waits for the first to end.
//
// A transfer that fails, and a body that does not decode, fail the call; an answer whose
// status is not 2xx, or whose result is not "ok", gives an empty list.
class LegoInstructionsService
{
public:
    // One booklet of a set.
    struct Instruction
    {
        int bookNumber = 1; // place of the booklet in the set, from 1
        int totalBooks = 1;
        QUrl pdfURL;
        qint64 fileSize = 0; // bytes; 0 when unknown
        bool isAdditional = false; // an additional-information booklet
        std::optional<QString> coverImageURL;

        // "Additional Info", "Building Instructions" for a set of one booklet, otherwise
        // "Book 2 of 3". Also what is stored as the booklet's description.
        QString displayTitle() const
        {
            if (isAdditional)
                return QStringLiteral("Additional Info");
            if (totalBooks < 2)
                return QStringLiteral("Building Instructions");
            return QStringLiteral("Book %1 of %2").arg(bookNumber).arg(totalBooks);
        }

        friend bool operator==(const Instruction &, const Instruction &) = default;
    };

    // What a screen calls to look booklets up; the service's fetchInstructions in the
    // program, a stand-in in tests of the screens.
    using Fetcher = std::function<QCoro::Task<QList<Instruction>>(QString setNumber)>;

    // The process-wide service, made on first use on the main thread.
    static LegoInstructionsService &shared();
    // shared().fetchInstructions as a Fetcher.
    static Fetcher sharedFetcher();

    LegoInstructionsService();
    ~LegoInstructionsService();
    LegoInstructionsService(const LegoInstructionsService &) = delete;
    LegoInstructionsService &operator=(const LegoInstructionsService &) = delete;

    // The booklets of `setNumber` (a variant suffix and blanks around it are ignored),
    // sorted by book number. Throws NetworkTransportError when the transfer fails and
    // HTTPError (decodingError) when the body does not decode.
    QCoro::Task<QList<Instruction>> fetchInstructions(QString setNumber);

    // Test seam: a silent server ends the call after `timeout` rather than a minute.
    void setRequestTimeoutForTesting(std::chrono::milliseconds timeout);

private:
    // Sends the query for `bareSetNumber`: the body of a 2xx answer, or nothing (and the
    // log line) for any other status or an answer that is not HTTP. Throws
    // NetworkTransportError when no complete answer came.
    QCoro::Task<std::optional<QByteArray>> post(QString bareSetNumber);

    std::unique_ptr<HTTPClient> m_client;
    std::unique_ptr<AsyncSemaphore> m_turn;
};
