// The picture of a print job, or a sign in its place where there is none that can be read.
import QtQuick 2.15
import QtQuick.Window 2.15
import "../controls"

Rectangle {
    id: frame

    property alias source: picture.source
    readonly property bool isShown: picture.status === Image.Ready
    /// Not while it is being read.
    readonly property bool isMissing: picture.status === Image.Null || picture.status === Image.Error

    radius: 6
    color: Theme.background

    // Read beside what goes on, in the size in which it is shown, and kept.
    Image {
        id: picture

        anchors.fill: parent
        anchors.margins: 3
        asynchronous: true
        fillMode: Image.PreserveAspectFit
        sourceSize: Qt.size(width * Screen.devicePixelRatio, height * Screen.devicePixelRatio)
    }

    Icon {
        anchors.centerIn: parent
        visible: frame.isMissing
        name: "picture"
        color: Theme.track
    }
}
