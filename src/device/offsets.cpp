// Splits the tool's offset values into display lines.
#include "offsets.h"

QStringList offsetLines(const QString &toolOutput)
{
    constexpr int valuesPerHead = 5;
    const QStringList values = toolOutput.split(QLatin1Char('\n'));
    QStringList lines;
    for (int head = 0; head < 2; ++head) {
        QStringList parts;
        for (int i = 0; i < valuesPerHead; ++i)
            parts << values.value(head * valuesPerHead + i);
        lines << parts.join(QStringLiteral(", "));
    }
    return lines;
}
