// The scheduler runs it as "bracken RECIPIENT USER-DATA", RECIPIENT being bracken:/PATH, with one IPP message
// an event on standard input. It passes on to the datagram socket at PATH which job it was about:
// "SUBSCRIPTION SEQUENCE JOB USER-DATA". What the daemon does not take is lost; it sees that by the sequence
// numbers.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <cups/cups.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

int integer(ipp_t *event, const char *name)
{
    ipp_attribute_t *const attribute = ippFindAttribute(event, name, IPP_TAG_INTEGER);
    return attribute ? ippGetInteger(attribute, 0) : 0;
}

// The first message of a stream, in the state in which the next call reads the next one.
bool readEvent(ipp_t *event)
{
    ipp_state_t state = IPP_STATE_IDLE;
    while ((state = ippReadFile(STDIN_FILENO, event)) != IPP_STATE_DATA) {
        if (state == IPP_STATE_ERROR || state == IPP_STATE_IDLE)
            return false;
    }
    return true;
}

} // namespace

int main(int count, char **arguments)
{
    constexpr const char *scheme = "bracken:/";
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (count != 3 || std::strncmp(arguments[1], scheme, std::strlen(scheme)) != 0
        || std::strlen(arguments[1] + std::strlen(scheme) - 1) >= sizeof address.sun_path) {
        std::fputs("ERROR: usage: bracken bracken:/PATH USER-DATA\n", stderr);
        return 1;
    }
    std::strcpy(&address.sun_path[0], arguments[1] + std::strlen(scheme) - 1);

    const int socketNumber = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    // The daemon may be busy with a request; what piles up meanwhile waits in the pipe from the scheduler.
    const timeval patience = {3, 0};
    if (socketNumber < 0
        || setsockopt(socketNumber, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience) != 0) {
        std::perror("ERROR: no socket");
        return 1;
    }
    for (;;) {
        ipp_t *const event = ippNew();
        const bool isWhole = readEvent(event);
        const std::string text = std::to_string(integer(event, "notify-subscription-id")) + ' '
            + std::to_string(integer(event, "notify-sequence-number")) + ' '
            + std::to_string(integer(event, "notify-job-id")) + ' ' + arguments[2];
        ippDelete(event);
        if (!isWhole)
            break;
        // Without the daemon there is nobody to tell, but it may come back.
        sendto(socketNumber, text.data(), text.size(), MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr *>(&address), sizeof address);
    }
    close(socketNumber);
    return 0;
}
