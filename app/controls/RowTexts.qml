// What a row of a section says: a title and, below it, a line that explains it or warns.
import QtQuick 2.15

Column {
    id: texts

    property alias title: titleText.text
    property string description
    property string warning
    /// Whether what the row is for cannot be used at the moment.
    property bool dimmed
    /// Object name of the line below the title.
    property string descriptionName: "description"

    spacing: 3

    PlainText {
        id: titleText

        width: parent.width
        color: texts.dimmed ? Theme.secondaryText : Theme.text
        wrapMode: Text.Wrap
        maximumLineCount: 2
    }

    PlainText {
        objectName: texts.descriptionName
        width: parent.width
        visible: text !== ""
        text: texts.warning !== "" ? texts.warning : texts.description
        color: texts.warning !== "" ? Theme.warning : Theme.secondaryText
        font.pixelSize: Theme.smallSize
        wrapMode: Text.Wrap
        maximumLineCount: 5
    }
}
