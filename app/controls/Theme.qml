// Colours, sizes and times that every control and page shares.
pragma Singleton

import QtQuick 2.15

QtObject {
    /// Off where pictures are taken and input is synthesised: every state is then reached at once.
    property bool animated: true
    readonly property int transitionTime: animated ? 140 : 0

    readonly property color background: "#eef1f4"
    readonly property color card: "#ffffff"
    readonly property color line: "#e3e8ed"
    readonly property color text: "#16232e"
    readonly property color secondaryText: "#566573"
    readonly property color accent: "#0b7a75"
    readonly property color accentSoft: "#d9efec"
    readonly property color accentText: "#ffffff"
    readonly property color pressed: "#f0f4f6"
    readonly property color shade: "#70101a22"
    readonly property color track: "#c3ccd4"
    readonly property color warning: "#a64b00"
    readonly property color warningSoft: "#fdf0e1"

    readonly property color column: "#15222d"
    readonly property color columnCurrent: "#26394a"
    readonly property color columnPressed: "#1d2d3b"
    readonly property color columnText: "#b4c1cd"
    readonly property color columnStrongText: "#ffffff"
    readonly property color columnAccent: "#3fc1b3"
    readonly property color columnWarning: "#f5a04c"

    readonly property int titleSize: 26
    readonly property int bodySize: 17
    readonly property int smallSize: 14

    /// The least side of anything that a finger has to hit.
    readonly property int touchSize: 48
    readonly property int rowHeight: 64
    readonly property int margin: 20
    readonly property int radius: 14
}
