// Picks a time zone with two touches: the region on the left, the city on the right.
import QtQuick 2.15
import "../controls"

PickerPopup {
    id: picker

    property string current
    property string region

    signal picked(string zone)

    title: qsTr("Time zone")

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

    contentItem: Item {
        Rectangle {
            y: -1
            width: parent.width
            height: 1
            color: Theme.line
        }

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
            y: picker.buttonPlace
            text: qsTr("Cancel")
            plain: true
            onClicked: picker.close()
        }
    }
}
