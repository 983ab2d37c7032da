// The property getters of ZBSettingsPrinter.
#include "zbsettingsprinter.h"

#include "zbsettingsprinter_p.h"

QString ZBSettingsPrinter::orientationOption() const
{
    return d->values.orientationOption;
}

QString ZBSettingsPrinter::cutOption() const
{
    return d->values.cutOption;
}

QString ZBSettingsPrinter::ditheringMethod() const
{
    return d->values.ditheringMethod;
}

int ZBSettingsPrinter::orientationEnum() const
{
    return d->values.orientationEnum;
}

int ZBSettingsPrinter::cutEnum() const
{
    return d->values.cutEnum;
}

int ZBSettingsPrinter::head1HeatOffset() const
{
    return d->values.head1HeatOffset;
}

int ZBSettingsPrinter::head2HeatOffset() const
{
    return d->values.head2HeatOffset;
}

bool ZBSettingsPrinter::mirror() const
{
    return d->values.mirror;
}

bool ZBSettingsPrinter::negative() const
{
    return d->values.negative;
}

bool ZBSettingsPrinter::overprint() const
{
    return d->values.overprint;
}

bool ZBSettingsPrinter::whitebase() const
{
    return d->values.whitebase;
}

bool ZBSettingsPrinter::ribbonSaver() const
{
    return d->values.ribbonSaver;
}

QStringList ZBSettingsPrinter::orientationComboBoxModel() const
{
    return d->orientationComboBoxModel;
}

QStringList ZBSettingsPrinter::cutComboBoxModel() const
{
    return d->cutComboBoxModel;
}

QStringList ZBSettingsPrinter::ditheringComboBoxModel() const
{
    return d->ditheringComboBoxModel;
}

int ZBSettingsPrinter::backfeedOffset() const
{
    return d->values.backfeedOffset;
}

int ZBSettingsPrinter::feedOffset() const
{
    return d->values.feedOffset;
}

int ZBSettingsPrinter::horizontal1Offset() const
{
    return d->values.horizontal1Offset;
}

int ZBSettingsPrinter::horizontal2Offset() const
{
    return d->values.horizontal2Offset;
}

int ZBSettingsPrinter::vertical1Offset() const
{
    return d->values.vertical1Offset;
}

int ZBSettingsPrinter::vertical2Offset() const
{
    return d->values.vertical2Offset;
}

int ZBSettingsPrinter::r1Tension() const
{
    return d->values.r1Tension;
}

int ZBSettingsPrinter::r2Tension() const
{
    return d->values.r2Tension;
}
