// The keyboard layouts that are installed on this machine, named in one language.
#pragma once

#include "zblocalelanguages.h"

#include <QtCore/QByteArray>

/// Packed (see packedLayouts()), with names in the language of \a language. "us" alone, and a line in the
/// log, where no layouts are installed.
QByteArray installedLayouts(const ZBLocaleLanguages::ZBLanguageInfo &language);
