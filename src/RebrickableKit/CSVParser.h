// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

namespace RebrickableKit {

// Turns the whole text of a dump into its data rows of strings, all held at once. The
// first row (the header) is thrown away unread: columns are read by position only.
// Never fails: a field whose bytes are not valid UTF-8 becomes the empty string, an
// unterminated quote runs to the end of the text.
class CSVParser
{
public:
    static QList<QStringList> parse(const QString &text);
    static QList<QStringList> parse(QByteArrayView utf8);
};

} // namespace RebrickableKit
