// Whether the device is on the internet, as the utility daemon says it.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    id: page

    readonly property bool connected: ZBSettingsMain.isInternetConnected
    property bool checking
    /// What became of the last check, or when the state was last reported; empty until then.
    property string report

    function check() {
        checking = true;
        report = "";
        answerTimer.restart();
        ZBSettingsMain.checkInternetConnection();
    }

    title: qsTr("Networking")

    Connections {
        target: ZBSettingsMain

        function onIsInternetConnectedChanged() {
            page.checking = false;
            answerTimer.stop();
            page.report = qsTr("Reported at %1").arg(Qt.formatTime(new Date(), "HH:mm:ss"));
        }
    }

    Timer {
        id: answerTimer

        interval: 3000
        onTriggered: {
            page.checking = false;
            page.report = qsTr("The device did not answer the check");
        }
    }

    SettingsSection {
        heading: qsTr("Internet")

        Item {
            width: parent.width
            height: 132

            Rectangle {
                id: mark

                x: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                width: 76
                height: 76
                radius: 38
                color: page.connected ? Theme.accentSoft : Theme.warningSoft

                Icon {
                    anchors.centerIn: parent
                    width: 40
                    height: 40
                    name: page.connected ? "globe" : "warning"
                    color: page.connected ? Theme.accent : Theme.warning
                }
            }

            Column {
                anchors.left: mark.right
                anchors.leftMargin: Theme.margin
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                spacing: 6

                PlainText {
                    objectName: "internetState"
                    width: parent.width
                    text: page.connected
                          ? qsTr("Connected to the internet")
                          : qsTr("Not connected to the internet")
                    color: page.connected ? Theme.text : Theme.warning
                    font.pixelSize: 22
                    font.weight: Font.DemiBold
                    wrapMode: Text.WordWrap
                }

                PlainText {
                    width: parent.width
                    text: page.connected
                          ? qsTr("Updates and the network clock can be reached.")
                          : qsTr("Updates and the network clock cannot be reached.")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.smallSize
                    wrapMode: Text.WordWrap
                }
            }
        }

        SettingRow {
            title: qsTr("Check the connection")
            descriptionName: "checkReport"
            description: page.checking ? qsTr("Checking…") : page.report

            PushButton {
                objectName: "checkAgain"
                text: qsTr("Check again")
                enabled: !page.checking
                onClicked: page.check()
            }
        }
    }
}
