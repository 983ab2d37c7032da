// The handler only writes to a pipe, which the event loop reads. The signals are not blocked, since the
// programs that are started would inherit that.
#include "endrequest.h"

#include <QtCore/QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t requested = 0;
int pipeEnds[2] = {-1, -1};
constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

void request(int)
{
    requested = 1;
    const ssize_t written = write(pipeEnds[1], "", 1);
    static_cast<void>(written);
}

} // namespace

EndRequest::EndRequest()
{
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("cannot make a pipe");
    auto *const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT came();
    });
    struct sigaction action = {};
    action.sa_handler = request;
    for (const int number : endingSignals)
        sigaction(number, &action, nullptr);
}

EndRequest::~EndRequest()
{
    for (const int number : endingSignals)
        std::signal(number, SIG_IGN);
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

bool EndRequest::hasCome()
{
    return requested != 0;
}
