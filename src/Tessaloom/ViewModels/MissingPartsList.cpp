// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/MissingPartsList.h"

#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace {

// A field is quoted only when it has to be; part numbers never need it in practice.
QByteArray field(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.contains(',') || bytes.contains('"') || bytes.contains('\n') || bytes.contains('\r'))
        bytes = '"' + bytes.replace("\"", "\"\"") + '"';
    return bytes;
}

} // namespace

QList<MissingPartsList::Line> MissingPartsList::fromChecklist(const QList<ChecklistItem> &items,
                                                              const QHash<QString, PartInventoryEntry> &entriesByKey)
{
    QList<Line> lines;
    QHash<QString, qsizetype> lineOfKey;
    for (const ChecklistItem &item : items) {
        auto found = lineOfKey.constFind(item.id);
        if (found == lineOfKey.cend()) {
            lines.append(Line{item.partNum, item.colorID, 0});
            found = lineOfKey.insert(item.id, lines.size() - 1);
        }
        lines[found.value()].quantity += qMax(0, item.quantity);
    }
    for (auto key = lineOfKey.cbegin(); key != lineOfKey.cend(); ++key) {
        const auto entry = entriesByKey.constFind(key.key());
        if (entry != entriesByKey.cend())
            lines[key.value()].quantity -= entry->quantityOwned;
    }
    lines.removeIf([](const Line &line) { return line.quantity <= 0; });
    return lines;
}

QByteArray MissingPartsList::csv(const QList<Line> &lines)
{
    QByteArray bytes = "Part,Color,Quantity\n";
    for (const Line &line : lines)
        bytes += field(line.partNum) + ',' + QByteArray::number(line.colorID) + ',' + QByteArray::number(line.quantity) + '\n';
    return bytes;
}

bool MissingPartsList::writeCsv(const QString &path, const QList<Line> &lines, QString *errorText)
{
    QSaveFile file(path);
    const QByteArray bytes = csv(lines);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (errorText)
            *errorText = file.errorString();
        return false;
    }
    return true;
}
