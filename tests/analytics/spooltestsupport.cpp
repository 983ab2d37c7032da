// Reads spools and the log for the tests.
#include "spooltestsupport.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <numeric>
#include <sys/stat.h>

LogCapture *LogCapture::s_current = nullptr;

namespace {

QJsonObject hitOf(const QByteArray &line)
{
    return QJsonDocument::fromJson(line).object().value(QLatin1String("hit")).toObject();
}

} // namespace

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

int modeOf(const QString &fileName)
{
    struct stat status = {};
    return lstat(QFile::encodeName(fileName).constData(), &status) == 0 ? int(status.st_mode & 07777) : -1;
}

QByteArray lineOf(const QByteArray &name, int size)
{
    return name.leftJustified(size - 1, '.') + '\n';
}

std::optional<QVector<int>> numbersOf(const QByteArray &lines, const QString &writer)
{
    if (brokenLineCount(lines) > 0)
        return std::nullopt;
    QVector<int> numbers;
    for (const QByteArray &line : lines.split('\n')) {
        const QJsonObject hit = hitOf(line);
        if (hit.value(QLatin1String("writer")).toString() == writer)
            numbers.append(hit.value(QLatin1String("number")).toInt(-1));
    }
    return numbers;
}

int brokenLineCount(const QByteArray &lines)
{
    QList<QByteArray> all = lines.split('\n');
    const bool ended = all.takeLast().isEmpty();
    return int(std::count_if(all.cbegin(), all.cend(),
                             [](const QByteArray &line) { return hitOf(line).isEmpty(); }))
        + (ended ? 0 : 1);
}

QVector<int> numbersBetween(int first, int end)
{
    QVector<int> numbers(qMax(0, end - first));
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

LogCapture::LogCapture()
{
    s_current = this;
    m_previous = qInstallMessageHandler(keep);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

void LogCapture::keep(QtMsgType, const QMessageLogContext &, const QString &message)
{
    s_current->m_messages.append(message);
}
