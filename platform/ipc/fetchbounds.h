// Where one fetch of records ends and the next begins.
#pragma once

#include "postedcall.h"

#include <QtCore/QHash>
#include <QtCore/QString>

/**
 * Nobody says when a fetch begins: one asks for job after job. A fetch ends when one of its jobs is asked for
 * again, when the program returns to an event loop, a nested one as well, and when end() is called, since
 * there is news.
 */
class FetchBounds
{
public:
    explicit FetchBounds(QObject *parent);

    /// Notes that \a guid is asked for. Whether the fetch that is under way goes on with it.
    bool goesOnWith(const QString &guid);
    void beginWith(const QString &guid);
    void end();
    /// Ends it and gives the memory back.
    void forget();

private:
    bool m_isUnderWay = false;
    quint64 m_number = 0; ///< of the fetch that is under way, or of the last one
    int m_askedCount = 0;
    QHash<QString, quint64> m_askedIn; ///< number of the fetch in which a job was asked for last
    PostedCall m_returnToEventLoop;
};
