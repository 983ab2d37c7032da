// What is set when the printer is serviced: heat of the heads, tension of the ribbon, and the way back.
import QtQuick 2.15
import "../controls"

SettingsPage {
    id: page

    function reset() {
        // The back end finds a user's preset before its own of the same name.
        if (PrintOptions.presetNames.indexOf(PrintOptions.defaultSettings) >= 0) {
            defaults.warning = qsTr("A saved preset has the name of the defaults; nothing was changed.");
            return;
        }
        var outcome = PrintOptions.load(PrintOptions.defaultSettings);
        defaults.warning = outcome === PrintOptions.loaded ? ""
                           : outcome === PrintOptions.withoutOptions
                             ? qsTr("There are no defaults; nothing was changed.")
                             : qsTr("The options could not be written.");
    }

    title: qsTr("Printer advanced")
    onVisibleChanged: if (!visible) confirmation.close()

    SettingsSection {
        heading: qsTr("Heat")

        OptionStepper {
            option: "head1HeatOffset"
            title: qsTr("Heat offset of head 1")
        }

        OptionStepper {
            option: "head2HeatOffset"
            title: qsTr("Heat offset of head 2")
        }
    }

    SettingsSection {
        heading: qsTr("Ribbon tension")

        OptionStepper {
            option: "r1Tension"
            title: qsTr("Tension R1")
        }

        OptionStepper {
            option: "r2Tension"
            title: qsTr("Tension R2")
        }
    }

    SettingsSection {
        heading: qsTr("Defaults")

        SettingRow {
            id: defaults

            readonly property bool areLoaded: PrintOptions.preset === PrintOptions.defaultSettings
                                              && !PrintOptions.presetIsChanged

            title: qsTr("All printer options")
            descriptionName: "defaults.report"
            description: areLoaded ? qsTr("The defaults were loaded")
                         : qsTr("Back to the defaults, but for the ribbon saver")

            PushButton {
                objectName: "defaults.load"
                text: qsTr("Reset…")
                quiet: true
                destructive: true
                onClicked: confirmation.open()
            }
        }
    }

    ConfirmationDialog {
        id: confirmation

        title: qsTr("Reset all printer options?")
        text: qsTr("This sets all options of the printer pages back to the defaults, the alignment as well. "
                   + "Only the ribbon saver stays as it is. Save a preset first to keep what is set now.")
        confirmText: qsTr("Reset")
        onConfirmed: page.reset()
    }
}
