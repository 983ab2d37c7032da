// The records of the jobs that are known, and how the daemon's answers bring them up to date. No bus, no
// clock.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

/// What getChangedJobs answers, see dbus/com.corvanta.printqd.xml.
struct JobChanges
{
    QString epoch;
    quint64 revision = 0;
    bool complete = false;
    std::vector<PrintJobMetaData> jobs;
    QStringList removed;
    bool more = false;
};

/// What is known of the jobs, by GUID, and up to when. Without an epoch only the GUIDs mean anything.
struct JobRecords
{
    QHash<QString, PrintJobMetaData> jobs;
    QString epoch;
    quint64 revision = 0;

    /// Empties every record and forgets the epoch: the GUIDs stay, so that a later look finds what became of
    /// them.
    void blank();
};

/// The GUIDs of jobs that are in one of the two only, or whose records differ.
QStringList differingJobs(const JobRecords &before, const JobRecords &after);

/**
 * Brings records up to date, one answer after the other. Each question is for what changed since epoch() and
 * revision().
 */
class JobUpdate
{
public:
    enum class Step {
        AskAgain, ///< there is more, or the answer does not continue what is known
        Done,
        Failed, ///< the answers make no sense
    };

    explicit JobUpdate(JobRecords &&known);

    QString epoch() const { return m_records.epoch; }
    quint64 revision() const { return m_records.revision; }
    Step take(JobChanges &&answer);

    /// The GUIDs of jobs that came, changed or went, after Done.
    QStringList changed() const;
    /// The records, after Done.
    JobRecords takeRecords();
    /// What was known, blank, where there is no getting to Done.
    JobRecords takeBlank();

private:
    bool startAnew();

    JobRecords m_records;
    JobRecords m_forgotten; ///< what was known when the first answer came that starts from nothing
    QStringList m_changed; ///< by the answers before that
    int m_answers = 0;
    int m_beginnings = 0;
};
