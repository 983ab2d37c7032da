// The printer's options as CUPS knows them: name, way of writing, range.
#pragma once

#include <QtCore/QByteArray>

/// In the order of the table in README.md.
enum class PrinterOption {
    Orientation,
    MirrorPrint,
    NegativePrint,
    Overprint,
    WhiteBase,
    CutMedia,
    HorizontalOffset1,
    HorizontalOffset2,
    VerticalOffset1,
    VerticalOffset2,
    Feed,
    Stop,
    Dithering,
    Head1Offset,
    Head2Offset,
    R1Tension,
    R2Tension,
    RibbonSaver
};

constexpr int printerOptionCount = 18;

/// How the value of an option is written.
enum class ValueForm {
    TrueFalse, ///< "True", "False"
    EnabledDisabled, ///< "Enabled", "Disabled"
    Choice, ///< a decimal number that is the name of a choice
    Custom, ///< "0", or "Custom." and a decimal number
    Code ///< a decimal number; 0 is no value at all
};

struct PrinterOptionInfo
{
    PrinterOption option;
    const char *name;
    ValueForm form;
    int lowest; ///< of a number
    int highest;
};

const PrinterOptionInfo &printerOptionInfo(PrinterOption option);

/**
 * \a value if the option may have it, else what is set instead: the nearest number of its range, and where
 * the numbers are codes, or \a value is not a number, 0. Says so in the log the first time in a process that
 * it happens to an option.
 */
double allowedValue(PrinterOption option, double value);
