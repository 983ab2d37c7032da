// A print option that goes by the name of what is chosen.
import QtQuick 2.15

ChoiceRow {
    /// Name of the option in PrintOptions.
    property string option

    name: option
    position: choices.indexOf(PrintOptions.values[option])
    otherText: qsTr("Not chosen")
    otherColor: Theme.secondaryText
    onChosen: PrintOptions.change(option, choices[position])
}
