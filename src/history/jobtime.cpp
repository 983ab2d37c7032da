// Formats by hand where localtime_r(3) and one digit a place do, and leaves the rest to Qt.
#include "jobtime.h"

#include <QtCore/QDateTime>
#include <QtCore/QLocale>

#include <ctime>
#include <sys/stat.h>

namespace {

// Years in which a time_t of 32 bits, and every rule of tzdata and of Qt, agree.
constexpr qint64 firstPlainSecond = 63072000; // 1972-01-01
constexpr qint64 firstSecondBeyond = 2145916800; // 2038-01-01

} // namespace

qint64 jobMilliseconds(const QString &timeStamp)
{
    // What the daemon sends is digits, which are read ten times as fast as whatever a number may look like.
    constexpr int digitsThatFit = 18;
    if (timeStamp.size() > digitsThatFit)
        return timeStamp.toLongLong();
    qint64 result = 0;
    for (const QChar character : timeStamp) {
        const int digit = character.unicode() - '0';
        if (digit < 0 || digit > 9)
            return timeStamp.toLongLong();
        result = result * 10 + digit;
    }
    return result;
}

JobTime::JobTime(bool is24HourClock)
    : m_format(is24HourClock ? QStringLiteral("MM/dd/yyyy HH:mm") : QStringLiteral("MM/dd/yyyy HH:mma"))
{
    if (!is24HourClock) {
        const QString marker = QStringLiteral("a");
        m_morning = QTime(1, 0).toString(marker);
        m_afternoon = QTime(13, 0).toString(marker);
    }
    const QString digit = QTime(0, 0).toString(QStringLiteral("h"));
    m_zero = digit.size() == 1 ? digit.at(0).unicode() : 0;
    tzset();
    // Two instants that have every digit: where Qt writes them otherwise, it writes all.
    m_isPlain = m_zero != 0; // text() needs it for the probes
    for (const qint64 probe : {Q_INT64_C(1234567890123), Q_INT64_C(951826154000)})
        m_isPlain = m_isPlain && text(probe) == textOfQt(probe);
}

QString JobTime::text(qint64 milliseconds) const
{
    // Rounded toward the past; before 1970 Qt answers anyway.
    const qint64 seconds = milliseconds / 1000;
    if (!m_isPlain || seconds < firstPlainSecond || seconds >= firstSecondBeyond)
        return textOfQt(milliseconds);

    const auto moment = static_cast<std::time_t>(seconds);
    std::tm local = {};
    if (!localtime_r(&moment, &local))
        return textOfQt(milliseconds);

    constexpr int length = 16;
    const QString &marker = local.tm_hour < 12 ? m_morning : m_afternoon;
    QString result(length + marker.size(), Qt::Uninitialized);
    QChar *place = result.data();
    const auto writeTwo = [&place, this](int number) {
        *place++ = QChar(ushort(m_zero + number / 10));
        *place++ = QChar(ushort(m_zero + number % 10));
    };
    const int year = local.tm_year + 1900;
    writeTwo(local.tm_mon + 1);
    *place++ = QLatin1Char('/');
    writeTwo(local.tm_mday);
    *place++ = QLatin1Char('/');
    writeTwo(year / 100);
    writeTwo(year % 100);
    *place++ = QLatin1Char(' ');
    writeTwo(local.tm_hour);
    *place++ = QLatin1Char(':');
    writeTwo(local.tm_min);
    std::copy(marker.cbegin(), marker.cend(), place);
    return result;
}

QByteArray JobTime::circumstances() const
{
    // The zone is that of TZ, and where it is not set that of a file.
    QByteArray result = qEnvironmentVariableIsSet("TZ") ? 'T' + qgetenv("TZ") : QByteArray();
    struct stat file = {};
    if (::stat("/etc/localtime", &file) == 0) {
        for (const qint64 number : {qint64(file.st_dev), qint64(file.st_ino), qint64(file.st_mtim.tv_sec),
                                    qint64(file.st_mtim.tv_nsec)})
            result += ' ' + QByteArray::number(number);
    }
    const QString writing =
        QString::number(m_zero) + QLatin1Char('\n') + m_morning + QLatin1Char('\n') + m_afternoon;
    return result + '\n' + writing.toUtf8();
}

QString JobTime::textOfQt(qint64 milliseconds) const
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toString(m_format);
}
