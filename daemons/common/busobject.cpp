// From a message on the bus to a method of an adaptor, and back.
#include "busobject.h"

#include "callgate.h"
#include "calltarget.h"

#include <QtCore/QMetaMethod>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusMetaType>

#include <array>
#include <functional>
#include <list>

namespace {

/// What the generator has written into the adaptor about its interface.
QString classInformation(const QDBusAbstractAdaptor &adaptor, const char *name)
{
    const QMetaObject *const meta = adaptor.metaObject();
    return QString::fromUtf8(meta->classInfo(meta->indexOfClassInfo(name)).value());
}

QString interfaceName(const QDBusAbstractAdaptor &adaptor)
{
    return classInformation(adaptor, "D-Bus Interface");
}

/// The adaptor's method of that name, an invalid one if it has none. D-Bus methods are not overloaded.
QMetaMethod findMethod(const QDBusAbstractAdaptor &adaptor, const QString &name)
{
    const QMetaObject *const meta = adaptor.metaObject();
    for (int index = meta->methodOffset(); index < meta->methodCount(); ++index) {
        const QMetaMethod method = meta->method(index);
        if (method.methodType() == QMetaMethod::Slot && method.name() == name.toUtf8())
            return method;
    }
    return {};
}

/// The types of what the caller gives. What follows are references to further results.
QVector<int> argumentTypes(const QMetaMethod &method)
{
    QVector<int> types;
    for (const QByteArray &name : method.parameterTypes()) {
        if (name.endsWith('&'))
            break;
        types.append(method.parameterType(types.size()));
    }
    return types;
}

QString signatureOf(const QVector<int> &types)
{
    QString signature;
    for (const int type : types)
        signature += QLatin1String(QDBusMetaType::typeToSignature(type));
    return signature;
}

/// \a argument as a value of \a type, as which a structure comes only when it is asked for.
QVariant asValue(const QVariant &argument, int type)
{
    if (argument.userType() != qMetaTypeId<QDBusArgument>() || type == argument.userType())
        return argument;
    QVariant value(type, nullptr);
    QDBusMetaType::demarshall(argument.value<QDBusArgument>(), type, value.data());
    return value;
}

/// Calls \a method with \a arguments, which have its types, and returns what it returned.
QVariantList invoke(QDBusAbstractAdaptor &adaptor, const QMetaMethod &method, QVariantList arguments)
{
    std::array<QGenericArgument, 10> generic;
    size_t count = 0;
    for (QVariant &argument : arguments) {
        argument = asValue(argument, method.parameterType(int(count)));
        generic.at(count++) = {argument.typeName(), argument.constData()};
    }
    const bool hasResult = method.returnType() != QMetaType::Void;
    QVariant result(hasResult ? method.returnType() : QMetaType::UnknownType, nullptr);
    const QGenericReturnArgument genericResult =
        hasResult ? QGenericReturnArgument(method.typeName(), result.data()) : QGenericReturnArgument();
    const QList<QByteArray> names = method.parameterTypes();
    std::list<QVariant> furtherResults;
    for (int index = arguments.size(); index < names.size(); ++index) {
        const QByteArray name = names.at(index).chopped(1);
        QVariant &further = furtherResults.emplace_back(QMetaType::type(name), nullptr);
        generic.at(count++) = {further.typeName(), further.data()};
    }
    method.invoke(&adaptor, Qt::DirectConnection, genericResult, generic[0], generic[1], generic[2],
                  generic[3], generic[4], generic[5], generic[6], generic[7], generic[8], generic[9]);
    QVariantList results;
    if (hasResult)
        results.append(result);
    for (QVariant &further : furtherResults)
        results.append(std::move(further));
    return results;
}

} // namespace

BusObject::BusObject(QObject *parent)
    : QDBusVirtualObject(parent)
{
}

void BusObject::addInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target, CallGate *gate)
{
    m_interfaces.push_back({&adaptor, &target, gate});
}

QString BusObject::introspect(const QString &path) const
{
    Q_UNUSED(path)
    QString text;
    for (const Interface &interface : m_interfaces)
        text += classInformation(*interface.adaptor, "D-Bus Introspection");
    return text;
}

bool BusObject::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (asksForAllProperties(message)) {
        connection.send(message.createReply(QVariantMap()));
        return true;
    }
    const Interface *const interface = findInterface(message);
    if (!interface)
        return false;

    const auto performCall = [interface, message](const auto &reply) { perform(*interface, message, reply); };
    const auto answer = [message, connection](const QDBusMessage &reply) {
        if (message.isReplyRequired())
            connection.send(reply);
    };
    if (interface->gate)
        interface->gate->pass(message, performCall, answer);
    else
        performCall(answer);
    return true;
}

/// The interface that the call is for; none for the standard interfaces, which QtDBus answers itself.
const BusObject::Interface *BusObject::findInterface(const QDBusMessage &message) const
{
    if (message.interface().isEmpty() && !m_interfaces.empty()) {
        const Interface &first = m_interfaces.front();
        return findMethod(*first.adaptor, message.member()).isValid() ? &first : nullptr;
    }
    return findInterface(message.interface());
}

const BusObject::Interface *BusObject::findInterface(const QString &name) const
{
    for (const Interface &interface : m_interfaces) {
        if (interfaceName(*interface.adaptor) == name)
            return &interface;
    }
    return nullptr;
}

/// Proxies of other D-Bus libraries ask for the properties before they call anything. QtDBus would say that
/// there is no such interface, since there are no properties in it.
bool BusObject::asksForAllProperties(const QDBusMessage &message) const
{
    return message.interface() == QLatin1String("org.freedesktop.DBus.Properties")
        && message.member() == QLatin1String("GetAll") && message.signature() == QLatin1String("s")
        && findInterface(message.arguments().constFirst().toString());
}

/// Does what the call asks for, and gives \a answer the reply, now or later.
void BusObject::perform(const Interface &interface, const QDBusMessage &message,
                        const std::function<void(const QDBusMessage &)> &answer)
{
    const QMetaMethod method = findMethod(*interface.adaptor, message.member());
    if (!method.isValid()) {
        answer(message.createErrorReply(
            QDBusError::UnknownMethod,
            QStringLiteral("%1 has no method %2").arg(interfaceName(*interface.adaptor), message.member())));
        return;
    }
    const QString signature = signatureOf(argumentTypes(method));
    if (message.signature() != signature) {
        answer(message.createErrorReply(QDBusError::InvalidArgs,
                                        QStringLiteral("%1 takes arguments of the types \"%2\", not \"%3\"")
                                            .arg(message.member(), signature, message.signature())));
        return;
    }

    CallTarget &target = *interface.target;
    const auto finish = [message, answer](const std::optional<Refusal> &refusal,
                                          const QVariantList &results = {}) {
        answer(refusal ? message.createErrorReply(refusal->type, refusal->text)
                       : message.createReply(results));
    };
    target.beginCall(message.service(), [finish](const std::optional<Refusal> &refusal) { finish(refusal); });
    const QVariantList results = invoke(*interface.adaptor, method, message.arguments());
    if (!target.isAnsweredLater())
        finish(target.takeRefusal(), results);
}

void sendSignal(QDBusConnection connection, const QString &path, const QDBusAbstractAdaptor &adaptor,
                const QString &name, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createSignal(path, interfaceName(adaptor), name);
    message.setArguments(arguments);
    connection.send(message);
}
