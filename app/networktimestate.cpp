// Reads the state of network time out of what the clock service says.
#include "networktimestate.h"

NetworkTimeState networkTimeState(const QVariant &ntp)
{
    if (ntp.userType() != QMetaType::Bool)
        return NetworkTimeState::Unknown;
    return ntp.toBool() ? NetworkTimeState::On : NetworkTimeState::Off;
}

NetworkTimeState networkTimeStateAfter(NetworkTimeState before, const QVariantMap &changed,
                                       const QStringList &invalidated)
{
    const QString property = QStringLiteral("NTP");
    if (changed.contains(property))
        return networkTimeState(changed.value(property));
    return invalidated.contains(property) ? NetworkTimeState::Asking : before;
}
