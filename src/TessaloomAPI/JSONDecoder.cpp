// SPDX-License-Identifier: GPL-3.0-or-later
#include "JSONDecoder.h"

#include "SnakeCaseKeyConverter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

using namespace Qt::StringLiterals;

JSONValue JSONDecoder::parse(const QByteArray &body)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        throw JSONDecodingError(JSONDecodingError::Kind::dataCorrupted,
                                error.errorString() + u" at offset "_s + QString::number(error.offset));
    const QJsonValue root = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    return JSONValue(SnakeCaseKeyConverter::convertKeys(root));
}
