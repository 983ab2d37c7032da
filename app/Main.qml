// The window of the Settings application: the tabs at the left, the page of the current one at the right.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Corvanta.Settings 1.0
import "controls"
import "pages"

ApplicationWindow {
    id: window

    // Set by the application before the window is complete.
    property bool animated: true
    property int startTab: ZBSettingsTabNames.GENERAL
    property var timeZones: []

    property int currentTab: -1
    readonly property string noticeText: notice.visible ? notice.text : ""

    readonly property var tabs: [
        {
            number: ZBSettingsTabNames.GENERAL,
            title: qsTr("General"), icon: "general", page: "pages/GeneralPage.qml"
        },
        {
            number: ZBSettingsTabNames.DATE_TIME,
            title: qsTr("Date & Time"), icon: "clock", page: "pages/DateTimePage.qml"
        },
        {
            number: ZBSettingsTabNames.NETWORKING,
            title: qsTr("Networking"), icon: "globe", page: "pages/NetworkingPage.qml"
        },
        {
            number: ZBSettingsTabNames.SYSTEM_UPDATES,
            title: qsTr("System Updates"), icon: "update", page: "pages/SystemUpdatesPage.qml"
        },
        {
            number: ZBSettingsTabNames.LANGUAGES,
            title: qsTr("Languages"), icon: "keyboard", page: "pages/LanguagesPage.qml"
        },
        {
            number: ZBSettingsTabNames.USERS_PASSWORDS,
            title: qsTr("Users & Passwords"), icon: "user", page: "pages/UsersPasswordsPage.qml"
        },
        {
            number: ZBSettingsTabNames.PRINTER,
            title: qsTr("Printer"), icon: "printer", page: "pages/PrinterPage.qml"
        },
        {
            number: ZBSettingsTabNames.PRINTER_ALIGNMENT,
            title: qsTr("Printer alignment"), icon: "align", page: "pages/PrinterAlignmentPage.qml"
        },
        {
            number: ZBSettingsTabNames.PRINTER_PRESETS,
            title: qsTr("Presets"), icon: "preset", page: "pages/PresetsPage.qml"
        },
        {
            number: ZBSettingsTabNames.ABOUT,
            title: qsTr("About"), icon: "information", page: "pages/AboutPage.qml"
        },
        {
            number: ZBSettingsTabNames.PRINTER_ADVANCED,
            title: qsTr("Printer advanced"), icon: "wrench", page: "pages/PrinterAdvancedPage.qml"
        },
        {
            number: ZBSettingsTabNames.PRINTER_HISTORY,
            title: qsTr("Print history"), icon: "history", page: "pages/HistoryPage.qml"
        }
    ]

    /// Turns to the tab with this number; says so and stays where it is when there is none.
    function showTab(number) {
        notice.hide();
        if (tabs.some(function (tab) { return tab.number === number; }))
            currentTab = number;
        else
            notice.show(qsTr("There is no tab %1.").arg(number));
        if (currentTab < 0)
            currentTab = ZBSettingsTabNames.GENERAL;
    }

    width: 800
    height: 480
    minimumWidth: 640
    minimumHeight: 400
    visible: true
    title: qsTr("Settings")

    // An item and not the window's colour, so that pictures of the window have it too.
    background: Rectangle { color: Theme.background }

    Component.onCompleted: {
        Theme.animated = animated;
        TimeZones.names = timeZones;
        showTab(startTab);
    }

    Connections {
        target: ZBSettingsMain

        function onTabEnumChanged(tabEnum) {
            window.showTab(tabEnum);
            if (!window.active) {
                window.raise();
                window.requestActivate();
            }
        }
    }

    TabColumn {
        id: tabColumn

        width: 212
        height: parent.height
        tabs: window.tabs
        currentTab: window.currentTab
        connected: ZBSettingsMain.isInternetConnected
        onPicked: window.showTab(number)
    }

    Item {
        id: pages

        anchors.left: tabColumn.right
        anchors.right: parent.right
        height: parent.height

        Repeater {
            model: window.tabs

            Loader {
                id: loader

                readonly property bool current: modelData.number === window.currentTab

                objectName: "page." + modelData.number
                anchors.fill: parent
                visible: current
                focus: current
                // A page is made when it is first shown and then kept: it comes back where it was left.
                active: false
                source: modelData.page
                onCurrentChanged: if (current) active = true

                PlainText {
                    objectName: "pageError"
                    anchors.centerIn: parent
                    visible: loader.status === Loader.Error
                    text: qsTr("This page cannot be shown.")
                    color: Theme.secondaryText
                }
            }
        }

        Notice {
            id: notice

            objectName: "notice"
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.margin
        }
    }
}
