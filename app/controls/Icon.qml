// A line drawing in one colour.
import QtQuick 2.15
import QtQuick.Window 2.15

Image {
    property string name
    property color color: Theme.text

    width: 24
    height: 24
    sourceSize: Qt.size(width * Screen.devicePixelRatio, height * Screen.devicePixelRatio)
    source: name !== "" ? "image://icons/" + name + "/" + color : ""
}
