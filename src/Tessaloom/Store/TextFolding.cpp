// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/TextFolding.h"

#include <sqlite3.h>

namespace {

bool isPlainAscii(const QString &text)
{
    for (const QChar character : text) {
        if (character.unicode() >= 0x80)
            return false;
    }
    return true;
}

void foldFunction(sqlite3_context *context, int argumentCount, sqlite3_value **arguments)
{
    if (argumentCount != 1 || sqlite3_value_type(arguments[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(arguments[0]));
    const QString folded = TextFolding::fold(QString::fromUtf8(bytes, sqlite3_value_bytes(arguments[0])));
    const QByteArray utf8 = folded.toUtf8();
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

} // namespace

QString TextFolding::fold(const QString &text)
{
    // Most set names and numbers are ASCII: skip normalisation for them.
    if (isPlainAscii(text))
        return text.toLower();
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString stripped;
    stripped.reserve(decomposed.size());
    for (const QChar character : decomposed) {
        const auto category = character.category();
        if (category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining
            || category == QChar::Mark_Enclosing)
            continue;
        stripped.append(character);
    }
    return stripped.toCaseFolded();
}

bool TextFolding::registerFunction(sqlite3 *database)
{
    return sqlite3_create_function_v2(database, "tessaloom_fold", 1,
                                      SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                      foldFunction, nullptr, nullptr, nullptr)
        == SQLITE_OK;
}
