// The slots of ZBSettingsMain that set the device clock, with timedatectl(1).
#include "zbsettingsmain.h"

#include "toolrun.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QProcess>

// All three use one process object, so a request that comes while an earlier one still runs is lost.

void ZBSettingsMain::setTime(QString minutes, QString hours)
{
    // The first argument goes before the colon, whatever its name: the pages pass the hours first.
    startUnread(*d->clockProcess, {QStringLiteral("set-time"), QStringLiteral("%1:%2").arg(minutes, hours)});
}

void ZBSettingsMain::setDate(QString year, QString month, QString day)
{
    startUnread(*d->clockProcess,
                {QStringLiteral("set-time"), QStringLiteral("%1-%2-%3").arg(year, month, day)});
    d->clockProcess->waitForFinished(toolPatience);
}

void ZBSettingsMain::setAutoTime(bool enabled)
{
    startUnread(*d->clockProcess, {QStringLiteral("set-ntp"), QStringLiteral("%1").arg(int(enabled))});
}
