// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkReply>
#include <QString>

#include <exception>

// A failure told to the user: one sentence that says what happened, with the cause in a
// few plain words, and what to do about it; the technical text (the network layer's or the
// library's own sentence) goes under "Details". Network, HTTP, disk and data failures are
// sorted by kind, so that every screen words the same failure the same way.
class ErrorExplanation
{
public:
    enum class Kind {
        hostNotFound,
        connectionRefused,
        timedOut,
        secureConnectionFailed,
        connectionFailed, // any other failure of the connection
        httpStatus,       // the server answered with an error status
        diskFull,
        notWritable,
        badData,          // what arrived or was built cannot be read
        other,
    };
    // The server a request went to, as the sentence names it.
    enum class Server { catalog, updates };

    ErrorExplanation() = default;
    ErrorExplanation(Kind kind, QString sentence, QString details);

    // A finished reply that failed; `httpStatus` is 0 when no HTTP answer came.
    static ErrorExplanation fromNetworkError(QNetworkReply::NetworkError code, int httpStatus, const QString &details,
                                             Server server);
    // An error thrown by the catalog's downloader or builder.
    static ErrorExplanation fromException(const std::exception &error, const QString &details, Server server);
    // A file or answer that arrived but does not read as what it should be.
    static ErrorExplanation badData(const QString &details, Server server);
    // A failed write to `path`: a full disk when its volume has (almost) no room left.
    static ErrorExplanation diskWriteFailed(const QString &path, const QString &details);

    Kind kind() const { return m_kind; }
    QString sentence() const { return m_sentence; }
    QString details() const { return m_details; }
    bool isEmpty() const { return m_sentence.isEmpty(); }

private:
    Kind m_kind = Kind::other;
    QString m_sentence;
    QString m_details;
};
