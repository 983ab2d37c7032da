// Arranges the tool's offset values in display lines.
#include "offsets.h"

namespace {

/// The text from \a start to the next newline; \a start moves on behind that.
QString nextValue(const QString &text, int &start)
{
    int end = text.indexOf(QLatin1Char('\n'), start);
    if (end < 0)
        end = text.size();
    const QString value = text.mid(start, end - start);
    start = end + 1;
    return value;
}

} // namespace

// Taken one by one: all of an output that runs to megabytes need not be split for its first ten values.
QStringList offsetLines(const QString &toolOutput)
{
    constexpr int heads = 2;
    constexpr int valuesPerHead = 5;
    int start = 0;
    QStringList lines;
    for (int head = 0; head < heads; ++head) {
        QStringList values;
        for (int i = 0; i < valuesPerHead; ++i)
            values << nextValue(toolOutput, start);
        lines << values.join(QStringLiteral(", "));
    }
    return lines;
}
