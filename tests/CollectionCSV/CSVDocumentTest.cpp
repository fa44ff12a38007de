// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing the collection CSV file on disk: strict UTF-8 in, UTF-8 out,
// written atomically.
#include "TestEnvironment.h"

#include "Services/CSVDocument.h"
#include "Views/TranslationLoader.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class CSVDocumentTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString writeBytes(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    static std::optional<CSVDocument::FileError> readFailure(const QString &path)
    {
        try {
            CSVDocument::read(path);
        } catch (const CSVDocument::FileError &error) {
            return error;
        }
        return std::nullopt;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void utf8FileReadsAsItsText()
    {
        const QString text = u"id,set_number,set_name\n,10497-1,Galaxy Explorer – Ñandú 🧱"_s;
        QCOMPARE(CSVDocument::read(writeBytes(u"good.csv"_s, text.toUtf8())).csv(), text);
    }

    void byteOrderMarkStaysAtTheStartOfTheText()
    {
        const QString text = CSVDocument::read(writeBytes(u"bom.csv"_s, "\xEF\xBB\xBFid,set_number")).csv();
        QCOMPARE(text, u"\uFEFFid,set_number"_s);
    }

    void fileThatIsNotUtf8IsRefusedAsNotText()
    {
        // "Geschenk für Oma" in Latin-1: the "ü" is a lone 0xFC byte.
        const std::optional<CSVDocument::FileError> error
            = readFailure(writeBytes(u"latin1.csv"_s, "id,set_number,notes\n,10497-1,Geschenk f\xFCr Oma"));
        QVERIFY(error);
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::notText);
        QCOMPARE(error->description(),
                 u"The file “latin1.csv” couldn’t be opened because it isn’t in the correct format."_s);
    }

    void binaryFileIsRefusedAsNotText()
    {
        const QByteArray png("\x89PNG\r\n\x1A\n\x00\x00\x00\rIHDR\x00\x00\x01\x00", 20);
        const std::optional<CSVDocument::FileError> error = readFailure(writeBytes(u"picture.csv"_s, png));
        QVERIFY(error);
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::notText);
    }

    void fileWithoutContentsIsRefusedAsNotText()
    {
        const std::optional<CSVDocument::FileError> error = readFailure(writeBytes(u"empty.csv"_s, QByteArray()));
        QVERIFY(error);
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::notText);
    }

    void missingFileOrFolderIsRefusedAsUnreadable()
    {
        std::optional<CSVDocument::FileError> error = readFailure(m_folder.filePath(u"absent.csv"_s));
        QVERIFY(error);
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::unreadable);
        QCOMPARE(error->description(), u"The file “absent.csv” couldn’t be opened."_s);
        error = readFailure(m_folder.path());
        QVERIFY(error);
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::unreadable);
    }

    void writingGivesTheUtf8BytesWithoutByteOrderMarkAndReplacesAWholeFile()
    {
        const QString path = writeBytes(u"export.csv"_s, "an older, longer file that must go entirely");
        const QString text = u"id,set_number\n,Ñ"_s;
        CSVDocument(text).write(path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), text.toUtf8());
    }

    void writingIntoAMissingFolderFailsAsNotWritten()
    {
        try {
            CSVDocument(u"id"_s).write(m_folder.filePath(u"no/such/folder/export.csv"_s));
            QFAIL("the write should have failed");
        } catch (const CSVDocument::FileError &error) {
            QCOMPARE(error.kind(), CSVDocument::FileError::Kind::notWritten);
        }
    }
};

QTEST_GUILESS_MAIN(CSVDocumentTest)
#include "CSVDocumentTest.moc"
