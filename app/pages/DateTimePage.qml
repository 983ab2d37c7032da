// The clock: by the network or set by hand, time zone, and the formats in which it is shown.
import QtQuick 2.15
import Corvanta.Settings 1.0
import Corvanta.SettingsApplication 1.0
import "../controls"

SettingsPage {
    id: page

    property date now: new Date()
    readonly property var dateFormats: ["MM/dd/yy", "dd/MM/yy", "yy/MM/dd", "MM/dd/yyyy", "dd/MM/yyyy",
                                        "dd.MM.yyyy", "yyyy-MM-dd", "d MMM yyyy", "MMM d, yyyy"]

    /// How long network time may take to start or stop, in milliseconds.
    property int networkTimePatience: 5000
    /// How long the clock may take to show the time that was set, in milliseconds.
    property alias clockPatience: clockCheck.patience

    function two(number) {
        return ("0" + number).slice(-2);
    }

    function setClock(year, month, day, hour, minute) {
        var today = new Date();
        clockCheck.begin(year, month, day, hour, minute);
        // A date alone begins the day at midnight, so the time follows it.
        if (today.getFullYear() !== year || today.getMonth() + 1 !== month || today.getDate() !== day)
            ZBSettingsMain.setDate(String(year), two(month), two(day));
        // What is given first stands before the colon: the hours.
        ZBSettingsMain.setTime(two(hour), two(minute));
    }

    title: qsTr("Date & Time")
    onVisibleChanged: {
        if (visible)
            networkTime.refresh();
        else
            clockPicker.close();
    }

    NetworkTime {
        id: networkTime

        readonly property bool isOn: state === NetworkTime.On
        readonly property bool isKnown: isOn || state === NetworkTime.Off
        /// Whether it is as the switch says.
        readonly property bool isSettled: isKnown && isOn === automatic.checked
        property bool isOverdue

        /// Asks for what the switch says, and waits for it anew.
        function request() {
            isOverdue = false;
            patience.restart();
            ZBSettingsMain.setAutoTime(automatic.checked);
        }

        onIsSettledChanged: {
            isOverdue = false;
            patience.restart();
        }
    }

    Timer {
        id: patience

        interval: page.networkTimePatience
        running: true
        onTriggered: networkTime.isOverdue = !networkTime.isSettled
    }

    ClockCheck {
        id: clockCheck

        onStateChanged: page.now = new Date()
    }

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
            description: Qt.formatDate(page.now, dateFormatBox.stored || "MM/dd/yy")

            PlainText {
                objectName: "clock"
                text: Qt.formatTime(page.now, twentyFourHoursSwitch.checked ? "HH:mm" : "h:mm AP")
                font.pixelSize: 32
                font.weight: Font.DemiBold
            }
        }

        SettingSwitch {
            id: automatic

            settingKey: ZBSettingsMain.KEY_DATETIME_AUTO
            fallback: ZBSettingsMain.settingDateTimeAuto
            text: qsTr("Automatic date and time")
            description: qsTr("Keeps the clock right over the internet")
            onToggled: {
                clockCheck.reset();
                networkTime.request();
            }
        }

        SettingRow {
            title: qsTr("Network time")
            descriptionName: "networkTimeReport"
            description: networkTime.isSettled || networkTime.isOverdue ? ""
                         : !networkTime.isKnown ? qsTr("Asking the clock service…")
                         : automatic.checked ? qsTr("Starting…") : qsTr("Stopping…")
            warning: !networkTime.isOverdue ? ""
                     : !networkTime.isKnown ? qsTr("The clock service does not answer.")
                     : automatic.checked ? qsTr("Network time has not started.")
                     : qsTr("Network time has not stopped.")

            Row {
                spacing: 16

                PlainText {
                    objectName: "networkTime"
                    height: Theme.touchSize
                    text: networkTime.isOn ? qsTr("On") : networkTime.isKnown ? qsTr("Off")
                          : networkTime.state === NetworkTime.Unknown ? qsTr("Not known") : ""
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize - 1
                }

                PushButton {
                    objectName: "networkTimeAgain"
                    visible: networkTime.isOverdue
                    text: qsTr("Try again")
                    quiet: true
                    onClicked: {
                        networkTime.refresh();
                        networkTime.request();
                    }
                }
            }
        }

        SettingChooser {
            id: setByHand

            objectName: "setClock"
            text: qsTr("Set date and time")
            enabled: !automatic.checked && networkTime.state === NetworkTime.Off
                     && clockCheck.state !== ClockCheck.Watching
            description: automatic.checked ? qsTr("Turn off automatic date and time to set the clock by hand")
                         : !networkTime.isKnown ? qsTr("Not possible without the clock service")
                         : networkTime.isOn ? qsTr("Not possible before network time is off")
                         : clockCheck.state === ClockCheck.Watching ? qsTr("Setting the clock…")
                         : clockCheck.state === ClockCheck.Set ? qsTr("The clock was set")
                         : ""
            warning: clockCheck.state === ClockCheck.NotSet && !automatic.checked
                     ? qsTr("The clock was not changed: the device has refused it, or is busy.")
                     : clockCheck.state === ClockCheck.OnlyDateSet && !automatic.checked
                     ? qsTr("The date was set, but not the time. Set it again.")
                     : ""
            onClicked: clockPicker.open()

            ClockPicker {
                id: clockPicker

                twentyFourHours: twentyFourHoursSwitch.checked
                dateFormat: dateFormatBox.stored || "MM/dd/yy"
                onPicked: page.setClock(year, month, day, hour, minute)
            }
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
            id: twentyFourHoursSwitch

            settingKey: ZBSettingsMain.KEY_DATETIME_24HOUR
            fallback: ZBSettingsMain.settingDateTime24Hour
            text: qsTr("24-hour clock")
        }

        SettingComboBox {
            id: dateFormatBox

            settingKey: ZBSettingsMain.KEY_DATETIME_FORMAT
            fallback: ZBSettingsMain.settingDateFormat
            title: qsTr("Date format")
            values: page.dateFormats
            choices: values.map(function (format) { return format.toUpperCase(); })
        }
    }
}
