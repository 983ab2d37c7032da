// The methods of the control interface.
#include "virtualdevicecontrol.h"

#include "callgate.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace {

/// Whether \a part is letters, digits and underscores and does not start with a digit.
bool isErrorNamePart(const QString &part)
{
    const auto isAllowed = [](QChar letter) {
        return letter.unicode() < 128 && (letter.isLetterOrNumber() || letter == QLatin1Char('_'));
    };
    return !part.isEmpty() && !part.at(0).isDigit() && std::all_of(part.cbegin(), part.cend(), isAllowed);
}

/// Whether D-Bus allows \a name as the name of an error; a message with another name cannot be sent.
bool isErrorName(const QString &name)
{
    const QStringList parts = name.split(QLatin1Char('.'));
    return name.size() <= 255 && parts.size() >= 2
        && std::all_of(parts.cbegin(), parts.cend(), isErrorNamePart);
}

} // namespace

VirtualDeviceControl::VirtualDeviceControl(CallGate &gate, QObject *parent)
    : CallTarget(parent)
    , m_gate(gate)
{
}

void VirtualDeviceControl::SetInternetState(bool connected)
{
    Q_UNUSED(connected)
    refuseAsUnsupported();
}

void VirtualDeviceControl::FollowRoutes()
{
    refuseAsUnsupported();
}

void VirtualDeviceControl::SetShip(int mode)
{
    Q_UNUSED(mode)
    refuseAsUnsupported();
}

void VirtualDeviceControl::FailNextCall(const QString &errorName, const QString &message)
{
    if (isErrorName(errorName))
        m_gate.failNextCall(errorName, message);
    else
        refuse(QDBusError::InvalidArgs, QStringLiteral("\"%1\" is no name of a D-Bus error").arg(errorName));
}

void VirtualDeviceControl::DelayNextCall(uint milliseconds)
{
    m_gate.delayNextCall(milliseconds);
}

void VirtualDeviceControl::IgnoreNextCall()
{
    m_gate.ignoreNextCall();
}

void VirtualDeviceControl::DieInNextCall()
{
    m_gate.dieInNextCall();
}

void VirtualDeviceControl::Vanish()
{
    emit vanishing();
}

RecordedCalls VirtualDeviceControl::Calls() const
{
    return m_gate.calls();
}

void VirtualDeviceControl::ClearCalls()
{
    m_gate.clearCalls();
}

void VirtualDeviceControl::refuseAsUnsupported()
{
    refuse(QDBusError::NotSupported, QStringLiteral("this daemon has no such thing"));
}
