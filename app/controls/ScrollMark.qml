// Shows that there is more to see and where in it one is. Not a control: one scrolls by moving the page.
import QtQuick 2.15

Rectangle {
    property Flickable flickable

    // Where in the viewport, since children of a flickable move with its content.
    parent: flickable
    anchors.right: parent.right
    anchors.rightMargin: 2
    y: flickable.visibleArea.yPosition * flickable.height
    width: 4
    height: flickable.visibleArea.heightRatio * flickable.height
    radius: 2
    visible: flickable.visibleArea.heightRatio < 1
    color: Theme.track
}
