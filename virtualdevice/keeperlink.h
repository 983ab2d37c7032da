// The line between the launcher and the keeper of its device: short messages both ways, and the news that the
// other side is gone.
#pragma once

#include "filedescriptor.h"

#include <string>
#include <utility>

/// One message: a word and what belongs to it.
struct LinkMessage
{
    enum Kind {
        /// Other side gone.
        Closed,
        /// Launcher: signal VALUE arrived; TEXT is "terminal" if a terminal sent it to its whole process
        /// group.
        Signal,
        /// Launcher: end the device at once.
        End,
        /// Keeper: the device's folder is TEXT.
        Directory,
    };

    Kind kind = Closed;
    int value = 0;
    std::string text;
};

class KeeperLink
{
public:
    /// Both ends. Throws Failure.
    static std::pair<KeeperLink, KeeperLink> makePair();

    int descriptor() const { return m_socket.get(); }
    void close() { m_socket.close(); }
    /// A message to a side that is gone is lost without a word.
    void send(const LinkMessage &message) const;
    /// Waits for the next message.
    LinkMessage receive() const;

private:
    explicit KeeperLink(FileDescriptor socket)
        : m_socket(std::move(socket))
    {
    }

    FileDescriptor m_socket;
};
