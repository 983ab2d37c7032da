// A virtual D-Bus object on a second connection, whose answers a function makes.
#include "fakedaemon.h"

#include <QtCore/QAtomicInt>
#include <QtDBus/QDBusVirtualObject>

namespace {

QString nextConnectionName()
{
    static QAtomicInt number;
    return QStringLiteral("fake daemon %1").arg(number.fetchAndAddRelaxed(1));
}

} // namespace

class FakeDaemon::Object : public QDBusVirtualObject
{
public:
    Object(const QString &interfaceName, const Answer &answer)
        : m_interfaceName(interfaceName)
        , m_answer(answer)
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
        if (call.interface() != m_interfaceName)
            return false;
        connection.send(m_answer(call));
        return true;
    }

    void noteIntrospection(const std::function<void()> &note) { m_noteIntrospection = note; }

private:
    const QString m_interfaceName;
    const Answer m_answer;
    std::function<void()> m_noteIntrospection = [] {};
};

FakeDaemon::FakeDaemon(const QString &serviceName, const QString &interfaceName, const Answer &answer)
    : m_serviceName(serviceName)
    , m_interfaceName(interfaceName)
    , m_connection(QDBusConnection::connectToBus(QDBusConnection::SystemBus, nextConnectionName()))
    , m_object(std::make_unique<Object>(interfaceName, answer))
{
    m_thread.start();
    m_object->moveToThread(&m_thread);
    m_isOnTheBus = m_connection.registerVirtualObject(QStringLiteral("/"), m_object.get())
        && m_connection.registerService(m_serviceName);
}

FakeDaemon::~FakeDaemon()
{
    m_connection.unregisterService(m_serviceName);
    m_connection.unregisterObject(QStringLiteral("/"));
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
    m_thread.quit();
    m_thread.wait();
}

bool FakeDaemon::isOnTheBus() const
{
    return m_isOnTheBus;
}

void FakeDaemon::noteIntrospection(const std::function<void()> &note)
{
    m_object->noteIntrospection(note);
}

bool FakeDaemon::sendSignal(const QString &name, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/"), m_interfaceName, name);
    message.setArguments(arguments);
    return m_connection.send(message);
}
