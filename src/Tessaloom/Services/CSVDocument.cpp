// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CSVDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

CSVDocument::FileError::FileError(Kind kind, QString fileName)
    : m_kind(kind)
    , m_fileName(std::move(fileName))
    , m_what(description().toUtf8())
{
}

QString CSVDocument::FileError::description() const
{
    switch (m_kind) {
    case Kind::unreadable:
        //% "The file “%1” couldn’t be opened."
        return qtTrId("file.error.unreadable").arg(m_fileName);
    case Kind::notText:
        //% "The file “%1” couldn’t be opened because it isn’t in the correct format."
        return qtTrId("file.error.notText").arg(m_fileName);
    case Kind::notWritten:
        //% "The file “%1” couldn’t be saved."
        return qtTrId("file.error.notWritten").arg(m_fileName);
    case Kind::tooLarge:
        //% "The file “%1” couldn’t be opened because it is larger than %2 MB."
        return qtTrId("file.error.tooLarge.").arg(m_fileName).arg(maximumFileSize / (1024 * 1024));
    }
    return {};
}

CSVDocument CSVDocument::read(const QString &path)
{
    const QString fileName = QFileInfo(path).fileName();
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        throw FileError(FileError::Kind::unreadable, fileName);
    if (file.size() > maximumFileSize)
        throw FileError(FileError::Kind::tooLarge, fileName);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw FileError(FileError::Kind::unreadable, fileName);
    return fromBytes(bytes, fileName);
}

CSVDocument CSVDocument::fromBytes(QByteArrayView bytes, const QString &fileName)
{
    if (bytes.isEmpty())
        throw FileError(FileError::Kind::notText, fileName);
    // Without the default flag that drops a leading byte-order mark: kept, it stays part of
    // the first column's name, as every reader of the file treats it.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        throw FileError(FileError::Kind::notText, fileName);
    return CSVDocument(std::move(text));
}

void CSVDocument::write(const QString &path) const
{
    QSaveFile file(path);
    const QByteArray bytes = m_csv.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw FileError(FileError::Kind::notWritten, QFileInfo(path).fileName());
}
