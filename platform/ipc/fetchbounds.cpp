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
    const int askedBefore = m_asked.size();
    m_asked.insert(guid);
    return m_asked.size() > askedBefore;
}

void FetchBounds::beginWith(const QString &guid)
{
    end();
    m_isUnderWay = true;
    m_asked.insert(guid);
    m_returnToEventLoop.post(Qt::HighEventPriority);
}

void FetchBounds::end()
{
    m_isUnderWay = false;
    m_asked.clear();
}
