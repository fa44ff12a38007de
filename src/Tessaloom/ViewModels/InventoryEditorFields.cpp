// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryEditorFields.h"

#include "StoredVocabulary.h"
#include "Vocabulary.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> textOrAbsent(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional<QString>(text);
}

QString dateText(const std::optional<QDateTime> &date)
{
    return date ? date->toUTC().toString(Qt::ISODateWithMs) : QString();
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

} // namespace

InventoryEditorFields InventoryEditorFields::fromCopy(const BrickSet &copy, const QString &defaultCurrency)
{
    InventoryEditorFields fields;
    fields.pricePaidText = copy.pricePaid ? copy.pricePaid->toString() : QString();
    fields.priceCurrency = copy.priceCurrency.value_or(defaultCurrency);
    fields.disposalPriceText = copy.disposalPrice ? copy.disposalPrice->toString() : QString();
    fields.disposalCurrency = copy.disposalCurrency.value_or(defaultCurrency);
    fields.acquisitionType = StoredVocabulary::acquisitionType(copy.acquisitionType);
    fields.acquisitionDate = copy.acquisitionDate;
    fields.source = copy.acquisitionSource.value_or(QString());
    fields.overallCondition = StoredVocabulary::overallCondition(copy.overallCondition);
    fields.completeness = StoredVocabulary::completeness(copy.completeness);
    fields.boxCondition = StoredVocabulary::boxCondition(copy.boxCondition);
    fields.instructionsCondition = StoredVocabulary::instructionsCondition(copy.instructionsCondition);
    fields.builtStatus = StoredVocabulary::builtStatus(copy.builtStatus);
    fields.stickerStatus = StoredVocabulary::stickerStatus(copy.stickerStatus);
    fields.isDisposed = copy.isDisposed;
    fields.disposalType = StoredVocabulary::disposalType(copy.disposalType);
    fields.disposalDate = copy.disposalDate;
    fields.disposalNotes = copy.disposalNotes.value_or(QString());
    fields.notes = copy.notes.value_or(QString());
    return fields;
}

void InventoryEditorFields::writeTo(BrickSet &copy) const
{
    copy.acquisitionType = Vocabulary::rawValue(acquisitionType);
    copy.overallCondition = Vocabulary::rawValue(overallCondition);
    copy.completeness = Vocabulary::rawValue(completeness);
    copy.boxCondition = Vocabulary::rawValue(boxCondition);
    copy.instructionsCondition = Vocabulary::rawValue(instructionsCondition);
    copy.builtStatus = Vocabulary::rawValue(builtStatus);
    copy.stickerStatus = Vocabulary::rawValue(stickerStatus);
    copy.acquisitionDate = acquisitionDate;
    copy.acquisitionSource = textOrAbsent(source);
    copy.pricePaid = readPrice(pricePaidText);
    copy.priceCurrency = textOrAbsent(priceCurrency);
    copy.isDisposed = isDisposed;
    if (isDisposed) {
        copy.disposalType = Vocabulary::rawValue(disposalType);
        copy.disposalDate = disposalDate;
        copy.disposalPrice = readPrice(disposalPriceText);
        copy.disposalCurrency = textOrAbsent(disposalCurrency);
        copy.disposalNotes = textOrAbsent(disposalNotes);
    } else {
        copy.disposalType.reset();
        copy.disposalDate.reset();
        copy.disposalPrice.reset();
        copy.disposalCurrency.reset();
        copy.disposalNotes.reset();
    }
    copy.notes = textOrAbsent(notes);
}

QStringList InventoryEditorFields::watchedValues() const
{
    return {
        Vocabulary::rawValue(acquisitionType),
        pricePaidText,
        priceCurrency,
        dateText(acquisitionDate),
        source,
        Vocabulary::rawValue(overallCondition),
        Vocabulary::rawValue(completeness),
        Vocabulary::rawValue(boxCondition),
        Vocabulary::rawValue(instructionsCondition),
        Vocabulary::rawValue(builtStatus),
        Vocabulary::rawValue(stickerStatus),
        isDisposed ? u"true"_s : u"false"_s,
        Vocabulary::rawValue(disposalType),
        dateText(disposalDate),
        disposalPriceText,
        disposalCurrency,
        disposalNotes,
        notes,
    };
}

std::optional<Decimal> InventoryEditorFields::readPrice(QStringView text)
{
    qsizetype position = 0;
    while (position < text.size() && text[position].isSpace())
        ++position;
    const qsizetype start = position;
    if (position < text.size() && (text[position] == u'+' || text[position] == u'-'))
        ++position;
    qsizetype digits = 0;
    while (position < text.size() && isDigit(text[position])) {
        ++position;
        ++digits;
    }
    if (position < text.size() && text[position] == u'.') {
        ++position;
        while (position < text.size() && isDigit(text[position])) {
            ++position;
            ++digits;
        }
    }
    if (digits == 0)
        return std::nullopt;
    // An exponent counts only when digits follow it: "2e" is the number 2 and a letter.
    qsizetype end = position;
    if (position < text.size() && (text[position] == u'e' || text[position] == u'E')) {
        qsizetype exponent = position + 1;
        if (exponent < text.size() && (text[exponent] == u'+' || text[exponent] == u'-'))
            ++exponent;
        if (exponent < text.size() && isDigit(text[exponent])) {
            while (exponent < text.size() && isDigit(text[exponent]))
                ++exponent;
            end = exponent;
        }
    }
    return Decimal::fromString(text.sliced(start, end - start));
}
