// Says, where it matters, what cannot work at the moment.
import QtQuick 2.15

Rectangle {
    property alias text: message.text

    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.rowHeight, message.implicitHeight + 24)
    radius: Theme.radius
    color: Theme.warningSoft

    Accessible.role: Accessible.Note
    Accessible.name: text

    Icon {
        x: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        name: "warning"
        color: Theme.warning
    }

    PlainText {
        id: message

        anchors.left: parent.left
        anchors.leftMargin: Theme.margin + 38
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        wrapMode: Text.WordWrap
        color: Theme.warning
        font.pixelSize: Theme.bodySize - 1
    }
}
