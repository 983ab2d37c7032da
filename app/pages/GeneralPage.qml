// Display, units, home screen, shared folder, privacy and first boot.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    id: page

    // In the order of the numbers that are stored for dimming and power-off.
    readonly property var inactivityTimes: [
        qsTr("15 seconds"), qsTr("30 seconds"), qsTr("1 minute"), qsTr("2 minutes"), qsTr("3 minutes"),
        qsTr("5 minutes"), qsTr("10 minutes"), qsTr("15 minutes"), qsTr("20 minutes"), qsTr("30 minutes"),
        qsTr("1 hour"), qsTr("Never")
    ]

    title: qsTr("General")

    SettingsSection {
        heading: qsTr("Display")

        SettingSlider {
            settingKey: ZBSettingsMain.KEY_DISPLAY_BRIGHTNESS
            fallback: ZBSettingsMain.settingDisplayBrightness
            title: qsTr("Brightness")
            from: 1
            to: 9
            lowIcon: "dim"
            highIcon: "bright"
        }

        SettingComboBox {
            settingKey: ZBSettingsMain.KEY_DISPLAY_DIMMING
            fallback: ZBSettingsMain.settingDisplayDimming
            title: qsTr("Dim the display")
            description: qsTr("After this time without a touch")
            choices: page.inactivityTimes
        }

        SettingComboBox {
            settingKey: ZBSettingsMain.KEY_DISPLAY_POWER
            fallback: ZBSettingsMain.settingDisplayPower
            title: qsTr("Turn the display off")
            description: qsTr("After this time without a touch")
            choices: page.inactivityTimes
        }
    }

    SettingsSection {
        heading: qsTr("Units")

        SettingComboBox {
            settingKey: ZBSettingsMain.KEY_UNITS
            fallback: ZBSettingsMain.settingUnits
            title: qsTr("Units of measurement")
            choices: [qsTr("Imperial (inch)"), qsTr("Metric (mm)")]
        }
    }

    SettingsSection {
        heading: qsTr("Home screen")

        SettingComboBox {
            settingKey: ZBSettingsMain.KEY_ZOOMLEVEL
            fallback: ZBSettingsMain.settingZoomeLevel
            title: qsTr("Size of file previews and icons")
            choices: [qsTr("Smallest"), qsTr("Small"), qsTr("Medium"), qsTr("Large"), qsTr("Largest")]
        }

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_APPCOLLAPSED
            fallback: ZBSettingsMain.settingAppCollapsed
            text: qsTr("Collapse the application list")
        }

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_DOUBLECLICK
            fallback: ZBSettingsMain.settingDoubleClickOpen
            text: qsTr("Open with a double tap")
            description: qsTr("When off, one tap opens a file or an application")
        }
    }

    SettingsSection {
        heading: qsTr("Shared folder")

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_MOUNT_SHARED_FOLDER
            fallback: ZBSettingsMain.settingMountSharedFolder
            text: qsTr("Offer the shared folder over USB")
        }
    }

    SettingsSection {
        heading: qsTr("Privacy")

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_PRIVACY_ANALYTICS
            fallback: ZBSettingsMain.settingPrivacyAnalytics
            text: qsTr("Send analytics")
            description: qsTr("Reports which settings are changed, to help improve the printer")
        }
    }

    SettingsSection {
        heading: qsTr("First boot")

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_INIT_FIRSTBOOTAPP
            fallback: ZBSettingsMain.settingFirstBootApplication
            text: qsTr("Show the first boot application")
            description: qsTr("After the next restart")
        }
    }
}
