// The table of options and ranges.
#include "printeroptions.h"

#include <QtCore/QDebug>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>

namespace {

constexpr int mostSteps = 2000;
constexpr int mostHeat = 50;
constexpr int mostTension = 10;

constexpr std::array<PrinterOptionInfo, printerOptionCount> table{{
    {PrinterOption::Orientation, "orientation-requested", ValueForm::Code, 3, 6},
    {PrinterOption::MirrorPrint, "MirrorPrint", ValueForm::TrueFalse, 0, 1},
    {PrinterOption::NegativePrint, "NegativePrint", ValueForm::TrueFalse, 0, 1},
    {PrinterOption::Overprint, "Overprint", ValueForm::TrueFalse, 0, 1},
    {PrinterOption::WhiteBase, "WhiteBase", ValueForm::TrueFalse, 0, 1},
    {PrinterOption::CutMedia, "CutMedia", ValueForm::Choice, 0, 2},
    {PrinterOption::HorizontalOffset1, "Hoffset1", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::HorizontalOffset2, "Hoffset2", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::VerticalOffset1, "Voffset1", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::VerticalOffset2, "Voffset2", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::Feed, "Feed", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::Stop, "Stop", ValueForm::Custom, -mostSteps, mostSteps},
    {PrinterOption::Dithering, "Dithering", ValueForm::Choice, 0, 66},
    {PrinterOption::Head1Offset, "head1Offset", ValueForm::Custom, -mostHeat, mostHeat},
    {PrinterOption::Head2Offset, "head2Offset", ValueForm::Custom, -mostHeat, mostHeat},
    {PrinterOption::R1Tension, "R1TensionAdjust", ValueForm::Custom, -mostTension, mostTension},
    {PrinterOption::R2Tension, "R2TensionAdjust", ValueForm::Custom, -mostTension, mostTension},
    {PrinterOption::RibbonSaver, "RibbonSaver", ValueForm::EnabledDisabled, 0, 1},
}};

constexpr std::array<int, 12> ditheringCodes{0, 16, 17, 18, 20, 21, 24, 25, 32, 33, 65, 66};

template <typename Codes> double codeOrZero(const Codes &codes, double value)
{
    return std::find(codes.begin(), codes.end(), value) == codes.end() ? 0 : value;
}

double nearestAllowed(const PrinterOptionInfo &info, double value)
{
    if (!std::isfinite(value))
        return 0;
    if (info.option == PrinterOption::Dithering)
        return codeOrZero(ditheringCodes, value);
    if (info.form == ValueForm::Code)
        return value < info.lowest || value > info.highest ? 0 : value;
    return std::clamp(value, double(info.lowest), double(info.highest));
}

bool isFirstTime(PrinterOption option)
{
    static std::array<std::atomic<bool>, printerOptionCount> happened{};
    return !happened.at(size_t(option)).exchange(true);
}

} // namespace

const PrinterOptionInfo &printerOptionInfo(PrinterOption option)
{
    return table.at(size_t(option));
}

double allowedValue(PrinterOption option, double value)
{
    const PrinterOptionInfo &info = printerOptionInfo(option);
    const double allowed = nearestAllowed(info, value);
    if (allowed != value && isFirstTime(option))
        qWarning("printer option %s cannot be %g: set to %g", info.name, value, allowed);
    return allowed;
}
