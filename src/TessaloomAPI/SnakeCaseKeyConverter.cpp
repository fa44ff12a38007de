// SPDX-License-Identifier: GPL-3.0-or-later
#include "SnakeCaseKeyConverter.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

QString SnakeCaseKeyConverter::convert(const QString &key)
{
    qsizetype first = 0;
    while (first < key.size() && key.at(first) == u'_')
        ++first;
    if (first == key.size())
        return key; // empty, or nothing but underscores
    qsizetype last = key.size() - 1;
    while (last > first && key.at(last) == u'_')
        --last;

    const QStringView middle = QStringView(key).mid(first, last - first + 1);
    const QList<QStringView> pieces = middle.split(u'_');
    if (pieces.size() == 1)
        return key;

    QString joined = pieces.first().toString().toLower();
    for (qsizetype index = 1; index < pieces.size(); ++index) {
        const QStringView piece = pieces.at(index);
        if (piece.isEmpty())
            continue; // two underscores in a row add nothing
        joined += piece.left(1).toString().toUpper() + piece.mid(1).toString().toLower();
    }
    return key.left(first) + joined + key.mid(last + 1);
}

QJsonValue SnakeCaseKeyConverter::convertKeys(const QJsonValue &value)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        QJsonObject converted;
        for (auto it = object.constBegin(); it != object.constEnd(); ++it)
            converted.insert(convert(it.key()), convertKeys(it.value()));
        return converted;
    }
    if (value.isArray()) {
        QJsonArray converted;
        for (const QJsonValue &element : value.toArray())
            converted.append(convertKeys(element));
        return converted;
    }
    return value;
}
