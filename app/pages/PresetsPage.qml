// The user's presets of the print options: save, load, delete.
import QtQuick 2.15
import "../controls"

SettingsPage {
    id: page

    /// What was done last, and what of it did not work.
    property string report
    property string complaint
    /// The preset that a question is about.
    property string asked

    /// One line, whatever the name holds.
    function line(name) {
        return Preferences.asText(name).trim() || qsTr("Blank name");
    }

    /// For a sentence, which shall stay short.
    function quoted(name) {
        var letters = Array.from(line(name));
        return "“" + (letters.length > 40 ? letters.slice(0, 40).join("") + "…" : letters.join("")) + "”";
    }

    function tell(text) {
        complaint = "";
        report = text;
    }

    function load(name) {
        if (PrintOptions.load(name))
            tell(qsTr("%1 was loaded").arg(quoted(name)));
        else
            complaint = qsTr("%1 holds no options, nothing was changed").arg(quoted(name));
    }

    function save(name) {
        PrintOptions.save(name);
        tell(qsTr("Saved as %1").arg(quoted(name)));
    }

    function remove(name) {
        PrintOptions.remove(name);
        tell(qsTr("%1 was deleted").arg(quoted(name)));
        // The row that had the focus is gone.
        saveButton.forceActiveFocus(Qt.OtherFocusReason);
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
        heading: qsTr("Saved presets")

        Repeater {
            model: PrintOptions.presetNames

            PresetRow {
                name: "preset." + index
                title: page.line(modelData)
                description: page.stateOf(modelData)
                onLoad: page.load(modelData)
                onRemove: {
                    page.asked = modelData;
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
        onConfirmed: page.remove(page.asked)
    }
}
