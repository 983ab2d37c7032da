// A short message over the lower end of the window that goes away by itself.
import QtQuick 2.15

Rectangle {
    id: notice

    property int showTime: 4000
    readonly property alias text: message.text

    function show(text) {
        message.text = text;
        timer.restart();
    }

    function hide() {
        timer.stop();
    }

    width: Math.min(parent.width - 2 * Theme.margin, message.implicitWidth + 76)
    height: Math.max(Theme.touchSize, message.implicitHeight + 24)
    radius: Theme.radius
    color: Theme.column
    opacity: timer.running ? 1 : 0
    visible: opacity > 0

    Behavior on opacity { NumberAnimation { duration: Theme.transitionTime } }

    Accessible.role: Accessible.AlertMessage
    Accessible.name: message.text

    TapHandler {
        onTapped: notice.hide()
    }

    Timer {
        id: timer

        interval: notice.showTime
    }

    Icon {
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        name: "warning"
        color: Theme.columnWarning
    }

    PlainText {
        id: message

        anchors.left: parent.left
        anchors.leftMargin: 52
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        wrapMode: Text.WordWrap
        color: Theme.columnStrongText
        font.pixelSize: Theme.bodySize - 1
    }
}
