// The column of tabs at the left, with the state of the internet connection below them.
import QtQuick 2.15

Rectangle {
    id: column

    /// Objects with number, title and icon, in the order in which they are shown.
    property var tabs: []
    property int currentTab
    property bool connected

    signal picked(int number)

    color: Theme.column

    PlainText {
        id: heading

        x: 22
        height: 64
        text: qsTr("Settings")
        color: Theme.columnStrongText
        font.pixelSize: 22
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    ScrollArea {
        id: area

        anchors.top: heading.bottom
        anchors.bottom: connection.top
        width: parent.width
        sideMargin: 10
        spacing: 2

        Repeater {
            model: column.tabs

            TabEntry {
                objectName: "tab." + modelData.number
                width: parent.width
                text: modelData.title
                iconName: modelData.icon
                current: modelData.number === column.currentTab
                onCurrentChanged: if (current) area.scrollTo(this)
                onClicked: column.picked(modelData.number)
            }
        }
    }

    Item {
        id: connection

        anchors.bottom: parent.bottom
        width: parent.width
        height: 60

        Rectangle {
            x: 22
            width: parent.width - 44
            height: 1
            color: Theme.columnCurrent
        }

        Rectangle {
            x: 24
            anchors.verticalCenter: parent.verticalCenter
            width: 12
            height: 12
            radius: 6
            color: column.connected ? Theme.columnAccent : "transparent"
            border.width: 2
            border.color: column.connected ? Theme.columnAccent : Theme.columnWarning
        }

        PlainText {
            objectName: "connectionState"
            x: 52
            width: parent.width - x - 8
            height: parent.height
            text: column.connected ? qsTr("Internet connected") : qsTr("No internet")
            color: column.connected ? Theme.columnText : Theme.columnWarning
            font.pixelSize: Theme.smallSize
            wrapMode: Text.WordWrap
            maximumLineCount: 2
        }
    }
}
