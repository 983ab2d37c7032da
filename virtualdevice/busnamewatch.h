// Watches whether somebody owns a name on a bus.
#pragma once

#include <memory>
#include <string>

struct DBusConnection;

class BusNameWatch
{
public:
    /// Begins to watch NAME on the bus at ADDRESS. Throws Failure if that bus cannot be reached.
    BusNameWatch(const std::string &address, const std::string &name);

    /// Readable when something has arrived.
    int descriptor() const;
    /// Looks at what has arrived, without waiting, and tells whether the name is owned.
    bool isOwned();

private:
    struct Disconnect
    {
        void operator()(DBusConnection *connection) const;
    };

    const std::string m_name;
    std::unique_ptr<DBusConnection, Disconnect> m_connection;
    unsigned m_question = 0;
    bool m_owned = false;
};
