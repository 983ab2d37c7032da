// One tab in the column of tabs.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.ItemDelegate {
    id: entry

    /// Whether the page of this tab is the one that shows.
    property bool current
    property string iconName

    focusPolicy: Qt.StrongFocus
    height: Theme.touchSize
    leftPadding: 52
    rightPadding: 8

    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
    Keys.onReturnPressed: clicked()

    Accessible.role: Accessible.PageTab
    Accessible.name: text
    Accessible.selected: current

    contentItem: PlainText {
        text: entry.text
        color: entry.current ? Theme.columnStrongText : Theme.columnText
        font.weight: entry.current ? Font.DemiBold : Font.Normal
        font.pixelSize: Theme.bodySize - 1
        wrapMode: Text.WordWrap
        maximumLineCount: 2
    }

    background: Rectangle {
        radius: 12
        color: entry.current ? Theme.columnCurrent : entry.down ? Theme.columnPressed : "transparent"

        Icon {
            x: 14
            anchors.verticalCenter: parent.verticalCenter
            name: entry.iconName
            color: entry.current ? Theme.columnAccent : Theme.columnText
        }

        FocusRing {
            control: entry
            radius: 12
            ringColor: Theme.columnAccent
        }
    }
}
