// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// A dump that the server refused or that could not be unpacked. Its sentence is what the
// catalog set-up screen shows, so it names the file the user would look for.
class DownloadError : public std::exception
{
public:
    enum class Kind {
        httpError,           // the server answered with a status other than 200
        decompressionFailed, // the gzip file could not be read to its end
    };

    // `name` is the dump's name without extension, such as "sets". A status of 0 means the
    // answer was not an HTTP response at all.
    static DownloadError httpError(QString name, int status);
    // `fileName` is whichever file stood in the way: "sets.csv.gz", "sets.csv" or "sets".
    static DownloadError decompressionFailed(QString fileName);

    Kind kind() const { return m_kind; }
    // The dump's name for httpError, the file name for decompressionFailed.
    const QString &name() const { return m_name; }
    int status() const { return m_status; }
    QString description() const;

    const char *what() const noexcept override;

private:
    DownloadError(Kind kind, QString name, int status);

    Kind m_kind;
    QString m_name;
    int m_status = 0;
    QByteArray m_what;
};

} // namespace RebrickableKit
