// A virtual D-Bus object on a second connection, whose answers a function makes.
#include "fakeutilitydaemon.h"

#include <QtCore/QAtomicInt>
#include <QtDBus/QDBusVirtualObject>

namespace {

const QString serviceName = QStringLiteral("com.corvanta.zbutility");
const QString interfaceName = QStringLiteral("local.ZBUtilityd.UtilityDaemon");

QString nextConnectionName()
{
    static QAtomicInt number;
    return QStringLiteral("fake utility daemon %1").arg(number.fetchAndAddRelaxed(1));
}

} // namespace

class FakeUtilityDaemon::Object : public QDBusVirtualObject
{
public:
    explicit Object(const Answer &answer)
        : m_answer(answer)
    {
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &call, const QDBusConnection &connection) override
    {
        if (call.member() == QLatin1String("Introspect")) {
            m_noteIntrospection();
            connection.send(call.createErrorReply(QDBusError::UnknownInterface, {}));
            return true;
        }
        if (call.interface() != interfaceName)
            return false;
        connection.send(m_answer(call));
        return true;
    }

    void noteIntrospection(const std::function<void()> &note) { m_noteIntrospection = note; }

private:
    const Answer m_answer;
    std::function<void()> m_noteIntrospection = [] {};
};

FakeUtilityDaemon::FakeUtilityDaemon(const Answer &answer)
    : m_connection(QDBusConnection::connectToBus(QDBusConnection::SystemBus, nextConnectionName()))
    , m_object(std::make_unique<Object>(answer))
{
    m_thread.start();
    m_object->moveToThread(&m_thread);
    m_isOnTheBus = m_connection.registerVirtualObject(QStringLiteral("/"), m_object.get())
        && m_connection.registerService(serviceName);
}

FakeUtilityDaemon::~FakeUtilityDaemon()
{
    m_connection.unregisterService(serviceName);
    m_connection.unregisterObject(QStringLiteral("/"));
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
    m_thread.quit();
    m_thread.wait();
}

bool FakeUtilityDaemon::isOnTheBus() const
{
    return m_isOnTheBus;
}

void FakeUtilityDaemon::noteIntrospection(const std::function<void()> &note)
{
    m_object->noteIntrospection(note);
}

bool FakeUtilityDaemon::sendInternetConnectionChanged(const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/"), interfaceName,
                                                      QStringLiteral("onInternetConnectionChanged"));
    message.setArguments(arguments);
    return m_connection.send(message);
}
