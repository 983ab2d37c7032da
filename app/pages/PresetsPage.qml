// The user's presets of the print options: save, load, delete.
import QtQuick 2.15
import Corvanta.SettingsApplication 1.0
import "../controls"

SettingsPage {
    id: page

    /// What was done last, and what of it did not work.
    property string report
    property string complaint
    /// The preset that a question is about, and its place in the list.
    property string asked
    property int askedPlace
    /// The preset that was to be loaded last and could not be, and why.
    property string refused
    property string refusal

    /// One line, whatever the name holds.
    function line(name) {
        return PresetNames.visibleName(Preferences.asText(name)) || qsTr("Blank name");
    }

    /// For a sentence, which shall stay short.
    function quoted(name) {
        return "“" + PresetNames.shortened(line(name), 40) + "”";
    }

    function tell(text) {
        refused = "";
        complaint = "";
        report = text;
    }

    function complain(text) {
        tell("");
        complaint = text;
    }

    /// Also in the row, where the person is; the report may be out of sight.
    function refuse(name, reason) {
        complain(quoted(name) + ": " + reason);
        refused = name;
        refusal = reason;
    }

    function load(name) {
        var outcome = PrintOptions.load(name);
        if (outcome === PrintOptions.loaded)
            tell(qsTr("%1 was loaded").arg(quoted(name)));
        else if (outcome === PrintOptions.withoutOptions)
            refuse(name, qsTr("No options in it, nothing was changed"));
        else
            refuse(name, qsTr("The options could not be written"));
    }

    function save(name) {
        var lost = PrintOptions.lostInPreset();
        if (!PrintOptions.save(name))
            complain(qsTr("%1 could not be saved").arg(quoted(name)));
        else if (lost.length > 0)
            tell(qsTr("Saved as %1").arg(quoted(name)) + ". "
                 + qsTr("Loading will not bring back: %1").arg(lost.join(", ")));
        else
            tell(qsTr("Saved as %1").arg(quoted(name)));
    }

    function remove(name, byKey) {
        if (PrintOptions.remove(name)) {
            tell(qsTr("%1 was deleted").arg(quoted(name)));
            focusNear(askedPlace, byKey ? Qt.TabFocusReason : Qt.OtherFocusReason);
        } else {
            complain(qsTr("%1 could not be deleted").arg(quoted(name)));
            saveButton.forceActiveFocus(byKey ? Qt.TabFocusReason : Qt.OtherFocusReason);
            scrollToTop();
        }
    }

    /// The row that had the focus is gone.
    function focusNear(place, reason) {
        savedPresets.layOut();
        var row = rows.itemAt(Math.min(place, rows.count - 1));
        if (row)
            row.takeFocus(reason);
        else
            saveButton.forceActiveFocus(reason);
    }

    function stateOf(name) {
        return PrintOptions.preset !== name ? ""
               : PrintOptions.presetIsChanged ? qsTr("Options were changed since") : qsTr("In use");
    }

    title: qsTr("Presets")
    onVisibleChanged: {
        if (!visible) {
            nameDialog.close();
            replacement.close();
            deletion.close();
        }
    }

    SettingsSection {
        SettingRow {
            title: qsTr("Options as they are set now")
            descriptionName: "presets.report"
            description: page.report !== "" ? page.report : qsTr("Save them under a name to load them again later")
            warning: page.complaint

            PushButton {
                id: saveButton

                objectName: "presets.save"
                text: qsTr("Save…")
                onClicked: nameDialog.open()
            }
        }
    }

    SettingsSection {
        id: savedPresets

        heading: qsTr("Saved presets")

        Repeater {
            id: rows

            model: PrintOptions.presetNames

            PresetRow {
                id: row

                name: "preset." + index
                title: page.line(modelData)
                description: page.stateOf(modelData)
                warning: page.refused === modelData ? page.refusal : ""
                onLoad: {
                    page.load(modelData);
                    page.reveal(row);
                }
                // The reason can need a second line.
                onHeightChanged: if (warning !== "") page.reveal(row)
                onRemove: {
                    page.asked = modelData;
                    page.askedPlace = index;
                    deletion.open();
                }
            }
        }

        SettingRow {
            visible: PrintOptions.presetNames.length === 0
            descriptionName: "presets.none"
            title: qsTr("No presets")
            description: qsTr("Nothing was saved yet")
        }
    }

    NameDialog {
        id: nameDialog

        title: qsTr("Save the options as a preset")
        hint: qsTr("Name of the preset")
        confirmText: qsTr("Save")
        problemOf: function (name) {
            return PrintOptions.reservedNames.indexOf(name) >= 0 ? qsTr("The printer uses this name itself.") : "";
        }
        onNamed: {
            page.asked = name;
            if (PrintOptions.presetNames.indexOf(name) >= 0)
                replacement.open();
            else
                page.save(name);
        }
    }

    ConfirmationDialog {
        id: replacement

        title: qsTr("Replace the preset?")
        text: qsTr("There is a preset %1. Its options are lost when it is replaced.").arg(page.quoted(page.asked))
        confirmText: qsTr("Replace")
        onConfirmed: page.save(page.asked)
    }

    ConfirmationDialog {
        id: deletion

        title: qsTr("Delete the preset?")
        text: qsTr("The preset %1 cannot be brought back. What is set now stays as it is.")
              .arg(page.quoted(page.asked))
        confirmText: qsTr("Delete")
        onConfirmed: page.remove(page.asked, byKey)
    }
}
