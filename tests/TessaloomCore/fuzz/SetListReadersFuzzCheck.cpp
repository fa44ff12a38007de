// SPDX-License-Identifier: GPL-3.0-or-later
#include "SetListReadersFuzzCheck.h"

#include "BrickLinkInventoryXML.h"
#include "CSVFieldSyntax.h"
#include "RebrickableSetListFormat.h"

#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

using Verdict = SetListReadersFuzzCheck::Verdict;

bool hasNoNewline(QStringView text)
{
    for (const QChar character : text) {
        if (CSVFieldSyntax::isNewline(character.unicode()))
            return false;
    }
    return true;
}

bool keepsTheRules(const ImportedSetListEntry &entry)
{
    return !entry.setNumber.isEmpty() && entry.setNumber.trimmed() == entry.setNumber && entry.quantity >= 1 && entry.quantity <= ImportedSetList::maximumQuantity && entry.lineNumber >= 1;
}

// The line a skipped row names, or nothing when its text is not one the readers write.
// `reasons` is the pattern of what may follow "Line N: ".
std::optional<qsizetype> skippedLine(const QString &text, const QRegularExpression &pattern)
{
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    bool isNumber = false;
    const qsizetype line = match.captured(1).toLongLong(&isNumber);
    if (!isNumber || line < 1)
        return std::nullopt;
    return line;
}

// The lines of `list`'s entries and skipped rows each never go back (strictly forward when
// `strictly`), and stay from `first` to `last`. The lines of all of them go in `lines`.
bool linesKeepTheRules(const ImportedSetList &list, const QRegularExpression &skippedPattern, qsizetype first,
                       qsizetype last, bool strictly, QList<qsizetype> &lines)
{
    qsizetype previous = first - 1;
    for (const ImportedSetListEntry &entry : list.entries) {
        if (!keepsTheRules(entry) || entry.lineNumber < first || entry.lineNumber > last)
            return false;
        if (entry.lineNumber < previous || (strictly && entry.lineNumber == previous))
            return false;
        previous = entry.lineNumber;
        lines.append(entry.lineNumber);
    }
    previous = first - 1;
    for (const QString &text : list.skipped) {
        const std::optional<qsizetype> line = skippedLine(text, skippedPattern);
        if (!line || *line < first || *line > last || *line < previous || (strictly && *line == previous))
            return false;
        previous = *line;
        lines.append(*line);
    }
    return true;
}

QStringView withoutByteOrderMark(QStringView text)
{
    return text.startsWith(QChar(0xFEFF)) ? text.sliced(1) : text;
}

} // namespace

SetListReadersFuzzCheck::Verdict SetListReadersFuzzCheck::rebrickableVerdict(QByteArrayView bytes)
{
    static const QRegularExpression skippedPattern(u"\\ALine ([0-9]+): (?:missing set number|invalid quantity)\\z"_s);
    const QString text = CSVFieldSyntax::textFromUtf8(bytes);
    const bool recognised = RebrickableSetListFormat::recognises(text);
    const ImportedSetList list = RebrickableSetListFormat::read(text);
    if (list.unreadable)
        return Verdict::broken;
    if (!recognised)
        return list.entries.isEmpty() && list.skipped.isEmpty() ? Verdict::notRecognised : Verdict::broken;

    // Every line after the header, and only those, is an entry or a skipped row.
    const qsizetype lineCount = CSVFieldSyntax::lines(withoutByteOrderMark(text)).size();
    QList<qsizetype> lines;
    if (!linesKeepTheRules(list, skippedPattern, 2, lineCount, true, lines))
        return Verdict::broken;
    // The reader cuts lines first, so no number holds a line end. (XML may hold one inside
    // an ITEMID, and the XML reader keeps it.)
    for (const ImportedSetListEntry &entry : list.entries) {
        if (!hasNoNewline(entry.setNumber))
            return Verdict::broken;
    }
    if (lines.size() != lineCount - 1 || QSet<qsizetype>(lines.cbegin(), lines.cend()).size() != lines.size())
        return Verdict::broken;

    // Written and read again, the entries come back as themselves, one a line.
    QList<QPair<QString, qint64>> counts;
    for (const ImportedSetListEntry &entry : list.entries)
        counts.append({entry.setNumber, entry.quantity});
    const QString written = RebrickableSetListFormat::write(counts);
    if (!RebrickableSetListFormat::recognises(written))
        return Verdict::broken;
    const ImportedSetList again = RebrickableSetListFormat::read(written);
    if (again.unreadable || !again.skipped.isEmpty() || again.entries.size() != counts.size())
        return Verdict::broken;
    for (qsizetype index = 0; index < counts.size(); ++index) {
        const ImportedSetListEntry &entry = again.entries.at(index);
        if (entry.setNumber != counts.at(index).first || entry.quantity != counts.at(index).second
            || entry.lineNumber != index + 2)
            return Verdict::broken;
    }
    return Verdict::value;
}

SetListReadersFuzzCheck::Verdict SetListReadersFuzzCheck::brickLinkVerdict(QByteArrayView bytes)
{
    static const QRegularExpression skippedPattern(
        u"\\ALine ([0-9]+): (?:missing set number|invalid quantity|item type (?s:.*) skipped)\\z"_s);
    static const QRegularExpression unreadablePattern(u"\\A(?s:.+) \\(line ([0-9]+)\\)\\z"_s);
    const QString text = CSVFieldSyntax::textFromUtf8(bytes);
    // Called for what it may do wrong (crash, hang); a file that reads may or may not be
    // recognised, as a processing instruction before the first element is legal XML.
    const bool recognised = BrickLinkInventoryXML::recognises(text);
    Q_UNUSED(recognised);
    const ImportedSetList list = BrickLinkInventoryXML::read(text);

    // No line can lie beyond the last line end of the text, however they are counted.
    qsizetype lastLine = 1;
    for (const QChar character : text) {
        if (character == u'\n' || character == u'\r')
            ++lastLine;
    }
    if (list.unreadable) {
        if (!list.entries.isEmpty() || !list.skipped.isEmpty())
            return Verdict::broken;
        const std::optional<qsizetype> line = skippedLine(*list.unreadable, unreadablePattern);
        return line && *line <= lastLine ? Verdict::unreadable : Verdict::broken;
    }
    // XML that reads has an INVENTORY element, so it is not empty.
    if (text.trimmed().isEmpty())
        return Verdict::broken;
    // Two items may stand on one line: their lines only never go back.
    QList<qsizetype> lines;
    if (!linesKeepTheRules(list, skippedPattern, 1, lastLine, false, lines))
        return Verdict::broken;
    // Sets are entries, never skipped for their type.
    for (const QString &skipped : list.skipped) {
        if (skipped.endsWith(u": item type S skipped"_s))
            return Verdict::broken;
    }
    return Verdict::value;
}
