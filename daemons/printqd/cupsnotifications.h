// Hears from the scheduler, by the notifier program that it runs for this daemon, that jobs have changed.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QString>

#include <memory>

/// One event, as the notifier tells it: a hint that it is worth to look, and nothing else.
struct CupsEvent
{
    int subscription = 0;
    int sequence = 0;
    int job = 0;
    QByteArray token; ///< in Base64; see CupsNotifications::token()

    /// Reads "SUBSCRIPTION SEQUENCE JOB TOKEN", decimal numbers and a word, a space between each. False for
    /// anything else.
    static bool read(const QByteArray &datagram, CupsEvent *event);
};

/// A datagram socket with a name in the file system.
Q_DECLARE_METATYPE(CupsEvent)

class CupsNotifications : public QObject
{
    Q_OBJECT

public:
    explicit CupsNotifications(QObject *parent = nullptr);
    ~CupsNotifications() override;

    /**
     * Listens at \a path, in place of what a daemon left there that was killed. The scheduler's notifiers run
     * as a user of their own, so everybody may write to it; what does not carry token() is dropped unseen.
     * False when there can be no socket; the path of one has 107 bytes at most.
     */
    bool listen(const QString &path);
    /// Takes what has come, also outside the event loop: where it piles up, the scheduler drops the rest.
    void receive();
    bool isListening() const { return m_socket >= 0; }
    /// What the scheduler has to be told as the recipient.
    QByteArray recipient() const;
    /**
     * A word that the scheduler was told; its notifiers get it in Base64. It keeps out what was sent by
     * mistake, by a notifier of an earlier daemon for instance, and programs that do not see others. Who
     * reads the command line of the notifier, where the scheduler puts it, can have the jobs looked at more
     * often, which is all that an event does; that is no more than asking the scheduler directly does to it.
     */
    const QByteArray &token() const { return m_token; }

Q_SIGNALS:
    void received(const CupsEvent &event);

private:
    void close();

    QByteArray m_path;
    QByteArray m_token;
    std::unique_ptr<QSocketNotifier> m_notifier;
    int m_socket = -1;
};
