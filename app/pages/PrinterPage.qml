// How the printer prints: the way up, what is done to the picture, ribbon and cutter.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsPage {
    title: qsTr("Printer")

    SettingsSection {
        heading: qsTr("Picture")

        OptionComboBox {
            option: "orientationOption"
            title: qsTr("Orientation")
            wishedWidth: 300
            choices: Array.from(ZBSettingsPrinter.orientationComboBoxModel)
        }

        OptionSwitch {
            option: "mirror"
            text: qsTr("Mirror printing")
            description: qsTr("Left and right change places")
        }

        OptionSwitch {
            option: "negative"
            text: qsTr("Negative printing")
            description: qsTr("Dark and light change places")
        }

        OptionComboBox {
            option: "ditheringMethod"
            title: qsTr("Dithering")
            description: qsTr("How shades become dots")
            wishedWidth: 300
            choices: Array.from(ZBSettingsPrinter.ditheringComboBoxModel)
        }
    }

    SettingsSection {
        heading: qsTr("Colour")

        OptionSwitch {
            option: "overprint"
            text: qsTr("Overprint")
        }

        OptionSwitch {
            option: "whitebase"
            text: qsTr("White base")
            description: qsTr("A base of white below the picture")
        }

        OptionSwitch {
            option: "ribbonSaver"
            text: qsTr("Ribbon saver")
            description: qsTr("A preset leaves this as it is")
        }
    }

    SettingsSection {
        heading: qsTr("Cutter")

        OptionComboBox {
            option: "cutOption"
            title: qsTr("Cut")
            wishedWidth: 300
            choices: Array.from(ZBSettingsPrinter.cutComboBoxModel)
        }
    }
}
