// A card over everything else, which is darkened and cannot be used while it is open.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Popup {
    modal: true
    dim: true

    background: Rectangle {
        radius: Theme.radius
        color: Theme.card
    }

    T.Overlay.modal: Rectangle { color: Theme.shade }
}
