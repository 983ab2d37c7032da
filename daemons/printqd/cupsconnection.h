// One connection to a print scheduler, on which each request ends within a stated time.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <atomic>
#include <cups/cups.h>
#include <functional>
#include <memory>
#include <utility>

struct IppDeletion
{
    void operator()(ipp_t *message) const { ippDelete(message); }
};
using IppMessage = std::unique_ptr<ipp_t, IppDeletion>;

/// What became of a request.
struct CupsAnswer
{
    IppMessage message; ///< null when the scheduler was not reached, or did not answer in time
    explicit operator bool() const { return message != nullptr; }
    ipp_status_t status() const
    {
        return message ? ippGetStatusCode(message.get()) : IPP_STATUS_ERROR_INTERNAL;
    }
    bool isGood() const { return message && status() < IPP_STATUS_REDIRECTION_OTHER_SITE; }
    /// The scheduler's own words, for the log.
    QString reason() const;
};

/// A queue's address. A scheduler on this machine is spoken to by its domain socket, where it has one: so it
/// knows by which user.
struct CupsQueue
{
    explicit CupsQueue(const QString &uri);

    QByteArray uri; ///< as the scheduler knows the queue
    QByteArray schedulerUri; ///< all its queues
    QByteArray resource; ///< /printers/NAME
    QByteArray host; ///< or path of a socket
    int port = 0;
    http_encryption_t encryption = HTTP_ENCRYPTION_IF_REQUESTED;
    bool isValid = false;
};

/**
 * libcups gives up on a scheduler that does not answer after minutes, and connects again by itself; none of
 * its functions that do so is used. A connection is tried for connectMilliseconds. A request may wait
 * requestMilliseconds for the next byte; then it fails, and the connection is closed. None goes to another
 * connection than the present one: after the scheduler was started again, a job's number may be another
 * job's. Belongs to one thread; only giveUp() is for all.
 */
class CupsConnection
{
public:
    static constexpr int connectMilliseconds = 1000;
    static constexpr int requestMilliseconds = 2000;
    /// A scheduler that is up answers sooner.
    static constexpr int slowMilliseconds = 250;
    /// A document that travels may take so long as a whole, as long as it moves.
    static constexpr int documentMilliseconds = 60000;

    /// Takes or gives a document's bytes. False, or less than nothing, gives up.
    using Sink = std::function<bool(const char *bytes, qint64 size)>;
    using Source = std::function<qint64(char *bytes, qint64 room)>;

    explicit CupsConnection(const CupsQueue &queue);
    ~CupsConnection();
    CupsConnection(const CupsConnection &) = delete;
    CupsConnection &operator=(const CupsConnection &) = delete;

    const CupsQueue &queue() const { return m_queue; }
    /// A message for the queue, with what every message begins with.
    IppMessage request(ipp_op_t operation) const;
    /// The same for all queues.
    IppMessage requestForScheduler(ipp_op_t operation) const;
    IppMessage requestForJob(ipp_op_t operation, int number) const;

    /// Connects, where the scheduler has closed the connection or there is none yet. False when it is not
    /// reached.
    bool open();
    void close();
    /// For waiting until the scheduler closes the connection; negative when there is none.
    int descriptor() const { return m_connection ? httpGetFd(m_connection.get()) : -1; }
    /// Grows with each connection.
    int generation() const { return m_generation; }
    /// After a failed request: the scheduler wanted to know by which user, which it is told from now on.
    bool isWorthAnotherTry() const { return m_isWorthAnotherTry; }

    CupsAnswer send(const IppMessage &request);
    CupsAnswer sendDocument(const IppMessage &request, const Source &source);
    CupsAnswer receiveDocument(const IppMessage &request, const Sink &sink);

    /// Whether a request was not answered in time, or hardly, since this was asked last. What such a
    /// scheduler has not read yet it may still do, also when the connection is closed long since.
    bool takeSlowness() { return std::exchange(m_isSlow, false); }
    /// Instead of requestMilliseconds.
    void setPatience(int milliseconds) { m_patience = milliseconds; }
    /// From now on all requests fail, also the one that is under way, at once. From any thread.
    void giveUp() { m_isGivenUp = true; }
    bool isGivenUp() const;

private:
    struct Closing
    {
        void operator()(http_t *connection) const { httpClose(connection); }
    };

    static int waitOn(http_t *connection, void *self);
    bool isStale() const;
    IppMessage requestFor(ipp_op_t operation, const QByteArray &uri) const;
    CupsAnswer exchange(const IppMessage &request, const Source &source, const Sink &sink);
    /// A request goes out whole, or its document cannot be read, or the scheduler does not take it.
    enum class Posted { Whole, Unreadable, Untaken };
    Posted post(const IppMessage &request, const Source &source);
    Posted postDocument(const Source &source);
    CupsAnswer response(const Sink &sink);
    http_status_t status();
    void noteSlowness();
    CupsAnswer authenticate();

    const CupsQueue m_queue;
    std::unique_ptr<http_t, Closing> m_connection;
    QByteArray m_authorization;
    QElapsedTimer m_sinceProgress;
    QElapsedTimer m_sinceBegin;
    int m_patience = requestMilliseconds;
    int m_generation = 0;
    bool m_isWorthAnotherTry = false;
    bool m_isSlow = false;
    std::atomic<bool> m_isGivenUp{false};
};
