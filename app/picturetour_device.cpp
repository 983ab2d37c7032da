// The stations of the tour that act on the device: About, supply calibration, keyboard layout, clock. What
// the pages say is compared with what the system's own tools say.
#include "picturetour.h"

#include "layoutcode.h"
#include "storedvalue.h"
#include "tourreading.h"
#include "waiting.h"

#include <zbsettingsqmlenums.h>

#include <QtCore/QDateTime>
#include <QtCore/QRegularExpression>
#include <QtQuick/QQuickItem>

namespace {

constexpr int pageMilliseconds = 10000;
constexpr int entryHeight = 52;

/// Of a whole virtual device. Elsewhere the clock, the boot-loader environment and the compositor's file are
/// the machine's own.
QString clockLog()
{
    return qEnvironmentVariable("ZBVIRTUALDEVICE_CLOCK_LOG");
}

QStringList bootValues(const QStringList &names)
{
    const QStringList lines =
        outputOf(QStringLiteral("fw_printenv"), QStringList(QStringLiteral("-n")) + names)
            .split(QLatin1Char('\n'));
    QStringList values;
    for (int i = 0; i < names.size(); ++i)
        values += lines.value(i).trimmed();
    return values;
}

const QStringList &calibrationNames()
{
    static const QStringList names = {QStringLiteral("tachLow"), QStringLiteral("tachHigh"),
                                      QStringLiteral("cutterTrans"), QStringLiteral("supplyTrans"),
                                      QStringLiteral("supplyRefl")};
    return names;
}

QString orAbsent(const QString &value)
{
    return value.isEmpty() ? QCoreApplication::translate("AboutPage", "Not available") : value;
}

QDateTime lastTimeInClockLog()
{
    const QByteArray line = contentOf(clockLog()).trimmed().split('\n').last();
    return QDateTime::fromSecsSinceEpoch(line.split('.').first().toLongLong());
}

QString networkTimeByTool()
{
    return outputOf(QStringLiteral("timedatectl"),
                    {QStringLiteral("show"), QStringLiteral("--property=NTP"), QStringLiteral("--value")})
        .trimmed();
}

} // namespace

bool PictureTour::showAbout()
{
    turnTo(ZBSettingsTabNames::ABOUT);
    const auto isRead = [this] {
        const QQuickItem *const refresh = m_driver.visibleItem(QStringLiteral("about.refresh"));
        return refresh && refresh->isEnabled();
    };
    return waitUntil(isRead, pageMilliseconds);
}

void PictureTour::compareShown(const QString &item, const QString &expected, const QString &source)
{
    const QString shown = m_driver.visibleText(item);
    report(shown == expected,
           QStringLiteral("the About page shows '%1', %2 says '%3'").arg(shown, source, expected));
}

void PictureTour::demonstrateAbout()
{
    if (!showAbout()) {
        report(false, QStringLiteral("the About page does not end reading"));
        return;
    }
    writePicture(QStringLiteral("about"));
    scrollTo(0.55);
    writePicture(QStringLiteral("about-middle"));
    scrollTo(1);
    writePicture(QStringLiteral("about-end"));

    compareShown(QStringLiteral("about.serialNumber"),
                 orAbsent(bootValues({QStringLiteral("serialNumber")}).first()),
                 QStringLiteral("fw_printenv serialNumber"));
    compareShown(QStringLiteral("about.version"), QStringLiteral("3.1.1.11"), QStringLiteral("the back end"));
    compareShown(QStringLiteral("about.ethernetAddress"),
                 orAbsent(bootValues({QStringLiteral("ethaddr")}).first()),
                 QStringLiteral("fw_printenv ethaddr"));
    compareShown(
        QStringLiteral("about.wirelessAddress"),
        orAbsent(QString::fromUtf8(contentOf(QStringLiteral("/sys/class/net/wlan0/address"))).trimmed()),
        QStringLiteral("the kernel"));
    compareStorage();
    compareOffsets();

    const QStringList calibration = bootValues(calibrationNames());
    if (calibration.join(QString()).isEmpty())
        return compareShown(QStringLiteral("about.calibration"), orAbsent(QString()),
                            QStringLiteral("fw_printenv"));
    for (int i = 0; i < calibration.size(); ++i)
        compareShown(QStringLiteral("about.calibration.%1").arg(i), orAbsent(calibration.at(i)),
                     QStringLiteral("fw_printenv ") + calibrationNames().at(i));
}

void PictureTour::compareOffsets()
{
    const QStringList names = {QStringLiteral("backstop"), QStringLiteral("hOffset"),
                               QStringLiteral("bMarkOffset"), QStringLiteral("gapOffset"),
                               QStringLiteral("tphHeat")};
    for (const int head : {1, 2}) {
        QStringList variables;
        for (const QString &name : names)
            variables += head == 1 ? name : name + QString::number(head);
        const QStringList values = bootValues(variables);
        const QString cells = QStringLiteral("about.offsets%1").arg(head);
        if (values.join(QString()).isEmpty()) {
            compareShown(cells, orAbsent(QString()), QStringLiteral("fw_printenv"));
            continue;
        }
        for (int i = 0; i < values.size(); ++i)
            compareShown(QStringLiteral("%1.%2").arg(cells).arg(i), orAbsent(values.at(i)),
                         QStringLiteral("fw_printenv ") + variables.at(i));
    }
}

void PictureTour::compareStorage()
{
    const QStringList lines =
        outputOf(QStringLiteral("df"), {QStringLiteral("-t"), QStringLiteral("ext4"), QStringLiteral("-h")})
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts)
            .mid(1);
    if (lines.isEmpty())
        return compareShown(QStringLiteral("about.storage"), orAbsent(QString()), QStringLiteral("df"));
    for (int i = 0; i < lines.size(); ++i) {
        const QStringList columns = lines.at(i).simplified().split(QLatin1Char(' '));
        const QString item = QStringLiteral("about.storage.%1").arg(i);
        const QString shown = m_driver.visibleText(item + QStringLiteral(".mountPoint")) + QLatin1Char(' ')
            + m_driver.visibleText(item + QStringLiteral(".used")) + QLatin1Char(' ')
            + m_driver.visibleText(item + QStringLiteral(".available"));
        // The page writes "2.9 GiB" for the tool's "2.9G". What is in use changes all the time.
        static const QRegularExpression unit(QStringLiteral(" ([KMGTPEZY])iB"));
        const QString compared = QString(shown).replace(unit, QStringLiteral("\\1"));
        const bool isShown = compared.contains(columns.value(0)) && compared.contains(columns.value(1))
            && compared.contains(columns.value(5));
        report(
            isShown,
            QStringLiteral("the About page shows '%1', df says '%2'").arg(shown, lines.at(i).simplified()));
    }
}

void PictureTour::demonstrateCalibrationReset()
{
    if (clockLog().isEmpty())
        return skip(
            QStringLiteral("the reset of the supply calibration, which needs a whole virtual device"));
    const QStringList before = bootValues(calibrationNames());
    if (!showAbout() || !click(QStringLiteral("about.resetCalibration")))
        return;
    writePicture(QStringLiteral("about-reset-confirmation"));
    if (!click(QStringLiteral("confirmation.confirm")))
        return;
    const QString deleted = QCoreApplication::translate("AboutPage", "Deleted");
    const auto isDeleted = [this, &deleted] {
        int count = 0;
        for (const int cell : {2, 3, 4})
            count += m_driver.visibleText(QStringLiteral("about.calibration.%1").arg(cell)) == deleted;
        return count == 3;
    };
    const bool isShown = waitUntil(isDeleted, pageMilliseconds);
    scrollTo(1);
    writePicture(QStringLiteral("about-reset-done"));

    const QStringList after = bootValues(calibrationNames());
    QStringList lines;
    for (int i = 0; i < after.size(); ++i)
        lines += QStringLiteral("%1='%2'").arg(calibrationNames().at(i), after.at(i));
    report(isShown && after == before.mid(0, 2) + QStringList({QString(), QString(), QString()})
               && !before.contains(QString()),
           QStringLiteral("the supply calibration was reset, fw_printenv says %1")
               .arg(lines.join(QLatin1Char(' '))));
}

void PictureTour::demonstrateKeyboardLayout()
{
    turnTo(ZBSettingsTabNames::LANGUAGES);
    if (!click(QStringLiteral("language")))
        return;
    writePicture(QStringLiteral("languages-list"));
    if (!click(QStringLiteral("language.cancel")) || !click(QStringLiteral("keyboardLayout")))
        return;
    writePicture(QStringLiteral("languages-keyboards"));
    m_driver.type(QStringLiteral("german"));
    writePicture(QStringLiteral("languages-keyboards-search"));
    if (clockLog().isEmpty()) {
        click(QStringLiteral("keyboardLayout.cancel"));
        return skip(QStringLiteral("the choice of a keyboard layout, which needs a whole virtual device"));
    }
    const QString layout = QStringLiteral("de");
    if (!click(QStringLiteral("keyboardLayout.%1").arg(layoutCodes().indexOf(layout))))
        return;
    writePicture(QStringLiteral("languages-german"));

    const QString file = QStringLiteral("/etc/corvanta/wayland.env");
    QString line;
    for (const QByteArray &text : contentOf(file).split('\n')) {
        if (text.startsWith("XKB_DEFAULT_LAYOUT"))
            line = QString::fromUtf8(text);
    }
    const QString stored =
        storedValue(settingsFile(), QStringLiteral("locale"), QStringLiteral("keyboardLayout"));
    report(line == QLatin1String("XKB_DEFAULT_LAYOUT=de") && stored == layout,
           QStringLiteral("the keyboard layout German was picked, %1 holds '%2', the setting is '%3'")
               .arg(file, line, stored));
}

void PictureTour::demonstrateClock()
{
    if (clockLog().isEmpty())
        return skip(QStringLiteral("setting the clock, which needs a whole virtual device"));
    turnTo(ZBSettingsTabNames::DATE_TIME);
    scrollTo(0);
    const QQuickItem *const automatic = m_driver.visibleItem(QStringLiteral("automaticDateTime"));
    if (automatic && automatic->property("checked").toBool())
        m_driver.click(*automatic);
    const bool isOff = waitForClockChooser();
    writePicture(QStringLiteral("date-time-network-off"));
    const QString byTool = networkTimeByTool();
    report(isOff && byTool == QLatin1String("no"),
           QStringLiteral("automatic date and time was turned off, timedatectl says NTP=%1").arg(byTool));
    if (!isOff)
        return;
    setClockByHand();
    turnNetworkTimeOn();
}

bool PictureTour::waitForClockChooser()
{
    const auto canBeSet = [this] {
        const QQuickItem *const chooser = m_driver.visibleItem(QStringLiteral("setClock"));
        return chooser && chooser->isEnabled();
    };
    return waitUntil(canBeSet, pageMilliseconds);
}

void PictureTour::setClockByHand()
{
    if (!click(QStringLiteral("setClock")))
        return;
    turnWheel(QStringLiteral("clock.day"), QStringLiteral("28"));
    turnWheel(QStringLiteral("clock.month"), QLocale().standaloneMonthName(2, QLocale::ShortFormat));
    QStringList days;
    for (const QString &year : {QStringLiteral("2027"), QStringLiteral("2028")}) {
        turnWheel(QStringLiteral("clock.year"), year);
        const QQuickItem *const wheel = m_driver.visibleItem(QStringLiteral("clock.day"));
        days += wheel ? wheel->property("entries").toStringList().value(
                    wheel->property("entries").toStringList().size() - 1)
                      : QString();
    }
    report(days == QStringList({QStringLiteral("28"), QStringLiteral("29")}),
           QStringLiteral("February 2027 offers %1 days, February 2028 %2").arg(days.first(), days.last()));

    turnWheel(QStringLiteral("clock.day"), QStringLiteral("29"));
    turnWheel(QStringLiteral("clock.hour"), QStringLiteral("9"));
    turnWheel(QStringLiteral("clock.half"), QLocale().pmText());
    turnWheel(QStringLiteral("clock.minute"), QStringLiteral("07"));
    writePicture(QStringLiteral("date-time-set"));
    const QDateTime target(QDate(2028, 2, 29), QTime(21, 7));
    if (!click(QStringLiteral("clock.set")))
        return;

    const auto isInLog = [&target] {
        const qint64 late = target.secsTo(lastTimeInClockLog());
        return late >= 0 && late < 10;
    };
    const bool wasSet = waitUntil(isInLog, pageMilliseconds);
    report(wasSet,
           QStringLiteral("the clock was set by hand to %1, the device's clock got %2")
               .arg(target.toString(Qt::ISODate), lastTimeInClockLog().toString(Qt::ISODate)));

    waitForClockChooser();
    const QQuickItem *const chooser = m_driver.visibleItem(QStringLiteral("setClock"));
    const bool moved =
        target.secsTo(QDateTime::currentDateTime()) < 60 && target <= QDateTime::currentDateTime();
    const QString text =
        chooser ? chooser->property(moved ? "description" : "warning").toString() : QString();
    report(!text.isEmpty(),
           QStringLiteral("this program's clock %1, the page says '%2'")
               .arg(moved ? QStringLiteral("shows it") : QStringLiteral("is not the device's"), text));
    writePicture(QStringLiteral("date-time-set-by-hand"));
}

void PictureTour::turnNetworkTimeOn()
{
    click(QStringLiteral("automaticDateTime"));
    const QString on = QCoreApplication::translate("DateTimePage", "On");
    const bool isOn = waitUntil(
        [this, &on] { return m_driver.visibleText(QStringLiteral("networkTime")) == on; }, pageMilliseconds);
    const QString byTool = networkTimeByTool();
    report(isOn && byTool == QLatin1String("yes"),
           QStringLiteral("automatic date and time was turned on, timedatectl says NTP=%1").arg(byTool));
    writePicture(QStringLiteral("date-time-network-on"));
}

void PictureTour::turnWheel(const QString &wheel, const QString &text)
{
    QQuickItem *const item = m_driver.visibleItem(wheel);
    const int target = item ? item->property("entries").toStringList().indexOf(text) : -1;
    if (target < 0)
        return report(false, QStringLiteral("the wheel %1 does not offer '%2'").arg(wheel, text));
    const auto way = [item, target] { return target - item->property("position").toInt(); };
    // Entries that are near the middle can be touched.
    for (int touches = 0; way() != 0 && touches < 100; ++touches) {
        const QPointF middle(item->width() / 2, item->height() / 2);
        m_driver.clickAt(*item, middle + QPointF(0, qBound(-2, way(), 2) * entryHeight));
    }
    if (way() != 0)
        report(false, QStringLiteral("the wheel %1 does not turn to '%2'").arg(wheel, text));
}
