// The values that the daemon keeps: name in the state file, type, value before the first call, allowed range.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <vector>

/**
 * Last index in the list of times without a touch, after which the display is dimmed or turned off:
 *
 * | index | time       | index | time       | index | time       |
 * |-------|------------|-------|------------|-------|------------|
 * | 0     | 15 seconds | 4     | 3 minutes  | 8     | 20 minutes |
 * | 1     | 30 seconds | 5     | 5 minutes  | 9     | 30 minutes |
 * | 2     | 1 minute   | 6     | 10 minutes | 10    | 1 hour     |
 * | 3     | 2 minutes  | 7     | 15 minutes | 11    | never      |
 */
constexpr int lastInactivityChoice = 11;

constexpr uint lowestBrightness = 1;
constexpr uint highestBrightness = 9;

constexpr int longestDateFormat = 32;

/// What the daemon keeps, in the order of valueRules().
enum class Value {
    DisplayDimTime,
    DisplayPowerOffTime,
    DisplayBrightness,
    AutomaticUpdateCheck,
    TwentyFourHourMode,
    DateFormat,
    ShipMode,
};

struct ValueRule
{
    QString name; ///< in the state file
    QVariant initial; ///< before the first call; its type is the type of the value
    /// Says what is wrong with a value of the right type; an empty text if nothing is.
    QString (*complaint)(const QVariant &value);
};

/// One row a value.
const std::vector<ValueRule> &valueRules();
const ValueRule &ruleOf(Value value);

/**
 * Says what is wrong with \a format as a format of dates; an empty text if nothing is.
 *
 * A format has the day of the month (d, dd), the month (M to MMMM) and the year (yy, yyyy), may have the day
 * of the week (ddd, dddd), and separates them by blanks and the characters / - . and comma. The letters are
 * those of QDate::toString().
 */
QString dateFormatComplaint(const QString &format);
