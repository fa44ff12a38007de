// SPDX-License-Identifier: GPL-3.0-or-later
// What BrickEconomyAdapter::fetchPrices costs beyond the transfer itself. A BrickEconomy
// stand-in on 127.0.0.1 answers each of `--sets` set numbers with a full set answer
// (866 bytes) after `--latency` ms. Two modes, alternating for `--rounds` rounds, each
// making the same requests one after the other:
// - `bareNetworkAccessManager` (the baseline): a QNetworkAccessManager of its own sends the
//   GET with the same headers and reads the body, nothing more;
// - `adapter`: fetchPrices for each number: credential, limiter (its window opened up so
//   that it never sleeps), request, JSON decoding and mapping to PriceResult values.
// The overhead per set is the difference of the medians divided by the number of sets;
// the exit status is 1 when it exceeds 2 ms or a fetch fails. Peak resident memory
// (getrusage) is printed before the first round and after the last. One JSON object per
// line.
//
//   price-fetch-bench [--sets 200] [--latency 20] [--rounds 5]

#include "BrickEconomyAdapter.h"
#include "BrickEconomyStandIn.h"

#include <QCoreApplication>
#include <QCoroNetworkReply>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double targetOverheadMilliseconds = 2.0;

void print(const QJsonObject &object)
{
    std::fputs(QJsonDocument(object).toJson(QJsonDocument::Compact).constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

double peakResidentMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0; // Linux reports KiB
}

// The resident memory now, from /proc (Linux); -1 where there is none. Unlike the peak it
// can fall, so a round-by-round series shows whether memory stays flat.
double residentMegabytes()
{
    QFile statm(u"/proc/self/statm"_s);
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    if (fields.size() < 2)
        return -1;
    return double(fields.at(1).toLongLong()) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

double median(QList<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return samples.isEmpty() ? 0.0 : samples.at(samples.size() / 2);
}

QCoro::Task<std::optional<QString>> storedToken(QString)
{
    co_return u"bench-key"_s;
}

struct RoundOutcome
{
    double milliseconds = 0;
    int failures = 0;
    qint64 bytes = 0;  // baseline: body bytes read
    int results = 0;   // adapter: PriceResult values
};

QCoro::Task<RoundOutcome> bareRound(QNetworkAccessManager &session, const QStringList &setNumbers)
{
    RoundOutcome outcome;
    QElapsedTimer timer;
    timer.start();
    for (const QString &setNumber : setNumbers) {
        QNetworkRequest request(BrickEconomyAdapter::requestUrl(setNumber));
        request.setTransferTimeout(60'000);
        request.setRawHeader("x-apikey", "bench-key");
        request.setRawHeader("User-Agent", "Tessaloom/1.0");
        request.setRawHeader("Accept", "application/json");
        QNetworkReply *reply = session.get(request);
        co_await reply;
        const QByteArray body = reply->readAll();
        if (reply->error() != QNetworkReply::NoError || body.isEmpty())
            ++outcome.failures;
        outcome.bytes += body.size();
        // Later, as HTTPClient does: we resume inside the reply's own finished signal.
        reply->deleteLater();
    }
    outcome.milliseconds = double(timer.nsecsElapsed()) / 1e6;
    co_return outcome;
}

QCoro::Task<RoundOutcome> adapterRound(BrickEconomyAdapter &adapter, const QStringList &setNumbers)
{
    RoundOutcome outcome;
    QElapsedTimer timer;
    timer.start();
    for (const QString &setNumber : setNumbers) {
        try {
            const QList<PriceResult> results = co_await adapter.fetchPrices(setNumber);
            outcome.results += int(results.size());
            if (results.size() != 2)
                ++outcome.failures;
        } catch (const std::exception &error) {
            std::fprintf(stderr, "fetchPrices(%s) failed: %s\n", qPrintable(setNumber), error.what());
            ++outcome.failures;
        }
    }
    outcome.milliseconds = double(timer.nsecsElapsed()) / 1e6;
    co_return outcome;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    int sets = 200;
    int latency = 20;
    int rounds = 5;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--sets"_s)
            sets = std::max(1, arguments[index + 1].toInt());
        else if (arguments[index] == u"--latency"_s)
            latency = std::max(0, arguments[index + 1].toInt());
        else if (arguments[index] == u"--rounds"_s)
            rounds = std::max(1, arguments[index + 1].toInt());
    }

    BrickEconomyStandIn standIn;
    if (!standIn.listen()) {
        std::fputs("no loopback port\n", stderr);
        return 2;
    }
    standIn.pointEndpointsHere();
    QStringList setNumbers;
    for (int index = 0; index < sets; ++index) {
        const QString setNumber = QString::number(10'000 + index) + u"-1"_s;
        standIn.serveSet(setNumber, BrickEconomyStandIn::fullSet(setNumber), latency);
        setNumbers.append(setNumber);
    }

    const double peakBefore = peakResidentMegabytes();
    print({{u"phase"_s, u"start"_s}, {u"sets"_s, sets}, {u"latencyMs"_s, latency}, {u"rounds"_s, rounds},
           {u"answerBytes"_s, BrickEconomyStandIn::answer(BrickEconomyStandIn::fullSet(setNumbers.first())).size()},
           {u"peakRssMegabytes"_s, peakBefore}});

    QNetworkAccessManager bareSession;
    BrickEconomyAdapter adapter(&storedToken);
    // The window opened up: 4 per minute would make 200 sets take 50 minutes.
    adapter.setRateLimiterForTesting(RateLimiter(std::numeric_limits<int>::max(), 60.0));

    QList<double> bareTimes;
    QList<double> adapterTimes;
    int failures = 0;
    for (int round = 1; round <= rounds; ++round) {
        const RoundOutcome bare = QCoro::waitFor(bareRound(bareSession, setNumbers));
        const RoundOutcome priced = QCoro::waitFor(adapterRound(adapter, setNumbers));
        bareTimes.append(bare.milliseconds);
        adapterTimes.append(priced.milliseconds);
        failures += bare.failures + priced.failures;
        // The stand-in keeps a record of every request it served, for tests; it lives in
        // this process, so it is emptied each round to keep it out of the memory figures.
        standIn.server().resetCounters();
        print({{u"round"_s, round},
               {u"bareNetworkAccessManagerMs"_s, bare.milliseconds},
               {u"adapterMs"_s, priced.milliseconds},
               {u"overheadPerSetMs"_s, (priced.milliseconds - bare.milliseconds) / sets},
               {u"bodyBytes"_s, double(bare.bytes)},
               {u"results"_s, priced.results},
               {u"failures"_s, bare.failures + priced.failures},
               {u"residentMegabytes"_s, residentMegabytes()},
               {u"peakRssMegabytes"_s, peakResidentMegabytes()}});
    }

    const double bareMedian = median(bareTimes);
    const double adapterMedian = median(adapterTimes);
    const double overheadPerSet = (adapterMedian - bareMedian) / sets;
    const bool withinTarget = overheadPerSet <= targetOverheadMilliseconds;
    print({{u"phase"_s, u"summary"_s},
           {u"bareNetworkAccessManagerMedianMs"_s, bareMedian},
           {u"adapterMedianMs"_s, adapterMedian},
           {u"barePerSetMs"_s, bareMedian / sets},
           {u"adapterPerSetMs"_s, adapterMedian / sets},
           {u"overheadPerSetMs"_s, overheadPerSet},
           {u"targetOverheadPerSetMs"_s, targetOverheadMilliseconds},
           {u"withinTarget"_s, withinTarget},
           {u"failures"_s, failures},
           {u"peakRssMegabytesBefore"_s, peakBefore},
           {u"peakRssMegabytesAfter"_s, peakResidentMegabytes()}});
    return withinTarget && failures == 0 ? 0 : 1;
}
