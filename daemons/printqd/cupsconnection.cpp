// Posts IPP messages (RFC 8010) by libcups' HTTP functions.
#include "cupsconnection.h"

#include <QtCore/QThread>
#include <QtCore/QVarLengthArray>

#include <sys/socket.h>
#include <sys/stat.h>

namespace {

constexpr int pieceMilliseconds = 100;
constexpr int bufferSize = 65536;

// Nobody is there to be asked, and libcups would ask on the terminal.
const char *noPassword(const char *, http_t *, const char *, const char *, void *)
{
    return nullptr;
}

bool isThisMachine(const QByteArray &host)
{
    return host == "localhost" || host == "127.0.0.1" || host == "::1" || host == "[::1]";
}

bool isSocket(const QByteArray &path)
{
    struct stat status = {};
    return path.startsWith('/') && stat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

// Where programs of this machine find their scheduler: CUPS_SERVER, client.conf or libcups' own.
QByteArray schedulerOfThisMachine()
{
    return cupsServer();
}

} // namespace

QString CupsAnswer::reason() const
{
    if (!message)
        return QStringLiteral("the scheduler does not answer");
    ipp_attribute_t *const text = ippFindAttribute(message.get(), "status-message", IPP_TAG_TEXT);
    const char *const words = text ? ippGetString(text, 0, nullptr) : nullptr;
    return QString::fromUtf8(words ? words : ippErrorString(status()));
}

CupsQueue::CupsQueue(const QString &address)
    : uri(address.toUtf8())
{
    char scheme[32];
    char user[256];
    char name[1024];
    char path[1024];
    if (httpSeparateURI(HTTP_URI_CODING_ALL, uri.constData(), scheme, sizeof scheme, user, sizeof user, name,
                        sizeof name, &port, path, sizeof path)
        < HTTP_URI_STATUS_OK)
        return;
    const QByteArray kind = scheme;
    isValid = (kind == "ipp" || kind == "ipps") && path[0] == '/' && path[1] != 0;
    if (kind == "ipps")
        encryption = HTTP_ENCRYPTION_ALWAYS;
    host = name;
    resource = path;
    schedulerUri = uri.left(uri.indexOf('/', uri.indexOf("//") + 2) + 1);
    if (!isThisMachine(host))
        return;
    const QByteArray socket = schedulerOfThisMachine();
    if (socket.startsWith('/')
        && (qEnvironmentVariableIsSet("CUPS_SERVER") || (port == 631 && isSocket(socket)))) {
        host = socket;
        encryption = HTTP_ENCRYPTION_NEVER;
    }
}

CupsConnection::CupsConnection(const CupsQueue &queue)
    : m_queue(queue)
{
}

CupsConnection::~CupsConnection() = default;

IppMessage CupsConnection::request(ipp_op_t operation) const
{
    return requestFor(operation, m_queue.uri);
}

IppMessage CupsConnection::requestForScheduler(ipp_op_t operation) const
{
    return requestFor(operation, m_queue.schedulerUri);
}

IppMessage CupsConnection::requestFor(ipp_op_t operation, const QByteArray &uri) const
{
    IppMessage message(ippNewRequest(operation));
    ippAddString(message.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.constData());
    ippAddString(message.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    return message;
}

IppMessage CupsConnection::requestForJob(ipp_op_t operation, int number) const
{
    IppMessage message(ippNewRequest(operation));
    ippAddString(message.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
                 m_queue.uri.constData());
    ippAddInteger(message.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", number);
    ippAddString(message.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    return message;
}

CupsAnswer CupsConnection::send(const IppMessage &request)
{
    return exchange(request, {}, {});
}

CupsAnswer CupsConnection::sendDocument(const IppMessage &request, const Source &source)
{
    return exchange(request, source, {});
}

CupsAnswer CupsConnection::receiveDocument(const IppMessage &request, const Sink &sink)
{
    return exchange(request, {}, sink);
}

bool CupsConnection::isGivenUp() const
{
    return m_isGivenUp || QThread::currentThread()->isInterruptionRequested();
}

bool CupsConnection::isStale() const
{
    if (!m_connection)
        return true;
    char byte = 0;
    // Nothing to read is what a live connection has between two requests.
    const ssize_t size = recv(httpGetFd(m_connection.get()), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return size >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
}

void CupsConnection::close()
{
    m_connection.reset();
}

// libcups calls it when nothing moved for a while: 0 gives up.
int CupsConnection::waitOn(http_t *, void *self)
{
    auto *const connection = static_cast<CupsConnection *>(self);
    return !connection->isGivenUp() && connection->m_sinceProgress.elapsed() < connection->m_patience;
}

bool CupsConnection::open()
{
    if (!isStale())
        return true;
    if (!m_queue.isValid || isGivenUp())
        return false;
    cupsSetPasswordCB2(noPassword, nullptr);
    m_connection.reset(httpConnect2(m_queue.host.constData(), m_queue.port, nullptr, AF_UNSPEC,
                                    m_queue.encryption, 1, connectMilliseconds, nullptr));
    if (!m_connection)
        return false;
    ++m_generation;
    httpSetTimeout(m_connection.get(), pieceMilliseconds / 1000.0, waitOn, this);
    return true;
}

CupsAnswer CupsConnection::exchange(const IppMessage &request, const Source &source, const Sink &sink)
{
    m_isWorthAnotherTry = false;
    if (!m_connection || isGivenUp())
        return {};
    m_sinceProgress.start();
    m_sinceBegin.start();
    CupsAnswer answer;
    // One that takes no more may have said why.
    const Posted posted = post(request, source);
    if (posted != Posted::Unreadable) {
        const http_status_t answered = status();
        noteSlowness();
        if (answered == HTTP_STATUS_OK)
            answer = response(sink);
        else if (answered == HTTP_STATUS_UNAUTHORIZED || answered == HTTP_STATUS_FORBIDDEN)
            return authenticate();
    }
    noteSlowness();
    // Whatever comes later on it would be taken for the answer to another request, and where a request did
    // not go out whole, the next one for the rest of it.
    if (!answer || posted != Posted::Whole)
        close();
    return answer;
}

void CupsConnection::noteSlowness()
{
    m_isSlow = m_isSlow || m_sinceProgress.elapsed() > slowMilliseconds;
}

CupsConnection::Posted CupsConnection::post(const IppMessage &request, const Source &source)
{
    http_t *const http = m_connection.get();
    httpClearFields(http);
    httpSetField(http, HTTP_FIELD_CONTENT_TYPE, "application/ipp");
    if (!m_authorization.isEmpty())
        httpSetField(http, HTTP_FIELD_AUTHORIZATION, m_authorization.constData());
    // A length of 0 means pieces, for a document whose length nobody has to know before.
    httpSetLength(http, source ? 0 : ippLength(request.get()));
    if (httpPost(http, m_queue.resource.constData()) != 0)
        return Posted::Untaken;
    ippSetState(request.get(), IPP_STATE_IDLE);
    ipp_state_t state = IPP_STATE_IDLE;
    while ((state = ippWrite(http, request.get())) != IPP_STATE_DATA) {
        if (state == IPP_STATE_ERROR)
            return Posted::Untaken;
    }
    if (source)
        return postDocument(source);
    return httpFlushWrite(http) >= 0 ? Posted::Whole : Posted::Untaken;
}

CupsConnection::Posted CupsConnection::postDocument(const Source &source)
{
    http_t *const http = m_connection.get();
    QVarLengthArray<char, bufferSize> bytes(bufferSize);
    qint64 size = 0;
    while ((size = source(bytes.data(), bytes.size())) > 0) {
        m_sinceProgress.start();
        if (isGivenUp() || m_sinceBegin.elapsed() > documentMilliseconds
            || httpWrite2(http, bytes.constData(), size_t(size)) != size)
            return Posted::Untaken;
    }
    // What was sent without its end is no document.
    if (size < 0)
        return Posted::Unreadable;
    m_sinceProgress.start();
    return httpWrite2(http, "", 0) == 0 ? Posted::Whole : Posted::Untaken;
}

http_status_t CupsConnection::status()
{
    http_status_t answered = HTTP_STATUS_CONTINUE;
    do
        answered = httpUpdate(m_connection.get());
    while (answered == HTTP_STATUS_CONTINUE && !isGivenUp() && m_sinceProgress.elapsed() < m_patience);
    return answered;
}

CupsAnswer CupsConnection::response(const Sink &sink)
{
    http_t *const http = m_connection.get();
    m_sinceProgress.start();
    CupsAnswer answer;
    answer.message.reset(ippNew());
    ipp_state_t state = IPP_STATE_IDLE;
    while ((state = ippRead(http, answer.message.get())) != IPP_STATE_DATA) {
        if (state == IPP_STATE_ERROR)
            return {};
    }
    if (!sink || !answer.isGood()) {
        httpFlush(http);
        return answer;
    }
    QVarLengthArray<char, bufferSize> bytes(bufferSize);
    ssize_t size = 0;
    while ((size = httpRead2(http, bytes.data(), size_t(bytes.size()))) > 0) {
        m_sinceProgress.start();
        if (isGivenUp() || m_sinceBegin.elapsed() > documentMilliseconds || !sink(bytes.constData(), size)) {
            close();
            return answer;
        }
    }
    // httpRead2() says nothing at the end and when the connection broke; only then there is more to come.
    if (size < 0 || httpGetRemaining(http) > 0 || httpError(http) != 0)
        return {};
    return answer;
}

// The scheduler closes a connection on which it asked who it is.
CupsAnswer CupsConnection::authenticate()
{
    http_t *const http = m_connection.get();
    httpFlush(http);
    const bool isKnown = cupsDoAuthentication(http, "POST", m_queue.resource.constData()) == 0;
    const QByteArray text = isKnown ? httpGetAuthString(http) : nullptr;
    close();
    m_isWorthAnotherTry = !text.isEmpty() && text != m_authorization;
    if (m_isWorthAnotherTry) {
        m_authorization = text;
        return {};
    }
    CupsAnswer refusal;
    refusal.message.reset(ippNew());
    ippSetStatusCode(refusal.message.get(), IPP_STATUS_ERROR_NOT_AUTHORIZED);
    return refusal;
}
