// A large card in the middle of the window where something is picked, with a title and, at its right, room
// for the buttons of the content.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

ModalPopup {
    id: picker

    property string title
    /// Where the window has the room.
    property real wishedWidth: 720
    /// From the upper edge of the content to that of a button beside the title.
    readonly property real buttonPlace: -56

    // Behind the content, which each picker sets itself.
    readonly property Item titleText: PlainText {
        parent: picker.background
        x: Theme.margin
        width: parent ? parent.width - 160 : 0
        height: picker.topPadding
        text: picker.title
        font.pixelSize: 20
        font.weight: Font.DemiBold
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 48 : 0, wishedWidth)
    height: parent ? parent.height - 32 : 0
    padding: 8
    topPadding: 64
    focus: true
}
