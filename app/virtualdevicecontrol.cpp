// Calls the control interface of the utility daemon on a virtual device.
#include "virtualdevicecontrol.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

namespace {

constexpr int answerMilliseconds = 5000;

QDBusMessage callControl(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
                                       QStringLiteral("com.corvanta.VirtualDevice1"), method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return QDBusConnection::systemBus().call(message, QDBus::Block, answerMilliseconds);
}

bool succeeds(const QString &method, const QVariantList &arguments = {})
{
    return callControl(method, arguments).type() == QDBusMessage::ReplyMessage;
}

} // namespace

bool VirtualDeviceControl::isThere() const
{
    return succeeds(QStringLiteral("Calls"));
}

bool VirtualDeviceControl::setInternetState(bool connected)
{
    return succeeds(QStringLiteral("SetInternetState"), {connected});
}

bool VirtualDeviceControl::followRoutes()
{
    return succeeds(QStringLiteral("FollowRoutes"));
}

bool VirtualDeviceControl::clearCalls()
{
    return succeeds(QStringLiteral("ClearCalls"));
}

QVector<VirtualDeviceControl::Call> VirtualDeviceControl::calls() const
{
    QVector<Call> calls;
    const QDBusMessage reply = callControl(QStringLiteral("Calls"));
    if (reply.signature() != QLatin1String("a(ssav)"))
        return calls;
    const auto list = reply.arguments().first().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        Call call;
        list.beginStructure();
        list >> call.method >> call.signature >> call.arguments;
        list.endStructure();
        calls += call;
    }
    list.endArray();
    return calls;
}
