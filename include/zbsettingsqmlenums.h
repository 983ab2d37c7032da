// ZBSettingsAboutInfoFields, QMLCupsEnums and ZBSettingsTabNames: the numbers that QML and the back-end
// objects exchange, as named constants. Each class only carries its enumerations; register it with the QML
// engine under its own name, uncreatable, as the QML module Corvanta.Settings does.
#pragma once

#include "zbsettings_export.h"

#include <QtCore/QObject>

/// What ZBSettingsMain::getAboutInfo() can be asked for.
class ZBSETTINGS_EXPORT ZBSettingsAboutInfoFields : public QObject
{
    Q_OBJECT

public:
    enum InfoFields {
        SERIAL_NUMBER = 0, ///< serial number, from the boot-loader environment
        VERSION_NUMBERS = 1, ///< version of the software
        STORAGE_VALUE = 2, ///< the table of df(1), header line included
        ETHERNET_ADDRESS = 3, ///< Ethernet hardware address, from the boot-loader environment
        WIRELESS_ADDRESS = 4, ///< wireless hardware address, from the kernel
        OFFSET_VALUES = 5, ///< ten offsets, one a line, five for each print head
        CALIBRATION_VALUES = 6 ///< five calibration values, one a line
    };
    Q_ENUM(InfoFields)
};

/// Page orientation and cut mode of the printer options.
class ZBSETTINGS_EXPORT QMLCupsEnums : public QObject
{
    Q_OBJECT

public:
    /// Values of the IPP attribute "orientation-requested" (RFC 8011, section 5.2.10).
    enum Orientation {
        LANDSCAPE = 4, ///< landscape
        PORTRAIT = 3, ///< portrait
        LANDSCAPE180 = 5, ///< landscape turned by 180 degrees
        PORTRAIT180 = 6 ///< portrait turned by 180 degrees
    };
    Q_ENUM(Orientation)

    /// When the cutter cuts; values of the printer option "CutMedia".
    enum CutMedia {
        CUT_MEDIA_NONE = 0, ///< no cut
        CUT_MEDIA_PAGE = 1, ///< cut after every page
        CUT_MEDIA_JOB = 2 ///< cut once, at the end of the job
    };
    Q_ENUM(CutMedia)
};

/// The tabs of the Settings application, as carried by ZBSettingsMain::tabEnumChanged().
class ZBSETTINGS_EXPORT ZBSettingsTabNames : public QObject
{
    Q_OBJECT

public:
    enum TabNames {
        GENERAL = 0,
        DATE_TIME = 1,
        NETWORKING = 2,
        SYSTEM_UPDATES = 3,
        LANGUAGES = 4,
        USERS_PASSWORDS = 5,
        PRINTER = 6,
        PRINTER_ALIGNMENT = 7,
        PRINTER_PRESETS = 8,
        ABOUT = 9,
        PRINTER_ADVANCED = 10,
        PRINTER_HISTORY = 11,
        TABNAME_MAX = 12 ///< the number of tabs, not a tab
    };
    Q_ENUM(TabNames)
};
