// The table of the values and their checks.
#include "values.h"

namespace {

QString noComplaint(const QVariant &)
{
    return {};
}

QString inactivityChoiceComplaint(const QVariant &value)
{
    const int choice = value.toInt();
    if (choice >= 0 && choice <= lastInactivityChoice)
        return {};
    return QStringLiteral("the time is the index of a choice, 0 to %1, not %2")
        .arg(lastInactivityChoice)
        .arg(choice);
}

QString brightnessComplaint(const QVariant &value)
{
    const uint level = value.toUInt();
    if (level >= lowestBrightness && level <= highestBrightness)
        return {};
    return QStringLiteral("the brightness is %1 to %2, not %3")
        .arg(lowestBrightness)
        .arg(highestBrightness)
        .arg(level);
}

QString dateFormatValueComplaint(const QVariant &value)
{
    return dateFormatComplaint(value.toString());
}

/// Which parts of a date a format has.
struct DateParts
{
    bool hasDay = false;
    bool hasMonth = false;
    bool hasYear = false;
};

/// Takes up \a count times \a letter in a row; false if dates have no such part.
bool addRun(DateParts &parts, QChar letter, int count)
{
    switch (letter.unicode()) {
    case 'd':
        parts.hasDay |= count <= 2;
        return count <= 4;
    case 'M':
        parts.hasMonth = true;
        return count <= 4;
    case 'y':
        parts.hasYear = true;
        return count == 2 || count == 4;
    default:
        return false;
    }
}

} // namespace

QString dateFormatComplaint(const QString &format)
{
    if (format.isEmpty())
        return QStringLiteral("the date format is empty");
    if (format.size() > longestDateFormat)
        return QStringLiteral("the date format is longer than %1 characters").arg(longestDateFormat);

    DateParts parts;
    int position = 0;
    while (position < format.size()) {
        const QChar letter = format.at(position);
        int end = position + 1;
        while (end < format.size() && format.at(end) == letter)
            ++end;
        const bool isSeparator = QStringLiteral(" /-.,").contains(letter);
        if (!isSeparator && !addRun(parts, letter, end - position))
            return QStringLiteral("the date format may not contain \"%1\"")
                .arg(format.mid(position, end - position));
        position = end;
    }
    if (!parts.hasDay || !parts.hasMonth || !parts.hasYear)
        return QStringLiteral("the date format lacks the day of the month, the month or the year");
    return {};
}

const std::vector<ValueRule> &valueRules()
{
    static const std::vector<ValueRule> rules{
        {QStringLiteral("displayDimTime"), 2, inactivityChoiceComplaint},
        {QStringLiteral("displayPowerOffTime"), lastInactivityChoice, inactivityChoiceComplaint},
        {QStringLiteral("displayBrightness"), 7U, brightnessComplaint},
        {QStringLiteral("automaticUpdateCheck"), true, noComplaint},
        {QStringLiteral("twentyFourHourMode"), false, noComplaint},
        {QStringLiteral("dateFormat"), QStringLiteral("MM/dd/yy"), dateFormatValueComplaint},
        {QStringLiteral("shipMode"), 0, noComplaint},
    };
    return rules;
}

const ValueRule &ruleOf(Value value)
{
    return valueRules().at(static_cast<size_t>(value));
}
