// Where the picture lies on the supply, and the test page that shows it.
import QtQuick 2.15
import "../controls"

SettingsPage {
    title: qsTr("Printer alignment")

    SettingsSection {
        heading: qsTr("Print head 1")

        OptionStepper {
            option: "horizontal1Offset"
            title: qsTr("Horizontal offset")
        }

        OptionStepper {
            option: "vertical1Offset"
            title: qsTr("Vertical offset")
        }
    }

    SettingsSection {
        heading: qsTr("Print head 2")

        OptionStepper {
            option: "horizontal2Offset"
            title: qsTr("Horizontal offset")
        }

        OptionStepper {
            option: "vertical2Offset"
            title: qsTr("Vertical offset")
        }
    }

    SettingsSection {
        heading: qsTr("Supply")

        OptionStepper {
            option: "feedOffset"
            title: qsTr("Feed offset")
        }

        OptionStepper {
            option: "backfeedOffset"
            title: qsTr("Backfeed offset")
        }
    }

    TestPageSection {
        objectName: "testPage"
    }
}
