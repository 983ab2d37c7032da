// Clock format, automatic date and time, date format and time zone.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    id: page

    property date now: new Date()
    readonly property var dateFormats: ["MM/dd/yy", "dd/MM/yy", "yy/MM/dd", "MM/dd/yyyy", "dd/MM/yyyy",
                                        "dd.MM.yyyy", "yyyy-MM-dd", "d MMM yyyy", "MMM d, yyyy"]

    title: qsTr("Date & Time")

    Timer {
        interval: 1000
        repeat: true
        running: page.visible
        triggeredOnStart: true
        onTriggered: page.now = new Date()
    }

    SettingsSection {
        SettingRow {
            title: qsTr("This device's clock")
            description: Qt.formatDate(page.now, dateFormat.stored || "MM/dd/yy")

            PlainText {
                objectName: "clock"
                text: Qt.formatTime(page.now, twentyFourHours.checked ? "HH:mm" : "h:mm AP")
                font.pixelSize: 32
                font.weight: Font.DemiBold
            }
        }

        SettingSwitch {
            settingKey: ZBSettingsMain.KEY_DATETIME_AUTO
            fallback: ZBSettingsMain.settingDateTimeAuto
            text: qsTr("Automatic date and time")
            description: qsTr("Keeps the clock right over the internet")
        }

        SettingChooser {
            id: timeZone

            // The one setting of the schema without a constant.
            readonly property string settingKey: "timezone"
            property string stored

            function refresh() {
                stored = Preferences.asText(Preferences.read(settingKey, ""));
            }

            objectName: settingKey
            text: qsTr("Time zone")
            value: stored !== "" ? stored.replace(/_/g, " ") : qsTr("Not chosen")
            onClicked: picker.open()
            onVisibleChanged: {
                if (visible)
                    refresh();
                else
                    picker.close();
            }
            Component.onCompleted: refresh()

            TimeZonePicker {
                id: picker

                current: timeZone.stored
                onPicked: {
                    timeZone.stored = zone;
                    Preferences.change(timeZone.settingKey, zone);
                }
            }
        }
    }

    SettingsSection {
        heading: qsTr("Format")

        SettingSwitch {
            id: twentyFourHours

            settingKey: ZBSettingsMain.KEY_DATETIME_24HOUR
            fallback: ZBSettingsMain.settingDateTime24Hour
            text: qsTr("24-hour clock")
        }

        SettingComboBox {
            id: dateFormat

            settingKey: ZBSettingsMain.KEY_DATETIME_FORMAT
            fallback: ZBSettingsMain.settingDateFormat
            title: qsTr("Date format")
            values: page.dateFormats
            choices: values.map(function (format) { return format.toUpperCase(); })
        }
    }
}
