// A page with misspelt keys, as an author might write it.
import QtQuick 2.15
import Corvanta.Settings 1.0

Item {
    property var brightness: ZBSettingsMain.getSetting("brightnesLevel", 7)
    readonly property bool untouched: true

    function store() {
        ZBSettingsMain.setSetting("brightnesLevel", 5);
    }

    Component.onCompleted: ZBSettingsMain.setSetting("zoomLevl", 3)

    Connections {
        target: ZBSettingsMain

        function onTabEnumChanged() {
            ZBSettingsMain.getSetting("tab");
        }
    }
}
