// PrintQueueProbe: whether the print queue answers, found out without waiting for it.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

class QDBusMessage;

/**
 * Asks the print queue daemon for its list of jobs, as the back end does, which would wait for it. A daemon
 * that hangs is asked again when a question has timed out, until it answers or is found not to be there. Like
 * the back end's, a question starts a daemon that the bus can start.
 */
class PrintQueueProbe : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(int jobCount READ jobCount NOTIFY stateChanged)
    Q_PROPERTY(int patience READ patience WRITE setPatience)

public:
    enum State {
        Unknown, ///< never asked
        Asking,
        Silent, ///< still asking, for longer than the patience
        Answering,
        Failing, ///< answers, but with an error
        Absent
    };
    Q_ENUM(State)

    explicit PrintQueueProbe(QObject *parent = nullptr);

    State state() const;
    /// How many jobs the last answer named; 0 where there is none.
    int jobCount() const;
    /// In milliseconds.
    int patience() const;
    void setPatience(int milliseconds);

    /// Does nothing while it is asking.
    Q_INVOKABLE void ask();

Q_SIGNALS:
    void stateChanged();

private:
    bool isAsking() const;
    void send();
    void answered(const QDBusMessage &reply);
    void setState(State state);

    QTimer m_patience;
    QTimer m_pause;
    int m_jobCount = 0;
    State m_state = Unknown;
};
