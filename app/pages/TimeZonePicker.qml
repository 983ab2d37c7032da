// Picks a time zone with two touches: the region on the left, the city on the right.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"

T.Popup {
    id: picker

    property string current
    property string region

    signal picked(string zone)

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 48 : 0, 720)
    height: parent ? parent.height - 32 : 0
    padding: 8
    topPadding: 64
    modal: true
    dim: true
    focus: true

    onAboutToShow: {
        var known = TimeZones.names.indexOf(current) >= 0;
        region = known ? TimeZones.regionOf(current) : TimeZones.regions[0] || "";
        regionList.currentIndex = TimeZones.regions.indexOf(region);
        cityList.currentIndex = known ? TimeZones.namesIn(region).indexOf(current) : -1;
    }
    // Only now the lists have their heights.
    onOpened: {
        regionList.positionViewAtIndex(regionList.currentIndex, ListView.Contain);
        cityList.positionViewAtIndex(Math.max(0, cityList.currentIndex), ListView.Center);
    }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.card

        PlainText {
            x: Theme.margin
            height: 64
            text: qsTr("Time zone")
            font.pixelSize: 20
            font.weight: Font.DemiBold
        }

        Rectangle {
            x: 8
            y: 63
            width: parent.width - 16
            height: 1
            color: Theme.line
        }
    }

    contentItem: Item {
        ListView {
            id: regionList

            objectName: "regions"
            width: 200
            height: parent.height
            clip: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            model: TimeZones.regions
            delegate: PickerDelegate {
                objectName: "region." + modelData
                text: modelData
                open: picker.region === modelData
                chosen: picker.current !== "" && TimeZones.regionOf(picker.current) === modelData
                onClicked: {
                    picker.region = modelData;
                    cityList.currentIndex = -1;
                    cityList.positionViewAtBeginning();
                }
            }

            ScrollMark { flickable: regionList }
        }

        Rectangle {
            x: 208
            width: 1
            height: parent.height
            color: Theme.line
        }

        ListView {
            id: cityList

            objectName: "cities"
            x: 217
            width: parent.width - x
            height: parent.height
            clip: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            model: TimeZones.namesIn(picker.region)
            delegate: PickerDelegate {
                objectName: "city." + modelData
                text: TimeZones.cityOf(modelData)
                chosen: picker.current === modelData
                onClicked: {
                    picker.picked(modelData);
                    picker.close();
                }
            }

            ScrollMark { flickable: cityList }
        }

        PushButton {
            objectName: "cancel"
            anchors.right: parent.right
            anchors.rightMargin: 8
            y: -56
            text: qsTr("Cancel")
            plain: true
            onClicked: picker.close()
        }
    }

    T.Overlay.modal: Rectangle { color: Theme.shade }
}
