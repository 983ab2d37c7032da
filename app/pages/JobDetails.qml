// All that is known of one print job, and the button that prints it again.
import QtQuick 2.15
import "../controls"

PickerPopup {
    id: details

    property var job: ({})
    /// Why it cannot be printed again now; empty where it can.
    property string hindrance

    signal reprint()

    wishedWidth: 640
    title: qsTr("Print job")
    onAboutToShow: area.contentY = 0
    onOpened: reprintButton.forceActiveFocus(Qt.TabFocusReason)

    contentItem: FocusScope {
        Keys.onDownPressed: area.turnPage(0.4)
        Keys.onUpPressed: area.turnPage(-0.4)
        Keys.onPressed: {
            var pages = event.key === Qt.Key_PageDown ? 1 : event.key === Qt.Key_PageUp ? -1 : 0;
            if (pages !== 0) {
                area.turnPage(pages);
                event.accepted = true;
            }
        }

        PushButton {
            id: reprintButton

            objectName: "job.reprint"
            anchors.right: closeButton.left
            anchors.rightMargin: 8
            y: details.buttonPlace
            text: qsTr("Print again…")
            resting: details.hindrance !== ""
            onClicked: if (!resting) details.reprint()
        }

        PushButton {
            id: closeButton

            objectName: "job.close"
            anchors.right: parent.right
            anchors.rightMargin: 8
            y: details.buttonPlace
            text: qsTr("Close")
            plain: true
            onClicked: details.close()
        }

        ScrollArea {
            id: area

            objectName: "job.scroll"
            anchors.fill: parent
            sideMargin: 8
            endMargin: 8
            spacing: 8

            PlainText {
                objectName: "job.hindrance"
                width: parent.width
                visible: text !== ""
                text: details.hindrance
                leftPadding: 4
                color: Theme.warning
                font.pixelSize: Theme.smallSize
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Note
                Accessible.name: text
            }

            JobPicture {
                objectName: "job.picture"
                width: parent.width
                height: 180
                visible: source.toString() !== ""
                source: details.visible ? JobTexts.picture(details.job) : ""
            }

            SettingsSection {
                Repeater {
                    model: [
                        [qsTr("Document"), "name", JobTexts.nameOf(details.job)],
                        [qsTr("Status"), "state", JobTexts.stateOf(details.job).text],
                        [qsTr("Time"), "time", JobTexts.line(details.job.timeStamp)],
                        [qsTr("Error"), "error", JobTexts.errorOf(details.job)],
                        [qsTr("Copies"), "copies", JobTexts.number(details.job.copyCount)],
                        [qsTr("Series"), "series", JobTexts.number(details.job.seriesCount)],
                        [qsTr("Heat"), "heat", JobTexts.pair(details.job.heat1, details.job.heat2)],
                        [qsTr("Tension"), "tension", JobTexts.pair(details.job.tension1, details.job.tension2)],
                        [qsTr("Media"), "media", JobTexts.supply(details.job, "supply") || qsTr("Not known")],
                        [qsTr("Ribbon 1"), "ribbon1", JobTexts.supply(details.job, "ribbon1") || qsTr("Not known")],
                        [qsTr("Ribbon 2"), "ribbon2", JobTexts.supply(details.job, "ribbon2") || qsTr("Not known")]
                    ]

                    CompactRow {
                        title: modelData[0]
                        valueName: "job." + modelData[1]
                        value: modelData[2]
                    }
                }
            }
        }
    }
}
