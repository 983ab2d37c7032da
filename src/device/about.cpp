// The slots of ZBSettingsMain behind the About page.
#include "zbsettingsmain.h"

#include "offsets.h"
#include "toolrun.h"
#include "zbsettingsmain_p.h"
#include "zbsettingsqmlenums.h"

#include <QtCore/QProcess>

namespace {

struct AboutTool
{
    ZBSettingsAboutInfoFields::InfoFields field;
    const char *program;
    QStringList arguments;
};

const AboutTool *toolFor(int field)
{
    static const AboutTool tools[] = {
        {ZBSettingsAboutInfoFields::SERIAL_NUMBER,
         "fw_printenv",
         {QStringLiteral("-n"), QStringLiteral("serialNumber")}},
        {ZBSettingsAboutInfoFields::STORAGE_VALUE,
         "df",
         {QStringLiteral("-t"), QStringLiteral("ext4"), QStringLiteral("-h")}},
        {ZBSettingsAboutInfoFields::ETHERNET_ADDRESS,
         "fw_printenv",
         {QStringLiteral("-n"), QStringLiteral("ethaddr")}},
        {ZBSettingsAboutInfoFields::WIRELESS_ADDRESS,
         "cat",
         {QStringLiteral("/sys/class/net/wlan0/address")}},
        {ZBSettingsAboutInfoFields::OFFSET_VALUES,
         "fw_printenv",
         {QStringLiteral("-n"), QStringLiteral("backstop"), QStringLiteral("hOffset"),
          QStringLiteral("bMarkOffset"), QStringLiteral("gapOffset"), QStringLiteral("tphHeat"),
          QStringLiteral("backstop2"), QStringLiteral("hOffset2"), QStringLiteral("bMarkOffset2"),
          QStringLiteral("gapOffset2"), QStringLiteral("tphHeat2")}},
        {ZBSettingsAboutInfoFields::CALIBRATION_VALUES,
         "fw_printenv",
         {QStringLiteral("-n"), QStringLiteral("tachLow"), QStringLiteral("tachHigh"),
          QStringLiteral("cutterTrans"), QStringLiteral("supplyTrans"), QStringLiteral("supplyRefl")}},
    };
    for (const AboutTool &tool : tools) {
        if (tool.field == field)
            return &tool;
    }
    return nullptr;
}

} // namespace

QString ZBSettingsMain::getAboutInfo(int field)
{
    // Every question gets a process object of its own, which stays until this object goes.
    d->queryProcess = new QProcess(this);
    if (field == ZBSettingsAboutInfoFields::VERSION_NUMBERS)
        return QStringLiteral("3.1.1.11");
    const AboutTool *const tool = toolFor(field);
    if (!tool)
        return QString();
    return outputOfTool(*d->queryProcess, QLatin1String(tool->program), tool->arguments);
}

QStringList ZBSettingsMain::formatOffsets()
{
    return offsetLines(getAboutInfo(ZBSettingsAboutInfoFields::OFFSET_VALUES));
}
