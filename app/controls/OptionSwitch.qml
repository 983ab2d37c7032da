// A print option that is on or off.
import QtQuick 2.15

SwitchRow {
    /// Name of the option in PrintOptions.
    property string option

    objectName: option
    checked: PrintOptions.values[option] === true
    onToggled: PrintOptions.change(option, checked)
}
