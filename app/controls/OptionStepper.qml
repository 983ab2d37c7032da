// A print option that is a number of steps.
import QtQuick 2.15

Stepper {
    /// Name of the option in PrintOptions.
    property string option
    readonly property var range: PrintOptions.ranges[option]
    /// Whatever another program has stored.
    readonly property var stored: PrintOptions.values[option]

    name: option
    from: range.from
    to: range.to
    value: stored
    description: qsTr("%1 to %2 %3").arg(from).arg(to).arg(range.unit)
    warning: stored < from || stored > to
             ? qsTr("The stored value is not between %1 and %2.").arg(from).arg(to) : ""
    onMoved: PrintOptions.changeSoon(option, number)
    onSettled: PrintOptions.settle()
}
