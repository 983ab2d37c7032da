// The list of jobs that QML shows, made from the map of records.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QVariantList>

#include <vector>

class JobTime;

using JobMap = QMap<QString, PrintJobMetaData>;

/**
 * Renders records newest first. What it made of a record it keeps, so that a rebuild after one job changed
 * renders one record; a changed time zone or locale renders all of them anew.
 */
class JobList
{
public:
    explicit JobList(bool is24HourClock);

    QVariantList rebuilt(const JobMap &jobs);

private:
    struct Row
    {
        PrintJobMetaData job; ///< what was rendered; its GUID is the key in the map
        QVariantMap rendered;
    };

    void renewFrom(size_t place, JobMap::const_iterator job, JobMap::const_iterator end, const JobTime &time);
    /// Whether the row keeps its time.
    static bool renew(Row &row, JobMap::const_iterator job, const JobTime &time);
    static void render(Row &row, JobMap::const_iterator job, const JobTime &time);
    void sort();
    QVariantList inOrder() const;

    const bool m_is24HourClock;
    QByteArray m_circumstances; ///< of the texts of times in m_rows
    std::vector<Row> m_rows; ///< in the order of the map
    std::vector<quint32> m_order; ///< places in m_rows, newest first
};
