// SPDX-License-Identifier: GPL-3.0-or-later
#include "ByteMutator.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>

namespace {
enum Change { flipBit, insertStructural, removeBytes, repeatBytes, cut, insertToken };
} // namespace

ByteMutator::ByteMutator(QByteArray structural, QList<QByteArray> tokens, int longestRepeat)
    : m_structural(std::move(structural))
    , m_tokens(std::move(tokens))
    , m_longestRepeat(longestRepeat)
{
}

QList<QByteArray> ByteMutator::readFiles(const QString &folder)
{
    QList<QByteArray> files;
    QDirIterator inputs(folder, QDir::Files);
    while (inputs.hasNext()) {
        QFile file(inputs.next());
        if (file.open(QIODevice::ReadOnly))
            files << file.readAll();
    }
    return files;
}

QByteArray ByteMutator::mutated(QByteArray body, const QList<QByteArray> &files, QRandomGenerator &random) const
{
    const auto at = [&] { return body.isEmpty() ? 0 : qsizetype(random.bounded(int(body.size()))); };
    // The splice comes after the other changes; with tokens there is one change more.
    const int changes = m_tokens.isEmpty() ? insertToken + 1 : insertToken + 2;
    const int change = random.bounded(changes);
    if (change == flipBit) {
        if (!body.isEmpty())
            body[at()] ^= char(1 << random.bounded(8));
    } else if (change == insertStructural) {
        body.insert(at(), m_structural.at(random.bounded(int(m_structural.size()))));
    } else if (change == removeBytes) {
        if (!body.isEmpty())
            body.remove(at(), 1 + random.bounded(8));
    } else if (change == repeatBytes) {
        const qsizetype from = at();
        body.insert(from, body.mid(from, 1 + random.bounded(m_longestRepeat)));
    } else if (change == cut) {
        body.truncate(at());
    } else if (change == insertToken && !m_tokens.isEmpty()) {
        body.insert(at(), m_tokens.at(random.bounded(int(m_tokens.size()))));
    } else {
        const QByteArray &other = files.at(random.bounded(int(files.size())));
        body = body.left(at()) + other.mid(other.isEmpty() ? 0 : random.bounded(int(other.size())));
    }
    return body;
}
