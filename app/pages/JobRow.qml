// One print job in the history.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"

T.ItemDelegate {
    id: row

    property var job
    /// The parts are named after it.
    property string name
    readonly property var jobState: JobTexts.stateOf(job)

    width: ListView.view ? ListView.view.width : 0
    height: 108
    focusPolicy: Qt.NoFocus

    Accessible.name: JobTexts.nameOf(job)
    Accessible.description: JobTexts.joined([jobState.text, JobTexts.timeAndError(job)])

    // A word that nobody knows leaves room for the time and the error, and takes half of it at most.
    TextMetrics {
        id: stateWord

        font: stateText.font
        text: row.jobState.text
        elide: Text.ElideRight
        elideWidth: Math.max(stateText.width / 4, Math.min(stateText.width / 2, stateText.width - others.width))
    }

    TextMetrics {
        id: others

        font: stateText.font
        text: " · " + JobTexts.timeAndError(row.job)
    }

    contentItem: Item {
        JobPicture {
            id: picture

            objectName: row.name + ".picture"
            x: 14
            anchors.verticalCenter: parent.verticalCenter
            width: 72
            height: 84
            source: JobTexts.picture(row.job)
        }

        Column {
            anchors.left: picture.right
            anchors.leftMargin: 14
            anchors.right: arrow.left
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3

            PlainText {
                objectName: row.name
                width: parent.width
                text: JobTexts.nameOf(row.job)
                maximumLineCount: 1
                // As all names, in whichever direction its letters run.
                horizontalAlignment: Text.AlignLeft
                // Marks can be piled up on a letter.
                clip: true
            }

            Row {
                width: parent.width
                spacing: 6

                Icon {
                    id: stateIcon

                    objectName: row.name + ".icon"
                    anchors.verticalCenter: parent.verticalCenter
                    width: 18
                    height: 18
                    name: row.jobState.icon
                    color: row.jobState.color
                }

                PlainText {
                    id: stateText

                    objectName: row.name + ".state"
                    width: parent.width - stateIcon.width - parent.spacing
                    text: JobTexts.joined([stateWord.elidedText, JobTexts.timeAndError(row.job)])
                    horizontalAlignment: Text.AlignLeft
                    color: row.jobState.color
                    font.pixelSize: Theme.smallSize
                    font.weight: Font.DemiBold
                    maximumLineCount: 1
                }
            }

            PlainText {
                objectName: row.name + ".counts"
                width: parent.width
                text: JobTexts.counts(row.job)
                horizontalAlignment: Text.AlignLeft
                color: Theme.secondaryText
                font.pixelSize: Theme.smallSize
                maximumLineCount: 1
            }

            PlainText {
                objectName: row.name + ".supplies"
                width: parent.width
                text: JobTexts.supplies(row.job)
                horizontalAlignment: Text.AlignLeft
                color: Theme.secondaryText
                font.pixelSize: Theme.smallSize
                maximumLineCount: 1
            }
        }

        Icon {
            id: arrow

            anchors.right: parent.right
            anchors.rightMargin: 14
            anchors.verticalCenter: parent.verticalCenter
            name: "chevron"
            color: Theme.track
        }
    }

    background: Rectangle {
        anchors.fill: parent
        anchors.margins: 4
        // Room for the mark of the list that shows where one is.
        anchors.rightMargin: 8
        radius: 10
        color: row.down ? Theme.pressed : "transparent"
        border.width: row.highlighted ? 3 : 0
        border.color: Theme.accent

        RowLine {
            row: row
            y: -4
            visible: index > 0
        }
    }
}
