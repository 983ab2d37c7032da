// The text under which a keyboard layout is stored in the settings.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * The XKB name of a layout, with its variant in brackets where it has one: "de", "de(nodeadkeys)", as
 * xkeyboard-config writes it. It stands for the same layout whatever language its name is shown in and
 * wherever it stands in the list. Empty without a layout.
 */
QString layoutCode(const QString &layout, const QString &variant);

/// The codes of the layouts in the order of ZBSettingsMain::getKeyboardLanguageComboBoxModel().
QStringList layoutCodes();
