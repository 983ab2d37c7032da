// Remembers who was asked for.
#include "fetchbounds.h"

FetchBounds::FetchBounds(QObject *parent)
    : m_returnToEventLoop(parent, [this] { end(); })
{
}

bool FetchBounds::goesOnWith(const QString &guid)
{
    if (!m_isUnderWay)
        return false;
    quint64 &askedIn = m_askedIn[guid];
    if (askedIn == m_number)
        return false;
    askedIn = m_number;
    ++m_askedCount;
    return true;
}

void FetchBounds::beginWith(const QString &guid)
{
    end();
    // The jobs are mostly those of the fetch before, so they stay; those that are gone do not for ever.
    if (m_askedIn.size() > 2 * m_askedCount)
        m_askedIn.clear();
    m_askedCount = 1;
    m_isUnderWay = true;
    m_askedIn[guid] = ++m_number;
    m_returnToEventLoop.post(Qt::HighEventPriority);
}

void FetchBounds::end()
{
    m_isUnderWay = false;
}

void FetchBounds::forget()
{
    end();
    m_askedIn = {};
    m_askedCount = 0;
}
