// Asks before something is done, mostly what cannot be taken back. Whatever closes it but the confirming button does
// nothing; Cancel has the focus when it opens.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

ModalPopup {
    id: dialog

    property string title
    property string text
    property string confirmText
    /// Whether something is lost.
    property bool destructive: true

    /// By a key on the button, or by a finger.
    signal confirmed(bool byKey)

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 48 : 0, 520)
    height: contentItem.implicitHeight + 2 * padding
    padding: 24
    focus: true

    onOpened: cancel.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        spacing: 12

        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.title
        Accessible.description: dialog.text

        PlainText {
            objectName: "confirmation.title"
            width: parent.width
            text: dialog.title
            font.pixelSize: 20
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
        }

        PlainText {
            objectName: "confirmation.text"
            width: parent.width
            text: dialog.text
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize - 1
            lineHeight: 1.2
            wrapMode: Text.Wrap
        }

        Item {
            width: parent.width
            height: Theme.touchSize + 12

            PushButton {
                id: cancel

                objectName: "confirmation.cancel"
                anchors.left: parent.left
                anchors.bottom: parent.bottom
                width: (parent.width - 16) / 2
                text: qsTr("Cancel")
                quiet: true
                onClicked: dialog.close()
            }

            PushButton {
                objectName: "confirmation.confirm"
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                width: (parent.width - 16) / 2
                text: dialog.confirmText
                destructive: dialog.destructive
                onClicked: {
                    var byKey = visualFocus;
                    dialog.close();
                    dialog.confirmed(byKey);
                }
            }
        }
    }
}
