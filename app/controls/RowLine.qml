// The hairline above every row of a section but the first.
import QtQuick 2.15

Rectangle {
    property Item row

    visible: row !== null && row.y > 0
    x: Theme.margin
    width: parent.width - 2 * Theme.margin
    height: 1
    color: Theme.line
}
