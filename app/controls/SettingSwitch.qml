// A setting that is on or off.
import QtQuick 2.15

SwitchRow {
    property string settingKey
    property bool fallback

    function refresh() {
        checked = Preferences.asBoolean(Preferences.read(settingKey, fallback));
    }

    objectName: settingKey
    onToggled: Preferences.change(settingKey, checked)
    onVisibleChanged: if (visible) refresh()
    Component.onCompleted: refresh()
}
