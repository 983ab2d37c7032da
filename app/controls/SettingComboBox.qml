// A setting with a list of choices. The stored value is the position of the choice, or the entry of
// `values` at that position where other values are stored.
import QtQuick 2.15

ChoiceRow {
    id: row

    property string settingKey
    property var fallback
    property var values: choices.map(function (choice, position) { return position; })
    /// What is stored, as far as this page knows.
    property var stored: fallback

    function refresh() {
        var value = Preferences.read(settingKey, fallback);
        stored = typeof values[0] === "number" ? Preferences.asWholeNumber(value) : Preferences.asText(value);
    }

    name: settingKey
    position: values.indexOf(stored)
    otherText: typeof stored === "string" && stored !== "" ? stored : qsTr("Not a known choice")

    onChosen: {
        stored = values[position];
        Preferences.change(settingKey, stored);
    }
    onVisibleChanged: if (visible) refresh()
    Component.onCompleted: refresh()
}
