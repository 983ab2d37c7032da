// The time of a job as text: the same as QDateTime makes of it, in a hundredth of the time.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// Milliseconds since the epoch of a job's time stamp; 0 where it is no number.
qint64 jobMilliseconds(const QString &timeStamp);

/**
 * Texts of local times: "03/05/2021 14:07", or with am and pm behind "03/05/2021 14:07pm". Digits and markers
 * are those of the system's locale. The time zone is looked at when the object is made, once for all texts:
 * QDateTime looks for each, which is nine tenths of what a list of jobs costs where TZ is not set.
 */
class JobTime
{
public:
    explicit JobTime(bool is24HourClock);

    QString text(qint64 milliseconds) const;

    /// What the texts hang on beside the time: two objects that say the same here write the same texts.
    QByteArray circumstances() const;

private:
    QString textOfQt(qint64 milliseconds) const;

    QString m_format;
    QString m_morning;
    QString m_afternoon;
    ushort m_zero = '0';
    bool m_isPlain = false;
};
