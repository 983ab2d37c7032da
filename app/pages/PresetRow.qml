// One preset: its name, and what can be done with it.
import QtQuick 2.15
import "../controls"

Item {
    id: row

    /// The parts are named after it.
    property string name
    property string title
    property string description
    property string warning

    signal load()
    signal remove()

    /// Takes the focus to the button that asks before it does anything.
    function takeFocus(reason) {
        removeButton.forceActiveFocus(reason);
    }

    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.rowHeight, texts.implicitHeight + 24)

    RowLine { row: row }

    Column {
        id: texts

        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: buttons.left
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        spacing: 3

        PlainText {
            objectName: row.name
            width: parent.width
            text: row.title
            maximumLineCount: 1
            // Marks can be piled up on a letter.
            clip: true
        }

        PlainText {
            objectName: row.name + ".state"
            width: parent.width
            visible: text !== ""
            text: row.warning !== "" ? row.warning : row.description
            color: row.warning !== "" ? Theme.warning : Theme.secondaryText
            font.pixelSize: Theme.smallSize
            wrapMode: Text.Wrap
        }
    }

    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        spacing: 12

        PushButton {
            objectName: row.name + ".load"
            text: qsTr("Load")
            quiet: true
            onClicked: row.load()

            Accessible.description: row.title
        }

        PushButton {
            id: removeButton

            objectName: row.name + ".delete"
            text: qsTr("Delete…")
            plain: true
            destructive: true
            onClicked: row.remove()

            Accessible.description: row.title
        }
    }
}
