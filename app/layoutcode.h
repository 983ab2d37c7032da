// The text under which a keyboard layout is stored in the settings, and what the compositor's environment
// file says in that form.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * The XKB name of a layout, with its variant in brackets where it has one: "de", "de(nodeadkeys)", as
 * xkeyboard-config writes it. It stands for the same layout whatever language its name is shown in and
 * wherever it stands in the list. Empty without a layout.
 */
QString layoutCode(const QString &layout, const QString &variant);

/**
 * The layout in a text of KEY=VALUE lines as systemd.exec(5) has them in an EnvironmentFile, without quotes:
 * that of XKB_DEFAULT_LAYOUT with the variant of XKB_DEFAULT_VARIANT, of each the last line. Empty without a
 * layout.
 */
QString layoutInEnvironment(const QString &text);

/// The codes of the layouts in the order of ZBSettingsMain::getKeyboardLanguageComboBoxModel().
QStringList layoutCodes();
