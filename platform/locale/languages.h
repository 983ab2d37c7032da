// The languages of the user interface: the table, which row fits the process, and their names in one of them.
#pragma once

#include "zblocalelanguages.h"

#include <QtCore/QStringList>
#include <QtCore/QVector>

/// One row a language, sorted by code but for the main region of a language, which stands first.
const QVector<ZBLocaleLanguages::ZBLanguageInfo> &languageTable();

/// Position of the first of \a uiLanguages (as QLocale::uiLanguages() gives them) that has a row: its own, or
/// the first row of the same language and script; Norwegian Nynorsk also takes that of Bokmål. That of
/// "en_us" when none has.
int languagePosition(const QStringList &uiLanguages);

/// The name of every row in the language of \a locale (an ICU locale), in the table's order.
QStringList translatedLanguageNames(const QString &locale);
