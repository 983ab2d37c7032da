// Watches whether somebody owns a name on a bus, and answers.
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
    /// Looks likewise, and tells whether the owner has answered a call of this method of its object "/",
    /// which takes no arguments and is called once somebody owns the name.
    bool isAnswering(const char *interface, const char *method);

private:
    struct Disconnect
    {
        void operator()(DBusConnection *connection) const;
    };

    const std::string m_name;
    std::unique_ptr<DBusConnection, Disconnect> m_connection;
    unsigned m_question = 0;
    unsigned m_call = 0;
    bool m_owned = false;
    bool m_answered = false;
};
