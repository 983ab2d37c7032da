// A text that is shown letter by letter: stored values are data and never markup.
import QtQuick 2.15

Text {
    textFormat: Text.PlainText
    color: Theme.text
    font.pixelSize: Theme.bodySize
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
}
