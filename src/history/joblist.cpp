// Renders what changed, and sorts all.
#include "joblist.h"

#include "jobrow.h"
#include "jobtime.h"

#include <algorithm>
#include <iterator>
#include <utility>

JobList::JobList(bool is24HourClock)
    : m_is24HourClock(is24HourClock)
{
}

QVariantList JobList::rebuilt(const JobMap &jobs)
{
    const JobTime time(m_is24HourClock);
    const QByteArray circumstances = time.circumstances();
    if (circumstances != m_circumstances) {
        m_rows.clear();
        m_order.clear();
    }
    m_circumstances = circumstances;

    // Both are in the order of their keys. Rows stay where they are until the first that comes or goes.
    bool isOrderKept = true;
    size_t kept = 0;
    auto job = jobs.cbegin();
    for (; kept < m_rows.size() && job != jobs.cend() && isSameText(m_rows[kept].job.GUID, job.key());
         ++kept, ++job)
        isOrderKept &= renew(m_rows[kept], job, time);
    if (kept < m_rows.size() || job != jobs.cend()) {
        isOrderKept = false;
        renewFrom(kept, job, jobs.cend(), time);
    }
    if (!isOrderKept)
        sort();
    return inOrder();
}

void JobList::renewFrom(size_t place, JobMap::const_iterator job, JobMap::const_iterator end,
                        const JobTime &time)
{
    const auto firstMoved = m_rows.begin() + std::ptrdiff_t(place);
    std::vector<Row> known(std::make_move_iterator(firstMoved), std::make_move_iterator(m_rows.end()));
    m_rows.erase(firstMoved, m_rows.end());
    m_rows.reserve(place + size_t(std::distance(job, end)));
    auto old = known.begin();
    for (; job != end; ++job) {
        while (old != known.end() && old->job.GUID < job.key())
            ++old;
        if (old != known.end() && old->job.GUID == job.key()) {
            m_rows.push_back(std::move(*old++));
            renew(m_rows.back(), job, time);
        } else {
            m_rows.emplace_back();
            render(m_rows.back(), job, time);
        }
    }
}

bool JobList::renew(Row &row, JobMap::const_iterator job, const JobTime &time)
{
    if (isSameJob(*job, row.job))
        return true;
    const bool isSameTime = job->timeStamp == row.job.timeStamp;
    render(row, job, time);
    return isSameTime;
}

void JobList::render(Row &row, JobMap::const_iterator job, const JobTime &time)
{
    row.rendered = jobRow(*job, time.text(jobMilliseconds(job->timeStamp)));
    row.job = *job;
    if (job->GUID != job.key()) {
        // Rendered anew each time: no job in the map is like this, since those have copies.
        row.job.copyCount = 0;
        row.job.GUID = job.key();
    }
}

void JobList::sort()
{
    // Decorated, so that nothing is parsed or copied in comparisons. The order of equal times is what the
    // same sort makes of the records themselves.
    std::vector<std::pair<qint64, quint32>> decorated;
    decorated.reserve(m_rows.size());
    for (const Row &row : m_rows)
        decorated.emplace_back(jobMilliseconds(row.job.timeStamp), quint32(decorated.size()));
    std::sort(decorated.begin(), decorated.end(),
              [](const auto &a, const auto &b) { return a.first > b.first; });

    m_order.clear();
    m_order.shrink_to_fit();
    m_order.reserve(decorated.size());
    for (const auto &entry : decorated)
        m_order.push_back(entry.second);
}

QVariantList JobList::inOrder() const
{
    // Row and map lie in places of their own, and counting a map's references waits for it: both are called
    // for in time.
    constexpr size_t ahead = 12;
    const size_t count = m_order.size();
    QVariantList result;
    result.reserve(int(count));
    for (size_t i = 0; i < count; ++i) {
        if (i + 2 * ahead < count)
            __builtin_prefetch(&m_rows[m_order[i + 2 * ahead]].rendered);
        if (i + ahead < count)
            __builtin_prefetch(&*m_rows[m_order[i + ahead]].rendered.constEnd(), 1);
        result.append(m_rows[m_order[i]].rendered);
    }
    return result;
}
