// A question and a subscription through libdbus: it has no thread of its own, so that its owner may fork, and
// loads in a fraction of the time that a Qt program takes.
#include "busnamewatch.h"

#include "failure.h"

#include <dbus/dbus.h>

namespace {

class Error
{
public:
    Error() { dbus_error_init(&m_error); }
    Error(const Error &) = delete;
    Error &operator=(const Error &) = delete;
    ~Error() { dbus_error_free(&m_error); }

    DBusError *get() { return &m_error; }
    std::string text() const { return m_error.message ? m_error.message : "no reason given"; }

private:
    DBusError m_error;
};

struct Unref
{
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, Unref>;

bool ownerIsIn(DBusMessage *answer)
{
    dbus_bool_t owned = FALSE;
    return dbus_message_get_args(answer, nullptr, DBUS_TYPE_BOOLEAN, &owned, DBUS_TYPE_INVALID) && owned;
}

bool newOwnerIsIn(DBusMessage *signal, const std::string &expected)
{
    const char *name = nullptr;
    const char *before = nullptr;
    const char *after = nullptr;
    return dbus_message_get_args(signal, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_STRING, &before,
                                 DBUS_TYPE_STRING, &after, DBUS_TYPE_INVALID)
        && expected == name && *after != '\0';
}

} // namespace

void BusNameWatch::Disconnect::operator()(DBusConnection *connection) const
{
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}

BusNameWatch::BusNameWatch(const std::string &address, const std::string &name)
    : m_name(name)
{
    // SIGPIPE is blocked here; ignored, it would stay so in all that is started later.
    dbus_connection_set_change_sigpipe(FALSE);
    Error error;
    m_connection.reset(dbus_connection_open_private(address.c_str(), error.get()));
    if (!m_connection || !dbus_bus_register(m_connection.get(), error.get()))
        throw Failure("cannot reach the device's bus: " + error.text());
    dbus_connection_set_exit_on_disconnect(m_connection.get(), FALSE);

    // First the subscription, then the question: an owner that comes in between is not missed.
    const std::string rule = "type='signal',sender='" DBUS_SERVICE_DBUS "',interface='" DBUS_INTERFACE_DBUS
                             "',member='NameOwnerChanged',arg0='"
        + name + "'";
    dbus_bus_add_match(m_connection.get(), rule.c_str(), nullptr);
    const Message question(
        dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "NameHasOwner"));
    const char *const argument = name.c_str();
    dbus_message_append_args(question.get(), DBUS_TYPE_STRING, &argument, DBUS_TYPE_INVALID);
    dbus_connection_send(m_connection.get(), question.get(), &m_question);
    dbus_connection_flush(m_connection.get());
}

int BusNameWatch::descriptor() const
{
    int descriptor = -1;
    dbus_connection_get_unix_fd(m_connection.get(), &descriptor);
    return descriptor;
}

bool BusNameWatch::isOwned()
{
    dbus_connection_read_write(m_connection.get(), 0);
    while (const Message message{dbus_connection_pop_message(m_connection.get())}) {
        if (dbus_message_get_reply_serial(message.get()) == m_question)
            m_owned = m_owned || ownerIsIn(message.get());
        else if (m_call != 0 && dbus_message_get_reply_serial(message.get()) == m_call) {
            m_answered = dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
            // An error is asked again: the daemon may have been another one by then.
            m_call = 0;
        } else if (dbus_message_is_signal(message.get(), DBUS_INTERFACE_DBUS, "NameOwnerChanged"))
            m_owned = newOwnerIsIn(message.get(), m_name);
    }
    return m_owned;
}

bool BusNameWatch::isAnswering(const char *interface, const char *method)
{
    if (!isOwned()) {
        m_call = 0;
    } else if (m_call == 0) {
        const Message call(dbus_message_new_method_call(m_name.c_str(), "/", interface, method));
        dbus_connection_send(m_connection.get(), call.get(), &m_call);
        dbus_connection_flush(m_connection.get());
        // Flushing may have read what the descriptor then no longer tells of.
        isOwned();
    }
    return m_answered;
}
