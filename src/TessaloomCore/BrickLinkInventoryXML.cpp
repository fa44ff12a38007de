// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickLinkInventoryXML.h"

#include "SetListQuantity.h"

#include <QXmlStreamReader>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// The depths of the elements the reader looks at: everything else, at any depth, is passed
// over. The depth is a counter, never a recursion, so a file nested a million deep costs
// no stack.
constexpr qint64 rootDepth = 1;
constexpr qint64 itemDepth = 2;
constexpr qint64 fieldDepth = 3;

enum class ItemField {
    itemType,
    itemID,
    minimumQuantity,
    quantity,
    none, // an element that is none of them
};

// What one <ITEM> holds. A field given twice keeps its first value; a field that is there
// but empty is still there, which matters for the quantities.
struct Item
{
    qsizetype lineNumber = 0;
    std::array<std::optional<QString>, std::size_t(ItemField::none)> fields;

    // Never for ItemField::none.
    std::optional<QString> &operator[](ItemField field) { return fields[std::size_t(field)]; }
    const std::optional<QString> &operator[](ItemField field) const { return fields[std::size_t(field)]; }
};

bool isNamed(QStringView name, QStringView wanted)
{
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

ItemField itemField(QStringView name)
{
    if (isNamed(name, u"ITEMTYPE"))
        return ItemField::itemType;
    if (isNamed(name, u"ITEMID"))
        return ItemField::itemID;
    if (isNamed(name, u"MINQTY"))
        return ItemField::minimumQuantity;
    if (isNamed(name, u"QTY"))
        return ItemField::quantity;
    return ItemField::none;
}

QString withoutByteOrderMark(QStringView text)
{
    return (text.startsWith(QChar(0xFEFF)) ? text.sliced(1) : text).toString();
}

QString lineText(qsizetype lineNumber, QStringView reason)
{
    return u"Line "_s + QString::number(lineNumber) + u": "_s + reason;
}

// An item as an entry or a skipped row.
void addItem(const Item &item, ImportedSetList &list)
{
    const QString itemType = item[ItemField::itemType].value_or(QString()).trimmed();
    if (itemType != u"S"_s) {
        list.skipped.append(lineText(item.lineNumber, QString(u"item type "_s + itemType + u" skipped"_s)));
        return;
    }
    const QString setNumber = item[ItemField::itemID].value_or(QString()).trimmed();
    if (setNumber.isEmpty()) {
        list.skipped.append(lineText(item.lineNumber, u"missing set number"));
        return;
    }
    // A wanted list states the copies wanted in MINQTY, an upload the copies held in QTY.
    const std::optional<QString> &minimumQuantity = item[ItemField::minimumQuantity];
    const std::optional<QString> &quantityText = minimumQuantity ? minimumQuantity : item[ItemField::quantity];
    const std::optional<qint64> quantity = quantityText ? SetListQuantity::fromText(*quantityText) : qint64(1);
    if (!quantity) {
        list.skipped.append(lineText(item.lineNumber, u"invalid quantity"));
        return;
    }
    list.entries.append({setNumber, *quantity, item.lineNumber});
}

} // namespace

bool BrickLinkInventoryXML::recognises(QStringView text)
{
    QXmlStreamReader xml(withoutByteOrderMark(text));
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartDocument:
        case QXmlStreamReader::Comment:
            break;
        case QXmlStreamReader::Characters:
            if (!xml.isWhitespace())
                return false;
            break;
        case QXmlStreamReader::StartElement:
            return isNamed(xml.name(), u"INVENTORY");
        default:
            // A document type, a processing instruction or an error before the first
            // element: not a file BrickLink writes.
            return false;
        }
    }
    return false;
}

ImportedSetList BrickLinkInventoryXML::read(QStringView text)
{
    ImportedSetList result;
    QXmlStreamReader xml(withoutByteOrderMark(text));
    // QXmlStreamReader expands the internal entities a document type declares, within its
    // own limits. No file of BrickLink's has a document type, so one ends the reading before
    // any of its entities can be used: nothing beyond XML's five predefined entities and
    // character references is ever expanded.
    qint64 depth = 0;
    std::optional<Item> item;
    ItemField field = ItemField::none; // the field whose text is being collected
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::DTD:
            xml.raiseError(u"The file declares a document type, which is not read."_s);
            break;
        case QXmlStreamReader::StartElement:
            ++depth;
            if (depth == rootDepth) {
                if (!isNamed(xml.name(), u"INVENTORY"))
                    xml.raiseError(u"The file's first element is not INVENTORY."_s);
            } else if (depth == itemDepth) {
                if (isNamed(xml.name(), u"ITEM")) {
                    item.emplace();
                    item->lineNumber = qsizetype(xml.lineNumber());
                }
            } else if (depth == fieldDepth && item) {
                field = itemField(xml.name());
                // Present from its start tag on: <MINQTY/> is a quantity that is not a number.
                if (field != ItemField::none && !(*item)[field])
                    (*item)[field] = QString();
                else
                    field = ItemField::none; // an unknown element, or a field given before
            }
            break;
        case QXmlStreamReader::Characters:
            // Only text directly inside a field counts; text in elements nested in it does not.
            if (field != ItemField::none && depth == fieldDepth)
                (*item)[field]->append(xml.text());
            break;
        case QXmlStreamReader::EndElement:
            if (depth == fieldDepth) {
                field = ItemField::none;
            } else if (depth == itemDepth && item) {
                addItem(*item, result);
                item.reset();
            }
            --depth;
            break;
        default:
            break;
        }
    }
    if (xml.hasError()) {
        ImportedSetList unreadable;
        unreadable.unreadable = xml.errorString() + u" (line "_s + QString::number(xml.lineNumber()) + u')';
        return unreadable;
    }
    return result;
}
