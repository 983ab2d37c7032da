// Halving by lines, text in and text out.
#include "spooltrimming.h"

namespace {

int lineCount(const QByteArray &lines)
{
    return lines.count('\n') + (lines.isEmpty() || lines.endsWith('\n') ? 0 : 1);
}

} // namespace

QByteArray newestHalf(const QByteArray &lines)
{
    int start = 0;
    for (int dropped = (lineCount(lines) + 1) / 2; dropped > 0; --dropped) {
        const int lineEnd = lines.indexOf('\n', start);
        if (lineEnd < 0)
            return {};
        start = lineEnd + 1;
    }
    return lines.mid(start);
}

QByteArray trimmedToFit(const QByteArray &lines, qint64 room)
{
    QByteArray kept = lines;
    if (!kept.isEmpty() && !kept.endsWith('\n'))
        kept.append('\n');
    do {
        kept = newestHalf(kept);
    } while (kept.size() > room && !kept.isEmpty());
    return kept;
}
