// The scheduler tells times in seconds and options as whatever type they came in.
#include "cupsjobs.h"

#include <QtCore/QUuid>

#include <algorithm>
#include <cstring>

namespace {

// What belongs to one job, or is the scheduler's own; by the beginning of its name.
constexpr const char *const ownBeginnings[] = {
    "attributes-",  "compression",   "copies",        "date-time-",  "document-",   "errors-count",
    "job-actual",   "job-cancel",    "job-detailed",  "job-hold",    "job-id",      "job-impressions",
    "job-k-",       "job-media-",    "job-message",   "job-more",    "job-name",    "job-origin",
    "job-password", "job-pages",     "job-preserved", "job-printer", "job-process", "job-retain",
    "job-state",    "job-uri",       "job-uuid",      "my-",         "notify-",     "number-of-",
    "original-",    "output-device", "print-",        "printer-",    "requesting-", "status-",
    "time-at-",     "zb-",
};
// Of those that begin so, what is an option nevertheless.
constexpr const char *const optionBeginnings[] = {
    "print-color", "print-content", "print-quality", "print-rendering", "print-scaling", "printer-resolution",
};

template <typename Beginnings> bool beginsLike(const char *name, const Beginnings &beginnings)
{
    return std::any_of(std::begin(beginnings), std::end(beginnings), [name](const char *beginning) {
        return std::strncmp(name, beginning, std::strlen(beginning)) == 0;
    });
}

void ask(ipp_t *request, const QVector<const char *> &names)
{
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes",
                  names.size(), nullptr, names.constData());
}

QString textOf(ipp_attribute_t *attribute)
{
    return QString::fromUtf8(ippGetString(attribute, 0, nullptr));
}

QString uuidOf(ipp_attribute_t *attribute)
{
    const QString urn = textOf(attribute);
    const QLatin1String scheme("urn:uuid:");
    return urn.startsWith(scheme) ? urn.mid(scheme.size()) : urn;
}

// "Custom.-3", "-3" or an integer.
int adjustmentOf(ipp_attribute_t *attribute)
{
    if (ippGetValueTag(attribute) == IPP_TAG_INTEGER)
        return ippGetInteger(attribute, 0);
    QString text = textOf(attribute);
    const QLatin1String custom("Custom.");
    if (text.startsWith(custom))
        text.remove(0, custom.size());
    return text.toInt();
}

TransportJob::State stateOf(ipp_jstate_t state)
{
    switch (state) {
    case IPP_JSTATE_PENDING:
        return TransportJob::State::Waiting;
    case IPP_JSTATE_HELD:
        return TransportJob::State::Held;
    case IPP_JSTATE_PROCESSING:
        return TransportJob::State::Printing;
    case IPP_JSTATE_STOPPED:
        return TransportJob::State::Stopped;
    case IPP_JSTATE_CANCELED:
        return TransportJob::State::Cancelled;
    case IPP_JSTATE_ABORTED:
        return TransportJob::State::Failed;
    case IPP_JSTATE_COMPLETED:
        return TransportJob::State::Printed;
    }
    return TransportJob::State::Waiting;
}

// Anybody may give a job such an attribute; what is no token is none of ours.
QString guidOf(ipp_attribute_t *attribute)
{
    const QString guid = textOf(attribute);
    return QUuid(guid).toString(QUuid::WithoutBraces) == guid.toLower() ? guid : QString();
}

bool isNothing(ipp_attribute_t *attribute, const char *nothing)
{
    return ippGetCount(attribute) == 1 && textOf(attribute) == QLatin1String(nothing);
}

void take(ipp_attribute_t *attribute, CupsJob *job, bool *isHeldByWish)
{
    const char *const name = ippGetName(attribute);
    const auto is = [name](const char *other) { return std::strcmp(name, other) == 0; };
    if (is("job-id"))
        job->job.number = ippGetInteger(attribute, 0);
    else if (is("job-uuid"))
        job->job.uuid = uuidOf(attribute);
    else if (is("job-printer-uri"))
        job->queueUri = ippGetString(attribute, 0, nullptr);
    else if (is("job-name"))
        job->job.name = textOf(attribute);
    else if (is("job-state"))
        job->state = static_cast<ipp_jstate_t>(ippGetInteger(attribute, 0));
    else if (is("job-state-reasons"))
        job->isAbandoned = isNothing(attribute, "none");
    else if (is("job-hold-until"))
        *isHeldByWish = !isNothing(attribute, "no-hold");
    else if (is("copies"))
        job->job.copies = std::max(1, ippGetInteger(attribute, 0));
    else if (is("number-of-documents"))
        job->documentsThere = ippGetInteger(attribute, 0);
    else if (is("job-k-octets"))
        job->hadDocument = job->hadDocument || ippGetInteger(attribute, 0) > 0;
    else if (is("time-at-creation"))
        job->creationSeconds = ippGetInteger(attribute, 0);
    else if (is(CupsJobs::guidAttribute))
        job->job.guid = guidOf(attribute);
    else if (is("R1TensionAdjust"))
        job->job.tension1 = adjustmentOf(attribute);
    else if (is("R2TensionAdjust"))
        job->job.tension2 = adjustmentOf(attribute);
}

} // namespace

const char *const CupsJobs::guidAttribute = "zb-order";

bool operator==(const TransportJob &one, const TransportJob &other)
{
    const auto members = [](const TransportJob &job) {
        return std::tie(job.uuid, job.number, job.guid, job.name, job.copies, job.documents, job.tension1,
                        job.tension2, job.state, job.createdMilliseconds);
    };
    return members(one) == members(other);
}

void CupsJobs::askForDetails(ipp_t *request)
{
    ask(request,
        {"job-id", "job-uuid", "job-printer-uri", "job-name", "job-state", "job-state-reasons",
         "job-hold-until", "copies", "number-of-documents", "job-k-octets", "time-at-creation", guidAttribute,
         "R1TensionAdjust", "R2TensionAdjust"});
}

void CupsJobs::askForStates(ipp_t *request)
{
    ask(request, {"job-id", "job-state", "time-at-creation"});
}

QVector<CupsJob> CupsJobs::jobsIn(ipp_t *answer)
{
    QVector<CupsJob> jobs;
    QVector<bool> areHeldByWish;
    bool isInJob = false;
    for (ipp_attribute_t *attribute = ippFirstAttribute(answer); attribute;
         attribute = ippNextAttribute(answer)) {
        // Between two jobs stands an attribute without a name.
        if (ippGetGroupTag(attribute) != IPP_TAG_JOB || !ippGetName(attribute)) {
            isInJob = false;
            continue;
        }
        if (!isInJob)
            jobs.append(CupsJob());
        isInJob = true;
        areHeldByWish.resize(jobs.size());
        take(attribute, &jobs.last(), &areHeldByWish.last());
    }
    for (int index = 0; index < jobs.size(); ++index) {
        CupsJob &job = jobs[index];
        job.isAbandoned = job.isAbandoned && job.state == IPP_JSTATE_HELD && !areHeldByWish.at(index);
        job.job.documents = std::max(1, job.documentsThere);
        job.hadDocument = job.hadDocument || job.documentsThere > 0;
        // Until its document is there the scheduler holds it, which nobody asked for.
        job.job.state = job.state == IPP_JSTATE_HELD && !job.hadDocument ? TransportJob::State::Waiting
                                                                         : stateOf(job.state);
        if (job.isAbandoned)
            job.job.state = TransportJob::State::Failed;
    }
    jobs.erase(
        std::remove_if(jobs.begin(), jobs.end(), [](const CupsJob &job) { return job.job.number <= 0; }),
        jobs.end());
    std::sort(jobs.begin(), jobs.end(),
              [](const CupsJob &one, const CupsJob &other) { return one.job.number < other.job.number; });
    return jobs;
}

QString CupsJobs::uuidIn(ipp_t *answer)
{
    ipp_attribute_t *const attribute = ippFindAttribute(answer, "job-uuid", IPP_TAG_URI);
    return attribute ? uuidOf(attribute) : QString();
}

void CupsJobs::copyOptions(ipp_t *original, ipp_t *order)
{
    for (ipp_attribute_t *attribute = ippFirstAttribute(original); attribute;
         attribute = ippNextAttribute(original)) {
        const char *const name = ippGetName(attribute);
        if (!name || ippGetGroupTag(attribute) != IPP_TAG_JOB
            || (beginsLike(name, ownBeginnings) && !beginsLike(name, optionBeginnings)))
            continue;
        ipp_attribute_t *copy = ippCopyAttribute(order, attribute, 0);
        if (copy)
            ippSetGroupTag(order, &copy, IPP_TAG_JOB);
    }
}

qint64 CupsJobs::creationTime(qint64 creationSeconds, qint64 now, qint64 previous)
{
    constexpr qint64 justNow = 2000;
    constexpr qint64 sameTime = 3000;
    const qint64 second = creationSeconds * 1000;
    const qint64 time = now >= second && now - second <= justNow ? now : second;
    return previous >= time && previous - time <= sameTime ? previous + 1 : time;
}
