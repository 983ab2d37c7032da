// Answers from the script, and notes the questions.
#include "scriptedlocale.h"

ScriptedLocale::Script &ScriptedLocale::script()
{
    static Script instance;
    return instance;
}

using ScriptedLocale::script;

struct ZBLocaleLanguages::Private
{
};

ZBLocaleLanguages::ZBLocaleLanguages(QObject *parent)
    : QObject(parent)
    , d(nullptr)
{
}

ZBLocaleLanguages::~ZBLocaleLanguages()
{
    delete d;
}

QString ZBLocaleLanguages::getLanguageCode(int index) const
{
    script().questions.append(QStringLiteral("getLanguageCode %1").arg(index));
    return script().codes.value(index);
}

int ZBLocaleLanguages::getCurrentLanguageId() const
{
    script().questions.append(QStringLiteral("getCurrentLanguageId"));
    return script().currentLanguage;
}

QStringList ZBLocaleLanguages::getTrLanguageNamesList() const
{
    script().questions.append(QStringLiteral("getTrLanguageNamesList"));
    return script().languages;
}

QStringList ZBLocaleLanguages::getTranslatedKeyboardLayoutList() const
{
    script().questions.append(QStringLiteral("getTranslatedKeyboardLayoutList"));
    return script().layoutNames;
}

QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> ZBLocaleLanguages::getKeyboardLayoutInfo() const
{
    script().questions.append(QStringLiteral("getKeyboardLayoutInfo"));
    return script().layouts;
}
