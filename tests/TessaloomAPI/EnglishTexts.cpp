// SPDX-License-Identifier: GPL-3.0-or-later
#include "EnglishTexts.h"

#include <QCoreApplication>
#include <QTranslator>

#include <memory>

using namespace Qt::StringLiterals;

bool EnglishTexts::install()
{
    static QTranslator *translator = nullptr;
    if (translator)
        return true;
    auto table = std::make_unique<QTranslator>();
    if (!table->load(u"tessaloom_en"_s, u":/i18n"_s))
        return false;
    translator = table.release();
    translator->setParent(QCoreApplication::instance());
    QCoreApplication::installTranslator(translator);
    return true;
}
