// SPDX-License-Identifier: GPL-3.0-or-later
#include "GzipTestFiles.h"

#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/GzipFileUnpacker.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using RebrickableKit::DownloadError;
using RebrickableKit::GzipFileUnpacker;

namespace {

const QByteArray smallCsv = "id,name,parent_id\n1,Technic,\n2,Arctic Technic,1\n3,\"Town, City\",\n";

// Text that doesn't repeat much, several times the size of the unpacking buffer.
QByteArray largeCsv()
{
    QByteArray text = "set_num,name,year\n";
    QRandomGenerator random(42);
    while (text.size() < 3 * GzipFileUnpacker::bufferSize + 1234)
        text += QByteArray::number(random.generate()) + ",Set " + QByteArray::number(random.generate64()) + ",1999\n";
    return text;
}

} // namespace

class GzipFileUnpackerTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString path(const QString &name) const { return m_directory.filePath(name); }

    static std::optional<DownloadError> unpackFailure(const QString &source, const QString &target)
    {
        try {
            GzipFileUnpacker::unpack(source, target);
        } catch (const DownloadError &error) {
            return error;
        }
        return std::nullopt;
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_directory.isValid());
        for (const QString &name : QDir(m_directory.path()).entryList(QDir::Files))
            QFile::remove(path(name));
    }

    void theBufferIsAQuarterMebibyte()
    {
        QCOMPARE(GzipFileUnpacker::bufferSize, 262144);
    }

    void unpacksASmallFileExactly()
    {
        GzipTestFiles::writeAll(path(u"themes.csv.gz"_s), GzipTestFiles::compress(smallCsv));
        GzipFileUnpacker::unpack(path(u"themes.csv.gz"_s), path(u"themes.csv"_s));
        QCOMPARE(GzipTestFiles::readAll(path(u"themes.csv"_s)), smallCsv);
    }

    void unpacksAFileSeveralBuffersLongExactly()
    {
        const QByteArray text = largeCsv();
        GzipTestFiles::writeAll(path(u"sets.csv.gz"_s), GzipTestFiles::compress(text));
        GzipFileUnpacker::unpack(path(u"sets.csv.gz"_s), path(u"sets.csv"_s));
        QCOMPARE(QFileInfo(path(u"sets.csv"_s)).size(), text.size());
        QVERIFY(GzipTestFiles::readAll(path(u"sets.csv"_s)) == text);
    }

    void anEmptyGzipFileGivesAnEmptyFile()
    {
        GzipTestFiles::writeAll(path(u"empty.csv.gz"_s), GzipTestFiles::compress({}));
        GzipFileUnpacker::unpack(path(u"empty.csv.gz"_s), path(u"empty.csv"_s));
        QVERIFY(QFileInfo::exists(path(u"empty.csv"_s)));
        QCOMPARE(QFileInfo(path(u"empty.csv"_s)).size(), 0);
    }

    void aLeftoverTargetIsReplacedNotAppendedTo()
    {
        GzipTestFiles::writeAll(path(u"themes.csv"_s), QByteArray(100000, 'x'));
        GzipTestFiles::writeAll(path(u"themes.csv.gz"_s), GzipTestFiles::compress(smallCsv));
        GzipFileUnpacker::unpack(path(u"themes.csv.gz"_s), path(u"themes.csv"_s));
        QCOMPARE(GzipTestFiles::readAll(path(u"themes.csv"_s)), smallCsv);
    }

    void aFileCutShortFailsNamingTheSource()
    {
        const QByteArray packed = GzipTestFiles::compress(largeCsv());
        GzipTestFiles::writeAll(path(u"sets.csv.gz"_s), packed.left(packed.size() / 2));
        const std::optional<DownloadError> error = unpackFailure(path(u"sets.csv.gz"_s), path(u"sets.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->kind(), DownloadError::Kind::decompressionFailed);
        QCOMPARE(error->description(), u"Failed to decompress sets.csv.gz"_s);
        // What did unpack before the cut stays behind, for the caller to clean up.
        QVERIFY(QFileInfo::exists(path(u"sets.csv"_s)));
    }

    void aFileMissingOnlyItsTrailerFails()
    {
        const QByteArray packed = GzipTestFiles::compress(smallCsv);
        GzipTestFiles::writeAll(path(u"themes.csv.gz"_s), packed.left(packed.size() - 8));
        QVERIFY(unpackFailure(path(u"themes.csv.gz"_s), path(u"themes.csv"_s)));
    }

    void damagedCompressedDataFails()
    {
        QByteArray packed = GzipTestFiles::compress(largeCsv());
        for (qsizetype i = packed.size() / 2; i < packed.size() / 2 + 64; ++i)
            packed[i] = char(~packed[i]);
        GzipTestFiles::writeAll(path(u"sets.csv.gz"_s), packed);
        const std::optional<DownloadError> error = unpackFailure(path(u"sets.csv.gz"_s), path(u"sets.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->description(), u"Failed to decompress sets.csv.gz"_s);
    }

    void aMissingSourceFailsNamingTheSource()
    {
        const std::optional<DownloadError> error = unpackFailure(path(u"colors.csv.gz"_s), path(u"colors.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->description(), u"Failed to decompress colors.csv.gz"_s);
        QVERIFY(!QFileInfo::exists(path(u"colors.csv"_s)));
    }

    void aTargetThatCannotBeCreatedFailsNamingTheTarget()
    {
        GzipTestFiles::writeAll(path(u"colors.csv.gz"_s), GzipTestFiles::compress(smallCsv));
        const QString target = path(u"no-such-folder/colors.csv"_s);
        const std::optional<DownloadError> error = unpackFailure(path(u"colors.csv.gz"_s), target);
        QVERIFY(error);
        QCOMPARE(error->description(), u"Failed to decompress colors.csv"_s);
    }

    void plainTextIsRefusedAsNotGzip()
    {
        // zlib alone would copy a file without a gzip header through as it stands, and an
        // error page served in place of a dump would become the dump.
        GzipTestFiles::writeAll(path(u"themes.csv.gz"_s), smallCsv);
        const std::optional<DownloadError> error = unpackFailure(path(u"themes.csv.gz"_s), path(u"themes.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->kind(), DownloadError::Kind::decompressionFailed);
        QCOMPARE(error->description(), u"Failed to decompress themes.csv.gz"_s);
        QVERIFY(!QFileInfo::exists(path(u"themes.csv"_s)));
    }

    void anHtmlPageIsRefusedAndLeavesALeftoverTargetAsItWas()
    {
        GzipTestFiles::writeAll(path(u"sets.csv"_s), smallCsv);
        GzipTestFiles::writeAll(path(u"sets.csv.gz"_s), "<!DOCTYPE html><html><body>Service Unavailable</body></html>");
        const std::optional<DownloadError> error = unpackFailure(path(u"sets.csv.gz"_s), path(u"sets.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->description(), u"Failed to decompress sets.csv.gz"_s);
        QCOMPARE(GzipTestFiles::readAll(path(u"sets.csv"_s)), smallCsv);
    }

    void anEmptyFileIsRefusedAsNotGzip()
    {
        GzipTestFiles::writeAll(path(u"colors.csv.gz"_s), QByteArray());
        QVERIFY(QFileInfo::exists(path(u"colors.csv.gz"_s)));
        const std::optional<DownloadError> error = unpackFailure(path(u"colors.csv.gz"_s), path(u"colors.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->description(), u"Failed to decompress colors.csv.gz"_s);
        QVERIFY(!QFileInfo::exists(path(u"colors.csv"_s)));
    }

    void aFileOfOnlyTheFirstMagicByteIsRefused()
    {
        GzipTestFiles::writeAll(path(u"colors.csv.gz"_s), QByteArray(1, char(0x1f)));
        QVERIFY(unpackFailure(path(u"colors.csv.gz"_s), path(u"colors.csv"_s)));
        QVERIFY(!QFileInfo::exists(path(u"colors.csv"_s)));
    }

    void aGzipHeaderFollowedByNothingFails()
    {
        // The magic bytes alone don't make a gzip file: the rest must still unpack.
        GzipTestFiles::writeAll(path(u"colors.csv.gz"_s), GzipTestFiles::compress(smallCsv).left(10));
        QVERIFY(unpackFailure(path(u"colors.csv.gz"_s), path(u"colors.csv"_s)));
    }
};

QTEST_GUILESS_MAIN(GzipFileUnpackerTest)
#include "GzipFileUnpackerTest.moc"
