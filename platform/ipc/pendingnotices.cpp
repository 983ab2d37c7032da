// Keeps order and kind.
#include "pendingnotices.h"

#include <utility>

void PendingNotices::add(const QString &guid)
{
    if (!m_kinds.contains(guid))
        m_order.push_back(guid);
    m_kinds.insert(guid, Kind::InAnyCase);
}

void PendingNotices::addUnlessRead(const QString &guid)
{
    if (m_kinds.contains(guid))
        return;
    m_order.push_back(guid);
    m_kinds.insert(guid, Kind::UnlessRead);
}

void PendingNotices::noteRead(const QString &guid)
{
    const auto found = m_kinds.find(guid);
    if (found == m_kinds.end() || *found == Kind::InAnyCase)
        return;
    m_kinds.erase(found);
    if (m_kinds.isEmpty())
        m_order.clear();
}

void PendingNotices::keepNext(int count)
{
    if (m_kinds.size() <= count)
        return;
    PendingNotices kept;
    while (kept.m_kinds.size() < count) {
        const QString guid = m_order.front();
        m_order.pop_front();
        const auto kind = m_kinds.constFind(guid);
        if (kind == m_kinds.constEnd() || kept.m_kinds.contains(guid))
            continue;
        kept.m_order.push_back(guid);
        kept.m_kinds.insert(guid, *kind);
    }
    *this = std::move(kept);
}

QString PendingNotices::takeNext()
{
    QString guid;
    do {
        guid = m_order.front();
        m_order.pop_front();
    } while (m_kinds.remove(guid) == 0);
    if (m_kinds.isEmpty())
        m_order.clear();
    return guid;
}
