// The print jobs of the device, newest first: what became of them, to print one again, and to clear them.
import QtQuick 2.15
import Corvanta.Settings 1.0
import Corvanta.SettingsApplication 1.0
import "../controls"

FocusScope {
    id: page

    property alias title: heading.title
    readonly property bool isAbsent: queue.state === ServicePresence.Absent
    readonly property bool isRead: jobs.history !== null

    /// What was done last, and whether it did not work.
    property string report
    property bool isComplaint
    /// The job that a question is about.
    property var asked: ({})
    /// The job that was to be printed again last.
    property var ordered: ({})
    /// What was asked of the queue and did not show yet.
    property string expected
    /// How long a change is waited for before the page says that there is none, in milliseconds.
    property int patience: 5000

    function tell(text) {
        isComplaint = false;
        report = text;
    }

    function complain(text) {
        isComplaint = true;
        report = text;
    }

    /// The back end does not say what became of it: the list does.
    function expect(change) {
        expected = change;
        ordered = asked;
        tell(qsTr("Asking the print queue…"));
        order.restart();
    }

    function give() {
        impatience.restart();
        if (expected === "reprint")
            ZBPrinterHistory.reprintPrintJob(ordered.GUID);
        else
            ZBPrinterHistory.cancelPrintJob();
    }

    function fulfilled(text) {
        expected = "";
        impatience.stop();
        tell(text);
    }

    function show(row) {
        asked = jobs.jobAt(row);
        details.open();
    }

    objectName: "history.page"
    title: qsTr("Print history")
    onVisibleChanged: {
        if (!visible) {
            details.close();
            reprinting.close();
            clearing.close();
        }
    }

    ServicePresence {
        id: queue

        service: "com.corvanta.printqd"
    }

    ZBPrintJobModel {
        id: jobs

        onRowsInserted: {
            if (page.expected !== "reprint")
                return;
            for (var row = first; row <= last; ++row) {
                if (jobAt(row).jobName === page.ordered.jobName) {
                    page.fulfilled(qsTr("%1 was sent to the printer again").arg(JobTexts.quoted(page.ordered)));
                    return;
                }
            }
        }
        onRowsRemoved: {
            if (page.expected === "clear")
                page.fulfilled(count === 0 ? qsTr("The history was cleared")
                                           : qsTr("The finished jobs were cleared"));
        }
        onJobsChanged: {
            if (!details.visible && !reprinting.visible)
                return;
            var row = rowOf(page.asked.GUID);
            if (row >= 0) {
                page.asked = jobAt(row);
            } else {
                details.close();
                reprinting.close();
            }
        }
    }

    // Each call of the back end waits for the print queue. The pauses let the page be drawn before.
    Timer {
        interval: 20
        running: page.visible && !page.isRead
        onTriggered: jobs.history = ZBPrinterHistory
    }

    Timer {
        id: order

        interval: 20
        onTriggered: page.give()
    }

    Timer {
        id: impatience

        interval: page.patience
        onTriggered: {
            if (page.expected === "reprint")
                page.complain(qsTr("%1 could not be printed again. Its document may no longer be kept.")
                              .arg(JobTexts.quoted(page.ordered)));
            else if (page.expected === "clear")
                page.complain(qsTr("Nothing was cleared. Jobs that are not finished stay."));
        }
    }

    PageHeading {
        id: heading

        action: PushButton {
            objectName: "history.clear"
            text: qsTr("Clear…")
            plain: true
            destructive: true
            enabled: jobs.count > 0 && !page.isAbsent
            onClicked: clearing.open()
        }
    }

    PlainText {
        id: reportText

        objectName: "history.report"
        anchors.top: heading.bottom
        anchors.topMargin: -10
        x: Theme.margin + 4
        width: parent.width - 2 * x
        height: 26
        text: page.report !== "" ? page.report
              : !page.isRead ? qsTr("Reading…")
              : jobs.count === 1 ? qsTr("1 job") : qsTr("%1 jobs, newest first").arg(jobs.count)
        color: page.isComplaint ? Theme.warning : Theme.secondaryText
        font.pixelSize: Theme.smallSize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    WarningBanner {
        id: absence

        objectName: "history.absent"
        anchors.top: reportText.bottom
        anchors.topMargin: 6
        x: Theme.margin
        width: parent.width - 2 * x
        height: page.isAbsent ? implicitHeight : 0
        visible: page.isAbsent
        text: jobs.count > 0 ? qsTr("The print queue is not running. The jobs are those that were known last.")
                             : qsTr("The print queue is not running.")
    }

    Rectangle {
        anchors.top: absence.bottom
        anchors.topMargin: page.isAbsent ? 12 : 0
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.margin
        x: Theme.margin
        width: parent.width - 2 * x
        radius: Theme.radius
        color: Theme.card

        ListView {
            id: list

            /// Whether the row that keys act on is shown: not to a finger.
            property bool byKeys: true
            readonly property int pageRows: Math.max(1, Math.floor(height / 108))

            /// The row that keys act on, always in view.
            function choose(row) {
                currentIndex = Math.max(0, Math.min(count - 1, row));
                positionViewAtIndex(currentIndex, ListView.Contain);
            }

            objectName: "pageScroll"
            anchors.fill: parent
            anchors.topMargin: 4
            anchors.bottomMargin: 4
            focus: true
            activeFocusOnTab: count > 0
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            reuseItems: true
            // The view stays where it is when rows come and go above.
            highlightFollowsCurrentItem: false
            currentIndex: -1
            model: jobs

            onActiveFocusChanged: {
                if (!activeFocus && !details.visible && !reprinting.visible)
                    byKeys = true;
                if (activeFocus && currentIndex < 0 && count > 0)
                    currentIndex = Math.max(0, indexAt(width / 2, contentY + 1));
            }

            Keys.onPressed: {
                var steps = { };
                steps[Qt.Key_Down] = 1;
                steps[Qt.Key_Up] = -1;
                steps[Qt.Key_PageDown] = pageRows;
                steps[Qt.Key_PageUp] = -pageRows;
                steps[Qt.Key_Home] = -count;
                steps[Qt.Key_End] = count;
                if (count === 0)
                    return;
                if (steps[event.key] !== undefined)
                    choose(currentIndex + steps[event.key]);
                else if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) >= 0 && currentIndex >= 0)
                    page.show(currentIndex);
                else
                    return;
                byKeys = true;
                event.accepted = true;
            }

            delegate: JobRow {
                objectName: "row." + index
                name: "job." + index
                job: model.job
                highlighted: ListView.isCurrentItem && list.activeFocus && list.byKeys
                onClicked: {
                    list.byKeys = false;
                    list.currentIndex = index;
                    page.show(index);
                }
            }

            ScrollMark { flickable: list }
        }

        Column {
            anchors.centerIn: parent
            width: parent.width - 2 * Theme.margin
            visible: jobs.count === 0 && page.isRead
            spacing: 8

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 44
                height: 44
                name: "history"
                color: Theme.track
            }

            PlainText {
                objectName: "history.none"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: page.isAbsent ? qsTr("No jobs are known") : qsTr("No print jobs")
            }

            PlainText {
                width: parent.width
                visible: !page.isAbsent
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("What is printed appears here by itself")
                color: Theme.secondaryText
                font.pixelSize: Theme.smallSize
                wrapMode: Text.Wrap
            }
        }
    }

    JobDetails {
        id: details

        job: page.asked
        canReprint: !page.isAbsent
        onReprint: reprinting.open()
        onClosed: list.forceActiveFocus(Qt.OtherFocusReason)
    }

    ConfirmationDialog {
        id: reprinting

        title: qsTr("Print it again?")
        text: qsTr("%1 is sent to the printer as a new job.").arg(JobTexts.quoted(page.asked))
        confirmText: qsTr("Print again")
        destructive: false
        onConfirmed: {
            details.close();
            page.expect("reprint");
        }
    }

    ConfirmationDialog {
        id: clearing

        title: qsTr("Clear the history?")
        text: qsTr("All jobs that are finished go from the history, and with them what is kept to print them again. "
                   + "They cannot be brought back. Jobs that wait or are being printed stay.")
        confirmText: qsTr("Clear")
        onConfirmed: page.expect("clear")
    }
}
