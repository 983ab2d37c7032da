// Shows that there is more to see and where in it one is. Not a control: one scrolls by moving the page.
import QtQuick 2.15

Rectangle {
    property Flickable flickable

    // Where in the viewport, since children of a flickable move with its content.
    parent: flickable
    anchors.right: parent.right
    anchors.rightMargin: 2
    // Long enough to be seen, also where the list is long.
    height: Math.max(24, flickable.visibleArea.heightRatio * flickable.height)
    y: flickable.visibleArea.yPosition / Math.max(0.001, 1 - flickable.visibleArea.heightRatio)
       * (flickable.height - height)
    width: 4
    radius: 2
    visible: flickable.visibleArea.heightRatio < 1
    color: Theme.track
}
