// The language of the user interface and the keyboard layout.
import QtQuick 2.15
import Corvanta.Settings 1.0
import Corvanta.SettingsApplication 1.0
import "../controls"

SettingsPage {
    title: qsTr("Languages")

    SettingsSection {
        heading: qsTr("Language")

        SettingChooser {
            id: language

            readonly property var names: ZBSettingsMain.getLanguageComboBoxModel()
            property string stored
            readonly property int position: {
                for (var i = 0; i < names.length; ++i) {
                    if (ZBSettingsMain.getLanguageCode(i) === stored)
                        return i;
                }
                return stored === "" ? ZBSettingsMain.getLanguageIndex() : -1;
            }

            function refresh() {
                stored = Preferences.asText(Preferences.read(ZBSettingsMain.KEY_LANGUAGE, ""));
            }

            objectName: ZBSettingsMain.KEY_LANGUAGE
            text: qsTr("Language")
            description: qsTr("Applications use it when they start next")
            value: position >= 0 ? names[position] : stored
            onClicked: languagePicker.open()
            onVisibleChanged: {
                if (visible)
                    refresh();
                else
                    languagePicker.close();
            }
            Component.onCompleted: refresh()

            ListPicker {
                id: languagePicker

                title: qsTr("Language")
                hint: qsTr("Search for a language")
                entryName: language.objectName
                names: language.names
                current: language.position
                onPicked: {
                    language.stored = ZBSettingsMain.getLanguageCode(position);
                    Preferences.change(ZBSettingsMain.KEY_LANGUAGE, language.stored);
                }
            }
        }
    }

    SettingsSection {
        heading: qsTr("Keyboard")

        SettingChooser {
            id: keyboard

            readonly property var names: ZBSettingsMain.getKeyboardLanguageComboBoxModel()
            property string stored
            readonly property int position: KeyboardLayouts.positionOf(stored)
            /// Whether the last choice did not get to the display. The back end does not tell.
            property bool isLost

            function refresh() {
                stored = Preferences.asText(Preferences.read(ZBSettingsMain.KEY_KEYBOARD_LAYOUT, ""));
            }

            objectName: ZBSettingsMain.KEY_KEYBOARD_LAYOUT
            text: qsTr("Keyboard layout")
            description: qsTr("The display takes it when the printer starts next")
            warning: isLost ? qsTr("The display does not get this layout.") : ""
            value: position >= 0 ? names[position] : stored !== "" ? stored : qsTr("Not chosen")
            onClicked: keyboardPicker.open()
            onVisibleChanged: {
                if (visible)
                    refresh();
                else
                    keyboardPicker.close();
            }
            Component.onCompleted: refresh()

            ListPicker {
                id: keyboardPicker

                title: qsTr("Keyboard layout")
                hint: qsTr("Search for a layout")
                entryName: keyboard.objectName
                names: keyboard.names
                current: keyboard.position
                onPicked: {
                    ZBSettingsMain.setKeyboardLanguage(position);
                    keyboard.stored = KeyboardLayouts.codeAt(position);
                    keyboard.isLost = !KeyboardLayouts.isWritten(keyboard.stored);
                    Preferences.change(ZBSettingsMain.KEY_KEYBOARD_LAYOUT, keyboard.stored);
                }
            }
        }
    }
}
