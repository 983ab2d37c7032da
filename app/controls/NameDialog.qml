// Asks for a name.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import Corvanta.SettingsApplication 1.0

ModalPopup {
    id: dialog

    property string title
    property string hint
    property string confirmText
    /// What is wrong with a name, or an empty text.
    property var problemOf: function (name) { return ""; }
    /// One line without anything that cannot be seen.
    readonly property string name: PresetNames.visibleName(field.text)
    readonly property string problem: name !== "" ? problemOf(name) : ""

    signal named(string name)

    function take() {
        var taken = name;
        if (taken === "" || problem !== "")
            return;
        close();
        named(taken);
    }

    parent: T.Overlay.overlay
    // High up, where a keyboard on the screen leaves it to be seen.
    x: parent ? (parent.width - width) / 2 : 0
    y: 24
    width: Math.min(parent ? parent.width - 48 : 0, 520)
    height: contentItem.implicitHeight + 2 * padding
    padding: 24
    focus: true

    onAboutToShow: field.clear()
    onOpened: field.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        spacing: 12

        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.title

        PlainText {
            objectName: "name.title"
            width: parent.width
            text: dialog.title
            font.pixelSize: 20
            font.weight: Font.DemiBold
            wrapMode: Text.WordWrap
        }

        TextInputField {
            id: field

            objectName: "name.field"
            width: parent.width
            hint: dialog.hint
            maximumLength: 300

            Keys.onReturnPressed: dialog.take()
            Keys.onEnterPressed: dialog.take()
        }

        PlainText {
            objectName: "name.problem"
            width: parent.width
            height: Math.max(20, implicitHeight)
            text: dialog.problem
            color: Theme.warning
            font.pixelSize: Theme.smallSize
            wrapMode: Text.WordWrap
        }

        Item {
            width: parent.width
            height: Theme.touchSize

            PushButton {
                objectName: "name.cancel"
                anchors.left: parent.left
                width: (parent.width - 16) / 2
                text: qsTr("Cancel")
                quiet: true
                onClicked: dialog.close()
            }

            PushButton {
                objectName: "name.confirm"
                anchors.right: parent.right
                width: (parent.width - 16) / 2
                text: dialog.confirmText
                enabled: dialog.name !== "" && dialog.problem === ""
                onClicked: dialog.take()
            }
        }
    }
}
