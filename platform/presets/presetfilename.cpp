// Percent-encoding and suffixes.
#include "presetfilename.h"

#include <QtCore/QByteArray>

namespace {

// With the longest suffixes below, still less than the 143 bytes that an encrypted home folder allows.
constexpr int longestName = 120;

const QLatin1String orderSuffix(".list");
const QLatin1String damagedSuffix(".damaged");

QString safeName(const QString &text)
{
    QByteArray name = text.toUtf8().toPercentEncoding({}, ".~");
    if (name.size() > longestName) {
        // Not in the middle of an encoded byte.
        const int percent = name.lastIndexOf('%', longestName - 1);
        name.truncate(percent > longestName - 3 ? percent : longestName);
    }
    return name.isEmpty() ? QStringLiteral("preset") : QString::fromLatin1(name);
}

} // namespace

QString presetFileName(const QString &wish, int number)
{
    const QString name = safeName(wish);
    return number < 2 ? name : name + QLatin1Char('-') + QString::number(number);
}

QString presetOrderFileName(const QString &modelName)
{
    return safeName(modelName) + orderSuffix;
}

QString damagedFileName(const QString &fileName, int number)
{
    return number < 2 ? fileName + damagedSuffix
                      : fileName + QLatin1Char('.') + QString::number(number) + damagedSuffix;
}

bool mayBePresetFile(const QString &fileName)
{
    return !fileName.startsWith(QLatin1Char('.')) && !fileName.startsWith(QLatin1Char('#'))
        && !fileName.endsWith(QLatin1Char('~')) && !fileName.endsWith(orderSuffix)
        && !fileName.endsWith(damagedSuffix) && fileName != unfinishedFileName();
}

QString unfinishedFileName()
{
    return QStringLiteral("presets.new");
}
