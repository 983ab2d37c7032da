// The XKB lines of the compositor's environment file.
#pragma once

#include <QtCore/QString>

/**
 * \a content with its XKB_DEFAULT_LAYOUT and XKB_DEFAULT_VARIANT lines set to \a layout and \a variant, which
 * are taken as they stand. A key that the text does not hold yet is appended. Setting a key replaces
 * everything from the key to the last newline of the text, or to the last one before a "<" that follows the
 * key; without a newline there nothing is replaced.
 */
QString withKeyboardLayout(const QString &content, const QString &layout, const QString &variant);
