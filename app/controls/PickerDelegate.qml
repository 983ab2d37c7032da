// One entry of a list from which one entry is picked.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.ItemDelegate {
    id: control

    /// Whether this is the entry that is picked now, or holds it.
    property bool chosen
    /// Whether the list beside this one shows what belongs to this entry.
    property bool open

    width: ListView.view ? ListView.view.width - 8 : 0
    height: Theme.touchSize
    leftPadding: 16
    rightPadding: 44

    Keys.onReturnPressed: clicked()

    contentItem: PlainText {
        text: control.text
        font.pixelSize: Theme.bodySize - 1
        font.weight: control.chosen ? Font.DemiBold : Font.Normal
        wrapMode: Text.Wrap
        maximumLineCount: 2
    }

    background: Rectangle {
        radius: 8
        color: control.down || control.highlighted || control.visualFocus
               ? Theme.accentSoft : control.open ? Theme.background : "transparent"

        Icon {
            anchors.right: parent.right
            anchors.rightMargin: 14
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            name: control.chosen ? "check" : ""
            color: Theme.accent
        }
    }
}
