// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

// Why an answer could not be read as the expected type. Each kind has one fixed sentence;
// the detail names the place in the answer ("items[2].minPrice") and, where it helps, what
// was expected there. HTTPError::decodingError carries it to the caller.
class JSONDecodingError : public std::exception
{
public:
    enum class Kind {
        dataCorrupted, // not JSON at all, or cut off
        keyNotFound,   // a required field is absent
        valueNotFound, // a required field is null
        typeMismatch,  // a value of another type than the field's
    };

    JSONDecodingError(Kind kind, QString detail);

    Kind kind() const { return m_kind; }
    const QString &detail() const { return m_detail; }
    // The kind's sentence followed by the detail in parentheses.
    QString description() const;
    static QString sentence(Kind kind);

    const char *what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QString m_detail;
    QByteArray m_what;
};
