// A utility daemon that answers as no real one would.
#pragma once

#include "fakedaemon.h"

class FakeUtilityDaemon : public FakeDaemon
{
public:
    explicit FakeUtilityDaemon(const Answer &answer)
        : FakeDaemon(QStringLiteral("com.corvanta.zbutility"),
                     QStringLiteral("local.ZBUtilityd.UtilityDaemon"), answer)
    {
    }

    /// Sends onInternetConnectionChanged with \a arguments.
    bool sendInternetConnectionChanged(const QVariantList &arguments) const
    {
        return sendSignal(QStringLiteral("onInternetConnectionChanged"), arguments);
    }
};
