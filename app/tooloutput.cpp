// Takes apart what the system tools behind the About page print.
#include "tooloutput.h"

#include <QtCore/QRegularExpression>

namespace {

// More than any device has; a tool that prints more prints something else.
constexpr int mostLines = 64;
constexpr int longestTable = 64 * 1024;

QStringList trimmed(QStringList texts)
{
    for (QString &text : texts)
        text = text.trimmed();
    return texts;
}

bool readRow(const QString &line, StorageRow &row)
{
    static const QRegularExpression form(QStringLiteral(
        "^(\\S.*?) +([0-9.]+[KMGTPEZY]?) +([0-9.]+[KMGTPEZY]?) +([0-9.]+[KMGTPEZY]?) +([0-9]+%|-) +(/.*)$"));
    const QRegularExpressionMatch match = form.match(line);
    if (!match.hasMatch())
        return false;
    row.fileSystem = match.captured(1);
    row.size = readableSize(match.captured(2));
    row.used = readableSize(match.captured(3));
    row.available = readableSize(match.captured(4));
    QString percent = match.captured(5);
    percent.chop(1);
    row.usedPercent = percent.toInt();
    row.mountPoint = match.captured(6);
    return true;
}

} // namespace

QString readableSize(const QString &size)
{
    if (size.isEmpty() || size == QLatin1String("0"))
        return size;
    const QChar unit = size.at(size.size() - 1);
    if (unit.isDigit())
        return size + QStringLiteral(" bytes");
    return size.left(size.size() - 1) + QLatin1Char(' ') + unit + QStringLiteral("iB");
}

QVector<StorageRow> storageRows(const QString &table)
{
    if (table.size() > longestTable)
        return {};
    const QStringList lines = table.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.size() > mostLines || !lines.value(0).startsWith(QLatin1String("Filesystem ")))
        return {};
    QVector<StorageRow> rows;
    for (const QString &line : lines.mid(1)) {
        StorageRow row;
        if (!readRow(line, row))
            return {};
        rows += row;
    }
    return rows;
}

QStringList valueLines(const QString &output, int count)
{
    QStringList lines = output.split(QLatin1Char('\n'));
    // What follows the last line end.
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines.size() == count ? trimmed(lines) : QStringList();
}

QStringList offsetValues(const QString &line, int count)
{
    const QStringList values = trimmed(line.split(QStringLiteral(", ")));
    const bool hasAny = !values.join(QString()).isEmpty();
    return hasAny && values.size() == count ? values : QStringList();
}
