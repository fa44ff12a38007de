// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/LegoInstructionsService.h"

#include "Endpoints.h"
#include "HTTPClient.h"
#include "Logging.h"
#include "Services/AsyncSemaphore.h"
#include "SetNumberNormalizer.h"

#include <QCoroSignal>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// The shapes of the GraphQL answer, with only the keys that are read. A key marked
// optional may be missing or null; every other key must be there with its type, or the
// whole answer fails to decode.

struct CoverImage
{
    QString src;

    static CoverImage decode(const JSONValue &value) { return {value.decode<QString>(u"src"_s)}; }
};

struct PDF
{
    QString pdfUrl;
    std::optional<QString> fileSize;
    std::optional<CoverImage> coverImage;

    static PDF decode(const JSONValue &value)
    {
        return {value.decode<QString>(u"pdfUrl"_s), value.decodeIfPresent<QString>(u"fileSize"_s),
                value.decodeIfPresent<CoverImage>(u"coverImage"_s)};
    }
};

struct Sequence
{
    QString total;
    QString element;

    static Sequence decode(const JSONValue &value)
    {
        return {value.decode<QString>(u"total"_s), value.decode<QString>(u"element"_s)};
    }
};

struct BuildingInstruction
{
    bool isAdditionalInfoBooklet = false;
    Sequence sequence;
    PDF pdf;

    static BuildingInstruction decode(const JSONValue &value)
    {
        return {value.decode<bool>(u"isAdditionalInfoBooklet"_s), value.decode<Sequence>(u"sequence"_s),
                value.decode<PDF>(u"pdf"_s)};
    }
};

struct InstructionData
{
    std::optional<QString> name;
    std::optional<QString> setNumber;
    QList<BuildingInstruction> buildingInstructions;

    static InstructionData decode(const JSONValue &value)
    {
        return {value.decodeIfPresent<QString>(u"name"_s), value.decodeIfPresent<QString>(u"setNumber"_s),
                value.decode<QList<BuildingInstruction>>(u"buildingInstructions"_s)};
    }
};

struct InstructionsResult
{
    QString status;
    std::optional<InstructionData> data;

    static InstructionsResult decode(const JSONValue &value)
    {
        return {value.decode<QString>(u"status"_s), value.decodeIfPresent<InstructionData>(u"data"_s)};
    }
};

struct CustomerServiceContainer
{
    InstructionsResult getBuildingInstructionsForSet;

    static CustomerServiceContainer decode(const JSONValue &value)
    {
        return {value.decode<InstructionsResult>(u"getBuildingInstructionsForSet"_s)};
    }
};

struct DataContainer
{
    CustomerServiceContainer customerService;

    static DataContainer decode(const JSONValue &value)
    {
        return {value.decode<CustomerServiceContainer>(u"customerService"_s)};
    }
};

struct GraphQLResponse
{
    DataContainer data;

    static GraphQLResponse decode(const JSONValue &value) { return {value.decode<DataContainer>(u"data"_s)}; }
};

const QString requestPath = u"/api/graphql/getBuildingInstructionsForSet"_s;
const QString operationName = u"getBuildingInstructionsForSet"_s;

// Sent exactly as written, line feeds and indentation included, so that every request
// carries the same bytes; reformatting it would change what the endpoint receives.
const QString graphQLQuery = u"query getBuildingInstructionsForSet($setNumber: String!) {\n"
                             u"    customerService {\n"
                             u"        getBuildingInstructionsForSet(setNumber: $setNumber) {\n"
                             u"            status\n"
                             u"            data {\n"
                             u"                name\n"
                             u"                setNumber\n"
                             u"                buildingInstructions {\n"
                             u"                    isAdditionalInfoBooklet\n"
                             u"                    sequence { total element }\n"
                             u"                    pdf { pdfUrl fileSize coverImage { src } }\n"
                             u"                }\n"
                             u"            }\n"
                             u"        }\n"
                             u"    }\n"
                             u"}"_s;

QByteArray requestBody(const QString &setNumber)
{
    const QJsonObject body{
        {u"operationName"_s, operationName},
        {u"variables"_s, QJsonObject{{u"setNumber"_s, setNumber}}},
        {u"query"_s, graphQLQuery},
    };
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

// A booklet number or count; an empty or unreadable one counts as 1, so a booklet
// without its sequence still reads as "the one booklet of the set".
int countOrOne(const QString &text)
{
    bool ok = false;
    const int value = text.toInt(&ok, 10);
    return ok ? value : 1;
}

// Only an absolute address can be opened: a relative path or text that does not parse
// would give a link that leads nowhere, so such a booklet is left out.
std::optional<QUrl> bookletAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (text.isEmpty() || !url.isValid() || url.scheme().isEmpty())
        return std::nullopt;
    return url;
}

QList<LegoInstructionsService::Instruction> instructionsFrom(const QList<BuildingInstruction> &booklets)
{
    QList<LegoInstructionsService::Instruction> instructions;
    instructions.reserve(booklets.size());
    for (const BuildingInstruction &booklet : booklets) {
        const std::optional<QUrl> pdfURL = bookletAddress(booklet.pdf.pdfUrl);
        if (!pdfURL)
            continue;
        LegoInstructionsService::Instruction instruction;
        instruction.pdfURL = *pdfURL;
        instruction.bookNumber = countOrOne(booklet.sequence.element);
        instruction.totalBooks = countOrOne(booklet.sequence.total);
        if (booklet.pdf.fileSize) {
            bool ok = false;
            const qint64 size = booklet.pdf.fileSize->toLongLong(&ok, 10);
            instruction.fileSize = ok ? size : 0;
        }
        instruction.isAdditional = booklet.isAdditionalInfoBooklet;
        if (booklet.pdf.coverImage)
            instruction.coverImageURL = booklet.pdf.coverImage->src;
        instructions.append(std::move(instruction));
    }
    // Stable, so booklets that share a number keep the order the service gave them.
    std::stable_sort(instructions.begin(), instructions.end(),
                     [](const auto &left, const auto &right) { return left.bookNumber < right.bookNumber; });
    return instructions;
}

struct ReplyDeleter
{
    void operator()(QNetworkReply *reply) const
    {
        reply->disconnect();
        reply->deleteLater();
    }
};

} // namespace

LegoInstructionsService &LegoInstructionsService::shared()
{
    // Never destroyed: a fetch still waiting at exit must not resume into a dead object.
    static LegoInstructionsService *const instance = new LegoInstructionsService();
    return *instance;
}

LegoInstructionsService::Fetcher LegoInstructionsService::sharedFetcher()
{
    return [](QString setNumber) { return shared().fetchInstructions(std::move(setNumber)); };
}

LegoInstructionsService::LegoInstructionsService()
    : m_client(std::make_unique<HTTPClient>())
    , m_turn(std::make_unique<AsyncSemaphore>(1))
{
}

LegoInstructionsService::~LegoInstructionsService() = default;

void LegoInstructionsService::setRequestTimeoutForTesting(std::chrono::milliseconds timeout)
{
    m_client->setRequestTimeoutForTesting(timeout);
}

QCoro::Task<QList<LegoInstructionsService::Instruction>> LegoInstructionsService::fetchInstructions(QString setNumber)
{
    co_await m_turn->acquire();
    const AsyncSemaphore::Permit permit(*m_turn);

    const std::optional<QByteArray> body = co_await post(SetNumberNormalizer::baseNumber(setNumber));
    if (!body)
        co_return {};

    const GraphQLResponse response = HTTPClient::decodeBody<GraphQLResponse>(*body);
    const InstructionsResult &result = response.data.customerService.getBuildingInstructionsForSet;
    if (result.status != u"ok"_s || !result.data)
        co_return {};
    co_return instructionsFrom(result.data->buildingInstructions);
}

QCoro::Task<std::optional<QByteArray>> LegoInstructionsService::post(QString bareSetNumber)
{
    // HTTPClient only sends GET; the request is built by it (time-out, cache policy) and
    // sent here through its session.
    QNetworkRequest request = m_client->makeRequest(Endpoints::url(Endpoints::Service::lego, requestPath));
    request.setRawHeader("Content-Type", "application/json");
    request.setRawHeader("Accept", "application/json");
    request.setRawHeader("User-Agent", "Tessaloom/1.0");
    request.setRawHeader("x-locale", "en-AU");

    const std::unique_ptr<QNetworkReply, ReplyDeleter> reply(m_client->session().post(request, requestBody(bareSetNumber)));
    if (!reply->isFinished())
        co_await qCoro(reply.get(), &QNetworkReply::finished);

    // Any answer with a status line outside 2xx means "no booklets today", whatever else
    // went wrong with its body, which is never read.
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid() && (status.toInt() < 200 || status.toInt() > 299)) {
        qCWarning(lcInstructions, "LEGO instructions API returned non-200 status");
        co_return std::nullopt;
    }
    const QNetworkReply::NetworkError error = reply->error();
    if (error != QNetworkReply::NoError) {
        // Nobody but the transfer time-out aborts this request.
        const bool timedOut = error == QNetworkReply::OperationCanceledError || error == QNetworkReply::TimeoutError;
        throw NetworkTransportError(timedOut ? NetworkTransportError::Kind::timedOut : NetworkTransportError::Kind::failed,
                                    error, reply->errorString());
    }
    if (!status.isValid()) {
        qCWarning(lcInstructions, "LEGO instructions API returned non-200 status");
        co_return std::nullopt;
    }
    co_return reply->readAll();
}
