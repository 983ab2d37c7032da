// A ZBLocaleLanguages whose lists the test writes.
//
// A test that links it has a class of that name in the program, which stands before the library's: the
// program must be linked with its symbols exported.
#pragma once

#include "zblocalelanguages.h"

namespace ScriptedLocale {

/// What every ZBLocaleLanguages of this process answers.
struct Script
{
    QStringList codes;
    int currentLanguage = 0;
    QStringList languages;
    QStringList layoutNames;
    QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> layouts;
    QStringList questions; ///< the names of the operations that were called, in their order
};

Script &script();

} // namespace ScriptedLocale
