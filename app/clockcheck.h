// ClockCheck: watches this device's clock after an attempt to set it, since the tool that sets it reports
// nothing.
#pragma once

#include "clockoutcome.h"

#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

class ClockCheck : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(int patience MEMBER m_patience)

public:
    enum State {
        Idle, ///< nothing has been set
        Watching, ///< the clock does not yet show the time that was set
        Set,
        OnlyDateSet, ///< the date was set, and with it the time to midnight, but not the time
        NotSet ///< the clock has not taken the time within the patience
    };
    Q_ENUM(State)

    explicit ClockCheck(QObject *parent = nullptr);

    State state() const;

    /// The clock is about to be set to this local time; call before setting it. Month and day count from 1.
    /// In parts, since a date of JavaScript cannot hold the hour that summer time leaves out.
    Q_INVOKABLE void begin(int year, int month, int day, int hour, int minute);
    /// Forgets what became of the last attempt.
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void stateChanged();

private:
    void look();
    void setState(State state);

    QDate m_date;
    QTime m_time;
    QElapsedTimer m_elapsed; // of the monotonic clock, which no setting moves
    QTimer m_timer;
    int m_patience = 5000;
    State m_state = Idle;
};
