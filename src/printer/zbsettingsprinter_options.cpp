// The slots of ZBSettingsPrinter that set one option, and the test page.
#include "zbsettingsprinter.h"

#include "toolrun.h"
#include "zbsettingsprinter_p.h"

namespace {

/// By the width of the supply in inches. A width that is not a number takes the smallest page.
QString testPageFor(double supplyWidth)
{
    if (supplyWidth > 6.0)
        return QStringLiteral("testpage_9x9.tavo");
    if (supplyWidth > 4.0)
        return QStringLiteral("testpage_6x6.tavo");
    return QStringLiteral("testpage_4x4.tavo");
}

} // namespace

void ZBSettingsPrinter::printTestPage(double supplyWidth)
{
    const QString folder =
        QStringLiteral("/usr/share/data/Corvanta/") + QStringLiteral("TestPages/%1/").arg(d->modelName);
    startDetached(QStringLiteral("lp"),
                  {QStringLiteral("-d"), d->modelName, folder + testPageFor(supplyWidth)});
}

void ZBSettingsPrinter::setBackfeedOffset(int backfeedOffset)
{
    d->printerOptions->setStop(double(backfeedOffset));
}

void ZBSettingsPrinter::setCutOption(QString cutOptionName)
{
    d->values.cutEnum = d->names.cuts.value(cutOptionName);
    d->printerOptions->setCut(d->values.cutEnum);
}

void ZBSettingsPrinter::setDitheringMethod(QString ditheringName)
{
    d->printerOptions->setDithering(d->names.ditheringMethods.value(ditheringName));
}

void ZBSettingsPrinter::setFeedOffset(int feedOffset)
{
    d->printerOptions->setFeed(feedOffset);
}

void ZBSettingsPrinter::setHead1HeatOffset(int heatOffset)
{
    d->printerOptions->setColorHeadOffset(heatOffset, 1);
}

void ZBSettingsPrinter::setHead2HeatOffset(int heatOffset)
{
    d->printerOptions->setColorHeadOffset(heatOffset, 2);
}

void ZBSettingsPrinter::setHorizontal1Offset(int horizontal1Offset)
{
    d->printerOptions->setOffsetH1(horizontal1Offset);
}

void ZBSettingsPrinter::setHorizontal2Offset(int horizontal2Offset)
{
    d->printerOptions->setOffsetH2(horizontal2Offset);
}

void ZBSettingsPrinter::setMirror(bool mirror)
{
    d->printerOptions->setMirror(mirror);
}

void ZBSettingsPrinter::setNegative(bool negative)
{
    d->printerOptions->setInverse(negative);
}

void ZBSettingsPrinter::setOverprint(bool overprint)
{
    d->printerOptions->setOverprint(overprint);
}

void ZBSettingsPrinter::setWhitebase(bool whitebase)
{
    d->printerOptions->setWhiteBase(whitebase);
}

void ZBSettingsPrinter::setPrintOrientation(QString orientationName)
{
    d->values.orientationEnum = d->names.orientations.value(orientationName);
    d->printerOptions->setOrientation(static_cast<_CupsOrientation>(d->values.orientationEnum));
    Q_EMIT orientationEnumChanged(d->values.orientationEnum);
}

void ZBSettingsPrinter::setVertical1Offset(int vertical1Offset)
{
    d->printerOptions->setOffsetV1(vertical1Offset);
}

void ZBSettingsPrinter::setVertical2Offset(int vertical2Offset)
{
    d->printerOptions->setOffsetV2(vertical2Offset);
}

void ZBSettingsPrinter::setR1Tension(int r1Tension)
{
    d->printerOptions->setR1Tension(r1Tension);
}

void ZBSettingsPrinter::setR2Tension(int r2Tension)
{
    d->printerOptions->setR2Tension(r2Tension);
}

void ZBSettingsPrinter::setRibbonSaver(bool ribbonSaver)
{
    d->printerOptions->setRibbonSaver(ribbonSaver);
}
