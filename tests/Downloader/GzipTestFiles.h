// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// gzip files made and measured in tests, with zlib directly rather than through the code
// under test.
namespace GzipTestFiles {

// `plain` as a complete gzip file.
QByteArray compress(const QByteArray &plain);
// The unpacked size recorded in a gzip file's trailer (exact below 4 GiB).
qint64 recordedUnpackedSize(const QString &gzipPath);
QByteArray readAll(const QString &path);
void writeAll(const QString &path, const QByteArray &bytes);

} // namespace GzipTestFiles
