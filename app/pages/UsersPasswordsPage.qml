// The lock screen.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    title: qsTr("Users & Passwords")

    SettingsSection {
        heading: qsTr("Lock screen")

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_LOCK_AUTO
            fallback: ZBSettingsMain.settingLockscreenAuto
            text: qsTr("Lock after a restart")
            description: qsTr("Shows the lock screen when the printer has started")
        }
    }
}
