// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/MissingPartsList.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

ChecklistItem item(const QString &partNum, int colorID, qint32 quantity)
{
    ChecklistItem result;
    result.id = ChecklistItem::key(partNum, colorID);
    result.partNum = partNum;
    result.partName = partNum;
    result.colorID = colorID;
    result.quantity = quantity;
    return result;
}

PartInventoryEntry owned(qint32 count)
{
    PartInventoryEntry entry;
    entry.quantityOwned = count;
    return entry;
}

} // namespace

// The missing pieces of a copy as a part list for Rebrickable's import.
class MissingPartsListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingIsRequiredMinusOwnedAndCompleteLinesAreLeftOut()
    {
        const QList<ChecklistItem> items{item(u"3001"_s, 4, 3), item(u"3023"_s, 1, 2), item(u"3024"_s, 0, 1)};
        const QHash<QString, PartInventoryEntry> entries{{u"3001-4"_s, owned(1)}, {u"3024-0"_s, owned(1)}};
        const QList<MissingPartsList::Line> lines = MissingPartsList::fromChecklist(items, entries);
        QCOMPARE(lines, (QList<MissingPartsList::Line>{{u"3001"_s, 4, 2}, {u"3023"_s, 1, 2}}));
    }

    void twoRowsOfOnePartAndColourShareTheirOwnedCount()
    {
        const QList<ChecklistItem> items{item(u"3001"_s, 4, 3), item(u"3001"_s, 4, 2)};
        const QHash<QString, PartInventoryEntry> entries{{u"3001-4"_s, owned(3)}};
        QCOMPARE(MissingPartsList::fromChecklist(items, entries), (QList<MissingPartsList::Line>{{u"3001"_s, 4, 2}}));
    }

    void nothingMissingGivesTheHeaderAlone()
    {
        QCOMPARE(MissingPartsList::csv({}), QByteArray("Part,Color,Quantity\n"));
        const QList<ChecklistItem> items{item(u"3001"_s, 4, 0)};
        QVERIFY(MissingPartsList::fromChecklist(items, {}).isEmpty());
    }

    void theFileHoldsExactlyTheImportFormat()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"missing.csv"_s);
        const QList<MissingPartsList::Line> lines{{u"3001"_s, 4, 2}, {u"973pr1234c01"_s, 72, 10}};
        QVERIFY(MissingPartsList::writeCsv(path, lines));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("Part,Color,Quantity\n3001,4,2\n973pr1234c01,72,10\n"));
    }

    void aPartNumberWithACommaIsQuoted()
    {
        QCOMPARE(MissingPartsList::csv({{u"odd,\"part\""_s, 0, 1}}),
                 QByteArray("Part,Color,Quantity\n\"odd,\"\"part\"\"\",0,1\n"));
    }

    void aFileThatCannotBeWrittenSaysWhy()
    {
        QString errorText;
        QVERIFY(!MissingPartsList::writeCsv(u"/nonexistent-folder/missing.csv"_s, {}, &errorText));
        QVERIFY(!errorText.isEmpty());
    }
};

QTEST_GUILESS_MAIN(MissingPartsListTest)
#include "MissingPartsListTest.moc"
