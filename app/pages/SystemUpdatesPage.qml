// Whether the device looks for updates by itself, and when it last did.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    id: page

    title: qsTr("System Updates")

    WarningBanner {
        objectName: "updatesNeedInternet"
        visible: !ZBSettingsMain.isInternetConnected
        text: qsTr("Updates cannot be found while there is no internet.")
    }

    SettingsSection {
        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_UPDATE_AUTOCHECK
            fallback: ZBSettingsMain.settingUpdateAutoCheck
            text: qsTr("Check for updates automatically")
            description: qsTr("Looks for new software over the internet")
        }

        SettingRow {
            id: lastCheck

            property string stored

            function refresh() {
                stored = Preferences.asText(Preferences.read(ZBSettingsMain.KEY_UPDATE_LASTCHECK, ""));
            }

            title: qsTr("Last successful check")
            onVisibleChanged: if (visible) refresh()
            Component.onCompleted: refresh()

            PlainText {
                objectName: "lastUpdateCheck"
                width: Math.min(implicitWidth, lastCheck.width / 2)
                text: lastCheck.stored !== "" ? lastCheck.stored : qsTr("Never")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize - 1
            }
        }
    }

}
