// SPDX-License-Identifier: GPL-3.0-or-later
// Throughput of the collection CSV codec in megabytes of UTF-8 file per second, for a file
// of 10,000 records and for one of at least 50 MB made by repeating them. Each figure is
// measured beside a baseline on the same bytes in the same run, so that the ratio holds on
// a loaded machine:
//   read:  bytes → text (UTF-8, byte-order mark kept) → CSVCodec::decode → records;
//          baseline "splitBaseline": QByteArray::split of the same bytes on line feeds,
//          then of each line on commas (no quotes, no values), and "memchrScan": memchr
//          over the same bytes counting line feeds and commas;
//   write: records → CSVCodec::encode → UTF-8 bytes;
//          baseline "joinBaseline": the same field texts, already escaped and formatted,
//          joined with commas and line feeds and turned into UTF-8 (what is left of
//          writing once every value has its text).
// Each figure is the median of --runs runs (default 5), in wall time and in the thread's CPU
// time. The machine is shared, so the exit status follows CPU time: it is 1 when reading or
// writing either file runs below 50 MB/s of CPU time (or a check of the figures fails).
#include "BenchmarkOutput.h"

#include "CSVCodec.h"
#include "CSVValueFormat.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <array>
#include <cmath>
#include <cstring>
#include <ctime>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr double targetMegabytesPerSecond = 50;
constexpr double megabyte = 1e6;

// A collection as people keep it: most copies with a few details, some with all of them,
// a name with a comma or quotes now and then, notes in other scripts.
QList<InventoryRecord> collection(int count)
{
    static const QStringList names{u"Millennium Falcon"_s, u"Police Station, Modular"_s, u"Galaxy Explorer"_s,
                                   u"The \"Classic\" Space Set"_s, u"Hogwarts Castle"_s, u"Titanic"_s,
                                   u"Eiffel Tower"_s, u"Nintendo Entertainment System"_s, u"Ship in a Bottle"_s};
    static const QStringList themes{u"Star Wars"_s, u"Icons"_s, u"Harry Potter"_s, u"Ideas"_s, u"Technic"_s, u"City"_s};
    static const QStringList notes{u"Bought at the LEGO Store"_s, u"Birthday present from Anna, 2019"_s,
                                   u"Box slightly dented; bags sealed"_s, u"Geschenk von Oma – ungeöffnet"_s,
                                   u"レゴストアで購入"_s, u"Missing 2 pieces: 3001 red, 3020 \"tan\""_s};
    QRandomGenerator random(20261125);
    QList<InventoryRecord> records;
    records.reserve(count);
    const qint64 start = QDateTime(QDate(2015, 1, 1), QTime(0, 0), Qt::UTC).toSecsSinceEpoch();
    for (int index = 0; index < count; ++index) {
        InventoryRecord record;
        const std::array<quint64, 2> idBytes{random.generate64(), random.generate64()};
        record.id = QUuid::fromRfc4122(QByteArrayView(reinterpret_cast<const char *>(idBytes.data()), 16));
        record.setNumber = QString::number(random.bounded(1000, 80000)) + u"-1"_s;
        record.setName = names.at(random.bounded(int(names.size())));
        record.year = random.bounded(1970, 2027);
        record.theme = themes.at(random.bounded(int(themes.size())));
        record.pieceCount = random.bounded(20, 9000);
        record.dateAdded = QDateTime::fromSecsSinceEpoch(start + random.bounded(400'000'000), Qt::UTC);
        record.isFavorite = random.bounded(10) == 0;
        record.rating = random.bounded(6);
        if (random.bounded(3) == 0)
            record.notes = notes.at(random.bounded(int(notes.size())));
        record.acquisitionType = Vocabulary::allCases<AcquisitionType>().at(random.bounded(9));
        record.acquisitionDate = QDateTime::fromSecsSinceEpoch(start + random.bounded(400'000'000), Qt::UTC);
        record.acquisitionSource = u"LEGO Store"_s;
        record.pricePaid = Decimal::fromString(QString(QString::number(random.bounded(5, 900)) + u".99"_s));
        record.priceCurrency = u"USD"_s;
        record.overallCondition = random.bounded(2) ? OverallCondition::new_ : OverallCondition::used;
        record.boxCondition = BoxCondition::good;
        record.instructionsCondition = InstructionsCondition::good;
        record.builtStatus = BuiltStatus::built;
        record.stickerStatus = StickerStatus::applied;
        record.completeness = SetCompleteness::complete;
        if (random.bounded(10) == 0) {
            record.isDisposed = true;
            record.disposalType = DisposalType::sold;
            record.disposalDate = QDateTime::fromSecsSinceEpoch(start + random.bounded(400'000'000), Qt::UTC);
            record.disposalPrice = Decimal::fromString(QString(QString::number(random.bounded(5, 900)) + u".50"_s));
            record.disposalCurrency = u"EUR"_s;
            record.disposalNotes = u"Sold on BrickLink"_s;
        }
        if (random.bounded(20) == 0) {
            record.isTrashed = true;
            record.trashedDate = QDateTime::fromSecsSinceEpoch(start + random.bounded(400'000'000), Qt::UTC);
        }
        records.append(record);
    }
    return records;
}

double median(QList<double> samples)
{
    return BenchmarkOutput::percentile(std::move(samples), 0.5);
}

// CPU time of this thread in milliseconds: on a machine shared with other builds it stays
// put where wall time grows with the load.
double threadCpuMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

struct Timing
{
    double wallMs = 0; // median of the runs
    double cpuMs = 0;  // median of the runs
};

Timing measure(int runs, const std::function<void()> &work)
{
    QList<double> wall;
    QList<double> cpu;
    for (int run = 0; run < runs; ++run) {
        const double cpuBefore = threadCpuMilliseconds();
        wall.append(BenchmarkOutput::milliseconds(work));
        cpu.append(threadCpuMilliseconds() - cpuBefore);
    }
    return {median(wall), median(cpu)};
}

double megabytesPerSecond(qsizetype bytes, double milliseconds)
{
    return milliseconds > 0 ? double(bytes) / megabyte / (milliseconds / 1000) : 0;
}

// Keeps a result alive so the compiler cannot drop the work that made it.
volatile qsizetype sink = 0;

// The figures of one operation on one file beside its baselines, all on the same bytes.
QJsonObject figures(const QString &file, const QString &operation, qsizetype bytes, const Timing &timing,
                    const QList<std::pair<QString, Timing>> &baselines)
{
    const double wallSpeed = megabytesPerSecond(bytes, timing.wallMs);
    const double cpuSpeed = megabytesPerSecond(bytes, timing.cpuMs);
    QJsonObject result{
        {u"benchmark"_s, u"csv-codec"_s},
        {u"file"_s, file},
        {u"operation"_s, operation},
        {u"megabytes"_s, double(bytes) / megabyte},
        {u"medianMs"_s, timing.wallMs},
        {u"medianCpuMs"_s, timing.cpuMs},
        {u"megabytesPerSecond"_s, wallSpeed},
        {u"megabytesPerSecondCpu"_s, cpuSpeed},
        {u"targetMegabytesPerSecond"_s, targetMegabytesPerSecond},
        {u"targetMet"_s, wallSpeed >= targetMegabytesPerSecond},
        {u"targetMetOnCpuTime"_s, cpuSpeed >= targetMegabytesPerSecond},
    };
    for (const auto &[name, baseline] : baselines) {
        result.insert(name + u"Ms"_s, baseline.wallMs);
        result.insert(name + u"CpuMs"_s, baseline.cpuMs);
        result.insert(name + u"MegabytesPerSecond"_s, megabytesPerSecond(bytes, baseline.wallMs));
        result.insert(name + u"MegabytesPerSecondCpu"_s, megabytesPerSecond(bytes, baseline.cpuMs));
        result.insert(u"cpuRatioTo"_s + name.front().toUpper() + name.mid(1), baseline.cpuMs > 0 ? timing.cpuMs / baseline.cpuMs : 0);
    }
    return result;
}

QJsonObject measureRead(const QString &file, const QByteArray &bytes, qsizetype expectedRecords, int runs)
{
    qsizetype records = 0;
    qsizetype errors = 0;
    const Timing read = measure(runs, [&] {
        const CSVCodec::DecodeResult result = CSVCodec::decode(CSVFieldSyntax::textFromUtf8(bytes));
        records = result.records.size();
        errors = result.errors.size();
    });
    const Timing split = measure(runs, [&] {
        qsizetype fields = 0;
        const QList<QByteArray> lines = bytes.split('\n');
        for (const QByteArray &line : lines)
            fields += line.split(',').size();
        sink = fields;
    });
    const Timing scan = measure(runs, [&] {
        qsizetype separators = 0;
        for (const char wanted : {'\n', ','}) {
            const char *position = bytes.constData();
            const char *const end = position + bytes.size();
            while ((position = static_cast<const char *>(std::memchr(position, wanted, size_t(end - position))))) {
                ++separators;
                ++position;
            }
        }
        sink = separators;
    });
    QJsonObject result = figures(file, u"read"_s, bytes.size(), read,
                                 {{u"splitBaseline"_s, split}, {u"memchrScan"_s, scan}});
    result.insert(u"records"_s, double(records));
    result.insert(u"recordsAsExpected"_s, records == expectedRecords && errors == 0);
    return result;
}

QJsonObject measureWrite(const QString &file, const QList<InventoryRecord> &records, int runs, QByteArray *written)
{
    QByteArray bytes;
    const Timing write = measure(runs, [&] { bytes = CSVCodec::encode(records).toUtf8(); });

    // The baseline's input: every field of the same file as its finished text.
    QList<QStringList> lines;
    lines.reserve(records.size() + 1);
    lines.append(CSVCodec::columnNames());
    for (const InventoryRecord &record : records) {
        QString line;
        CSVCodec::appendRecord(line, record);
        lines.append(line.split(u','));
    }
    QByteArray joined;
    const Timing join = measure(runs, [&] {
        QString text;
        text.reserve(bytes.size());
        for (qsizetype index = 0; index < lines.size(); ++index) {
            if (index > 0)
                text.append(u'\n');
            const QStringList &fields = lines.at(index);
            for (qsizetype field = 0; field < fields.size(); ++field) {
                if (field > 0)
                    text.append(u',');
                text.append(fields.at(field));
            }
        }
        joined = text.toUtf8();
    });
    *written = bytes;
    QJsonObject result = figures(file, u"write"_s, bytes.size(), write, {{u"joinBaseline"_s, join}});
    result.insert(u"records"_s, double(records.size()));
    // Splitting a quoted comma and joining again gives it back: the same bytes, or the
    // baseline measured something else.
    result.insert(u"joinBaselineSameBytes"_s, joined == bytes);
    return result;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    int recordCount = 10'000;
    int runs = 5;
    double largeMegabytes = 50;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--records"_s)
            recordCount = std::max(1, arguments[index + 1].toInt());
        else if (arguments[index] == u"--runs"_s)
            runs = std::max(1, arguments[index + 1].toInt());
        else if (arguments[index] == u"--megabytes"_s)
            largeMegabytes = std::max(1.0, arguments[index + 1].toDouble());
    }

    bool everyTargetMet = true;
    const auto report = [&](const QJsonObject &figures) {
        BenchmarkOutput::print(figures);
        everyTargetMet = everyTargetMet && figures[u"targetMetOnCpuTime"_s].toBool()
            && figures[u"recordsAsExpected"_s].toBool(true) && figures[u"joinBaselineSameBytes"_s].toBool(true);
    };

    const QList<InventoryRecord> records = collection(recordCount);
    QByteArray file;
    report(measureWrite(u"records%1"_s.arg(recordCount), records, runs, &file));
    report(measureRead(u"records%1"_s.arg(recordCount), file, records.size(), runs));

    // The large file: the same records over and over until it holds the asked megabytes.
    const qsizetype repeats = qsizetype(std::ceil(largeMegabytes * megabyte / double(file.size())));
    QList<InventoryRecord> repeated;
    repeated.reserve(records.size() * repeats);
    for (qsizetype repeat = 0; repeat < repeats; ++repeat)
        repeated.append(records);
    QByteArray largeFile;
    const QString largeName = u"repeated%1MB"_s.arg(largeMegabytes);
    report(measureWrite(largeName, repeated, runs, &largeFile));
    report(measureRead(largeName, largeFile, repeated.size(), runs));

    BenchmarkOutput::print(QJsonObject{
        {u"benchmark"_s, u"csv-codec"_s},
        {u"summary"_s, true},
        {u"targetMegabytesPerSecond"_s, targetMegabytesPerSecond},
        {u"everyTargetMetOnCpuTime"_s, everyTargetMet},
    });
    return everyTargetMet ? 0 : 1;
}
