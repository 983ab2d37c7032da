// A print queue daemon that answers as no real one would.
#pragma once

#include "fakedaemon.h"

class FakePrintQueueDaemon : public FakeDaemon
{
public:
    explicit FakePrintQueueDaemon(const Answer &answer)
        : FakeDaemon(QStringLiteral("com.corvanta.printqd"), QStringLiteral("local.IZBIPCPRINTQD"), answer)
    {
    }
};
