// What a ZBIPC keeps.
#pragma once

#include "fetchbounds.h"
#include "jobdaemon.h"
#include "jobrecords.h"
#include "pendingnotices.h"
#include "postedcall.h"
#include "zbipc.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QSet>
#include <QtDBus/QDBusPendingCallWatcher>

#include <memory>
#include <optional>

struct ZBIPC::Private
{
    explicit Private(ZBIPC *ipc);

    PrintJobMetaData jobInfo(const QString &guid);

private:
    void fetch();
    PrintJobMetaData singleJob(const QString &guid);
    void fail();

    void daemonAppeared();
    void daemonVanished();
    void jobsChanged(const QStringList &guids);

    /// To be asked from the event loop only: ZBPrinterHistory connects after its first fetch, and is to be
    /// told of the news that came during it.
    bool isListenedTo() const;
    /// Gives the memory back: whoever has gone must not be kept up to date. A new reader asks for everything.
    void forget();

    // The look at what changed while the daemon was away. It waits for nothing, and leaves the records alone:
    // they are what the readers know, until the readers ask.
    void look();
    void waitFor(const QDBusPendingCall &call, void (Private::*answered)(const QDBusMessage &));
    void changesCame(const QDBusMessage &reply);
    void jobListCame(const QDBusMessage &reply);
    void endLook();
    void note(const QStringList &guids);

    void tellNext();
    void goOnTelling();

    ZBIPC *const q;
    JobDaemonListener listener;
    FetchBounds bounds;
    int readInFetch = 0; ///< of the records

    /// As of the last fetch. Of a daemon that knows single jobs only, the GUIDs that were read.
    JobRecords records;
    bool daemonKnowsSingleJobsOnly = false;
    bool hasFetchFailed = false;

    /// Whether readers may not know what the daemon knows, and were not told so.
    bool isBehind = false;
    /// One failed fetch is followed by a look, a second one in a row is not: that would go on without end.
    bool mayLookAfterFailure = true;
    PostedCall looking;
    std::optional<JobUpdate> lookUpdate;
    std::unique_ptr<QDBusPendingCallWatcher> lookCall;
    QElapsedTimer sinceQuestion; ///< of the look

    PendingNotices notices;
    quint64 reads = 0; ///< how often a job was asked for
    bool isTellingHeld = false; ///< until a look was answered
    QSet<QString> toldAgain; ///< since the last time that somebody read
    PostedCall telling;
};
