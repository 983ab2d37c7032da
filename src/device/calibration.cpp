// The slots of ZBSettingsMain that reset the supply calibration and read the ship mode.
#include "zbsettingsmain.h"

#include "daemoncall.h"
#include "shipmode.h"
#include "toolrun.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QProcess>

void ZBSettingsMain::resetSupplyCalibration()
{
    for (const QString &variable :
         {QStringLiteral("supplyTrans"), QStringLiteral("cutterTrans"), QStringLiteral("supplyRefl")})
        startDetached(QStringLiteral("fw_setenv"), {variable});
}

bool ZBSettingsMain::isMilitaryShipped()
{
    const QDBusMessage reply =
        callDaemon(d->utilityDaemon, QStringLiteral("getShip"), "DBus Reply(getShip) is inValid ");
    if (reply.type() == QDBusMessage::ReplyMessage)
        return isMilitaryShipMode(reply.arguments().value(0));

    d->queryProcess = new QProcess(this);
    return isMilitaryShipMode(outputOfTool(*d->queryProcess, QStringLiteral("fw_printenv"),
                                           {QStringLiteral("-n"), QStringLiteral("zbShip")}));
}
