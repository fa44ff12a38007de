// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QException>
#include <QString>

// The collection CSV file on disk: its text, read from and written to a regular file in
// UTF-8. Reading is strict, so a file that is not text never reaches the import as a
// string of replacement characters.
class CSVDocument
{
public:
    // Why a file could not be read or written. A QException, so it crosses QFuture and
    // co_await with its type.
    class FileError : public QException
    {
    public:
        enum class Kind {
            unreadable, // "The file “%1” couldn’t be opened."
            notText,    // "The file “%1” couldn’t be opened because it isn’t in the correct format."
            notWritten, // "The file “%1” couldn’t be saved."
            // "The file “%1” couldn’t be opened because it is larger than 64 MB."
            tooLarge,
        };

        FileError(Kind kind, QString fileName);

        Kind kind() const { return m_kind; }
        QString fileName() const { return m_fileName; }
        // The sentence the failure alert shows, in the user's language.
        QString description() const;

        const char *what() const noexcept override { return m_what.constData(); }
        void raise() const override { throw *this; }
        FileError *clone() const override { return new FileError(*this); }

    private:
        Kind m_kind;
        QString m_fileName;
        QByteArray m_what;
    };

    CSVDocument() = default;
    explicit CSVDocument(QString csv)
        : m_csv(std::move(csv))
    {
    }

    QString csv() const { return m_csv; }

    // The largest file read: twenty times the export of the largest collections known. Its
    // text takes about 130 MB in memory, and the import about as much again.
    static constexpr qint64 maximumFileSize = qint64(64) * 1024 * 1024;

    // The text of the file at `path`. A file that cannot be opened throws unreadable; one
    // larger than maximumFileSize throws tooLarge before a byte is read; one
    // with no bytes or with bytes that are not UTF-8 throws notText. A byte-order mark at
    // the start is kept as U+FEFF, as CSVFieldSyntax::textFromUtf8() keeps it.
    static CSVDocument read(const QString &path);
    // The same for bytes already read; `fileName` names the file in the error.
    static CSVDocument fromBytes(QByteArrayView bytes, const QString &fileName);
    // Writes the UTF-8 bytes of the text to `path` atomically. Throws notWritten.
    void write(const QString &path) const;

private:
    QString m_csv;
};
