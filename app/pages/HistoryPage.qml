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
    /// What is wrong with the print queue; empty where nothing is known to be.
    readonly property string trouble: {
        if (isAbsent)
            return qsTr("The print queue is not running.");
        if (probe.state === PrintQueueProbe.Silent)
            return qsTr("The print queue does not answer.");
        return probe.state === PrintQueueProbe.Failing || probe.state === PrintQueueProbe.Asking && wasFailing
               ? qsTr("The print queue cannot list its jobs.") : "";
    }
    /// Whether the print queue says itself that there are none.
    readonly property bool isEmpty: isRead && !isAbsent && jobs.count === 0 && probe.jobCount === 0
                                    && probe.state === PrintQueueProbe.Answering
    /// From an order until it shows, or is said not to.
    readonly property bool isBusy: order !== null || impatience.running
    /// Why nothing can be ordered; empty where it can.
    readonly property string hindrance: isAbsent || probe.state === PrintQueueProbe.Silent ? trouble
                                        : isBusy ? qsTr("The last order is not done yet.") : ""

    /// What was done last, and whether it did not work.
    property string report
    property bool isComplaint
    /// The job that a question is about.
    property var asked: ({})
    /// What is to be ordered when the queue is known to answer, "reprint" or "clear", and the job; or nothing.
    property var order: null
    /// What was ordered and did not show yet, and the job.
    property string expected
    property var ordered: ({})
    /// The jobs that looked like the one to come when it was ordered: a list that could not be read for a moment brings
    /// them again.
    property var alike: []
    /// How many jobs there were when they were to be cleared, and whether some left the list since. They also do when
    /// it could not be read.
    property int countBefore
    property bool isThinned
    /// Whether the print queue could not list its jobs when it last answered; that is not taken back by asking again.
    property bool wasFailing
    /// All in milliseconds: how long a change is waited for before the page says that there is none, and until it is
    /// no longer taken for what was ordered; how long the print queue may take to answer; how long a report stays;
    /// after how long a print queue that could not list its jobs is asked again.
    property int patience: 5000
    property int memory: 60000
    property alias queuePatience: probe.patience
    property int reportTime: 10000
    property int retryTime: 5000

    function say(text, complaint) {
        isComplaint = complaint;
        report = text;
        reportEnd.restart();
    }

    function tell(text) {
        say(text, false);
    }

    function complain(text) {
        say(text, true);
    }

    function forgetReport() {
        isComplaint = false;
        report = "";
    }

    /// The back end would wait for a print queue that hangs, which is therefore asked first whether it answers.
    function place(what) {
        order = { what: what, job: asked };
        tell(qsTr("Asking the print queue…"));
        probe.ask();
        decide();
    }

    function decide() {
        if (order === null)
            return;
        if (probe.state === PrintQueueProbe.Answering || probe.state === PrintQueueProbe.Failing)
            giving.restart();
        else if (probe.state === PrintQueueProbe.Absent)
            refuse(qsTr("The print queue is not running; nothing was ordered"));
        else if (probe.state === PrintQueueProbe.Silent)
            refuse(qsTr("The print queue does not answer; nothing was ordered"));
    }

    function refuse(text) {
        giving.stop();
        order = null;
        complain(text);
    }

    /// The back end does not say what becomes of it: the list does.
    function give() {
        if (order === null)
            return;
        var begin = Date.now();
        var what = order.what;
        ordered = order.job;
        expected = what;
        alike = what === "reprint" ? guidsAlike() : [];
        countBefore = probe.state === PrintQueueProbe.Answering ? probe.jobCount : jobs.count;
        isThinned = false;
        impatience.restart();
        oblivion.restart();
        order = null;
        if (what === "reprint")
            ZBPrinterHistory.reprintPrintJob(ordered.GUID);
        else
            ZBPrinterHistory.cancelPrintJob();
        if (expected === "" || Date.now() - begin <= patience)
            return;
        if (what === "reprint")
            disappoint(qsTr("The print queue does not answer; it may still print later"));
        else
            waitLonger();
        probe.ask();
    }

    function guidsAlike() {
        var guids = [];
        for (var row = 0; row < jobs.count; ++row) {
            var job = jobs.jobAt(row);
            if (isOrdered(job))
                guids.push(job.GUID);
        }
        return guids;
    }

    /// A long history takes long to be cleared. What goes then is still taken for that.
    function waitLonger() {
        impatience.stop();
        complain(qsTr("The print queue takes long; it may still clear"));
    }

    /// That jobs left the list does not say that they were cleared: the print queue does.
    function judgeClearing() {
        if (expected === "clear" && isThinned && probe.state === PrintQueueProbe.Answering
                && probe.jobCount < countBefore)
            fulfilled(probe.jobCount === 0 ? qsTr("The history was cleared") : qsTr("The finished jobs were cleared"));
    }

    function fulfilled(text) {
        expected = "";
        impatience.stop();
        tell(text);
    }

    /// A job that was to be printed again may come yet; what goes later need not have been cleared.
    function disappoint(text) {
        if (expected === "clear")
            expected = "";
        impatience.stop();
        complain(text);
    }

    function isOrdered(job) {
        return job.jobName === ordered.jobName && (job.eventType === 3 || job.appName === 2);
    }

    function askForList() {
        if (visible && jobs.count === 0)
            probe.ask();
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
            forgetReport();
        }
        askForList();
    }
    Component.onCompleted: askForList()

    ServicePresence {
        id: queue

        service: "com.corvanta.printqd"
        onStateChanged: if (state === ServicePresence.Present) page.askForList()
    }

    PrintQueueProbe {
        id: probe

        onStateChanged: {
            if (state !== PrintQueueProbe.Asking)
                page.wasFailing = state === PrintQueueProbe.Failing;
            page.decide();
            page.judgeClearing();
        }
    }

    ZBPrintJobModel {
        id: jobs

        onRowsInserted: {
            if (page.expected !== "reprint")
                return;
            for (var row = first; row <= last; ++row) {
                var job = jobAt(row);
                if (page.isOrdered(job) && page.alike.indexOf(job.GUID) < 0) {
                    page.fulfilled(qsTr("%1 was sent to the printer again").arg(JobTexts.quoted(page.ordered)));
                    return;
                }
            }
        }
        onRowsRemoved: {
            if (page.expected !== "clear")
                return;
            page.isThinned = true;
            probe.ask();
        }
        onCountChanged: page.askForList()
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
                 && (probe.state === PrintQueueProbe.Answering || probe.state === PrintQueueProbe.Absent)
        onTriggered: jobs.history = ZBPrinterHistory
    }

    Timer {
        id: giving

        interval: 20
        onTriggered: page.give()
    }

    Timer {
        interval: page.retryTime
        running: page.visible && probe.state === PrintQueueProbe.Failing
        onTriggered: probe.ask()
    }

    Timer {
        id: reportEnd

        interval: page.reportTime
        onTriggered: page.forgetReport()
    }

    Timer {
        id: oblivion

        interval: page.memory
        onTriggered: page.expected = ""
    }

    Timer {
        id: impatience

        interval: page.patience
        onTriggered: {
            if (page.expected === "reprint")
                page.disappoint(qsTr("%1 could not be printed again. Its document may no longer be kept.")
                                .arg(JobTexts.quoted(page.ordered)));
            else if (page.expected === "clear" && page.isThinned && probe.state !== PrintQueueProbe.Answering)
                page.waitLonger();
            else if (page.expected === "clear")
                page.disappoint(qsTr("Nothing was cleared. Jobs that are not finished stay."));
        }
    }

    PageHeading {
        id: heading

        action: PushButton {
            id: clearButton

            objectName: "history.clear"
            text: qsTr("Clear…")
            plain: true
            destructive: true
            // It keeps the focus when there is nothing left to be cleared.
            resting: jobs.count === 0 || page.hindrance !== ""
            onClicked: if (!resting) clearing.open()
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
              : !page.isRead ? (page.trouble === "" ? qsTr("Reading…") : "")
              : jobs.count === 0 ? ""
              : jobs.count === 1 ? qsTr("1 job") : qsTr("%1 jobs, newest first").arg(jobs.count)
        color: page.isComplaint ? Theme.warning : Theme.secondaryText
        font.pixelSize: Theme.smallSize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    WarningBanner {
        id: banner

        objectName: "history.trouble"
        anchors.top: reportText.bottom
        anchors.topMargin: 6
        x: Theme.margin
        width: parent.width - 2 * x
        height: visible ? implicitHeight : 0
        visible: page.trouble !== ""
        text: jobs.count > 0 ? page.trouble + " " + qsTr("The jobs are those that were known last.") : page.trouble
    }

    Rectangle {
        anchors.top: banner.bottom
        anchors.topMargin: banner.visible ? 12 : 0
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
            visible: jobs.count === 0
                     && (page.trouble !== "" || page.isRead && probe.state === PrintQueueProbe.Answering)
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
                text: page.isEmpty ? qsTr("No print jobs") : qsTr("No jobs are known")
            }

            PlainText {
                width: parent.width
                visible: page.isEmpty
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
        hindrance: page.hindrance
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
            page.place("reprint");
        }
    }

    ConfirmationDialog {
        id: clearing

        title: qsTr("Clear the history?")
        text: qsTr("All jobs that are finished go from the history, and with them what is kept to print them again. "
                   + "They cannot be brought back. Jobs that wait or are being printed stay.")
        confirmText: qsTr("Clear")
        onConfirmed: {
            clearButton.forceActiveFocus();
            if (byKey)
                clearButton.focusReason = Qt.TabFocusReason;
            page.place("clear");
        }
    }
}
