// The jobs whose change is still to be told, in the order in which they changed. No bus, no event loop.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

#include <deque>

/**
 * A job is in it once, however often it changed: whoever is told reads how it is then.
 *
 * Two kinds. The daemon's own news is told in any case. What was found out by comparison, after the daemon
 * was away, is taken out when the job is read in the meantime: whoever reads the whole list after the first
 * of 10,000 notices is not told of the other jobs in that list. A job that is gone is in no list and stays.
 */
class PendingNotices
{
public:
    void add(const QString &guid);
    void addUnlessRead(const QString &guid);
    /// The job was read: its record as it is now was handed out.
    void noteRead(const QString &guid);

    /// Takes out all but the oldest \a count.
    void keepNext(int count);

    bool isEmpty() const { return m_kinds.isEmpty(); }
    /// Takes out the oldest. Must not be empty.
    QString takeNext();

private:
    enum class Kind { InAnyCase, UnlessRead };

    std::deque<QString> m_order; ///< may hold what was taken out of m_kinds
    QHash<QString, Kind> m_kinds;
};
