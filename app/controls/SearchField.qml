// A line to type into, with a magnifying glass.
import QtQuick 2.15

TextInputField {
    leftPadding: 48
    maximumLength: 100
    inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase

    Icon {
        x: 14
        anchors.verticalCenter: parent.verticalCenter
        name: "search"
        color: Theme.secondaryText
    }
}
