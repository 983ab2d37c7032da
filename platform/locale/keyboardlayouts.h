// The list of keyboard layouts as the user sees it: translated, told apart, in alphabetical order.
#pragma once

#include "keyboardregistry.h"
#include "messagecatalogue.h"
#include "zblocalelanguages.h"

/**
 * The layouts in one piece, so that they can lie in a file and cost nothing until somebody looks: UTF-8
 * texts, each ended by a NUL. First the names of all layouts, then the four texts of ZBKeyboardInfo for each.
 *
 * Names of \a entries come from \a catalogue, else from their descriptions, and are sorted as \a locale (an
 * ICU locale) sorts. Each of several equal names is followed by its XKB name, "Njemački [at]", since nobody
 * could tell them apart.
 */
QByteArray packedLayouts(const QVector<KeyboardEntry> &entries, const MessageCatalogue &catalogue,
                         const QString &locale);

/// The names in \a packed.
QStringList layoutNames(const QByteArray &packed);
/// The layouts in \a packed by their position in layoutNames().
QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> layoutTable(const QByteArray &packed);
