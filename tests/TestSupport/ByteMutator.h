// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class QRandomGenerator;

// The changes the fuzz regression tests make to their kept files between runs of a
// decoder: a flipped bit, a byte that matters to the format put in, bytes taken out or
// repeated, a cut, a token of the format put in (when there are any), or the front of one
// file spliced onto the back of another. The same seed gives the same changes.
class ByteMutator
{
public:
    // `structural`: the single bytes the format cares about; `tokens`: longer pieces that
    // reach deeper paths (dates, numbers, keywords); `longestRepeat`: the most bytes one
    // repetition copies.
    ByteMutator(QByteArray structural, QList<QByteArray> tokens, int longestRepeat);

    // Every file of `folder`, read whole.
    static QList<QByteArray> readFiles(const QString &folder);

    // One random change of `body`; `files` feed the splices.
    QByteArray mutated(QByteArray body, const QList<QByteArray> &files, QRandomGenerator &random) const;

private:
    QByteArray m_structural;
    QList<QByteArray> m_tokens;
    int m_longestRepeat;
};
