// What the properties of ZBSettingsPrinter show of the print options.
#pragma once

#include <QtCore/QString>

struct PrinterValues
{
    QString orientationOption;
    QString cutOption;
    QString ditheringMethod;
    int orientationEnum = 0;
    int cutEnum = 0;
    int head1HeatOffset = 0;
    int head2HeatOffset = 0;
    bool mirror = false;
    bool negative = false;
    bool overprint = false;
    bool whitebase = false;
    bool ribbonSaver = false;
    int backfeedOffset = 0;
    int feedOffset = 0;
    int horizontal1Offset = 0;
    int horizontal2Offset = 0;
    int vertical1Offset = 0;
    int vertical2Offset = 0;
    int r1Tension = 0;
    int r2Tension = 0;
};
