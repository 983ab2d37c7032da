// The stations of the tour through the Settings application.
#include "picturetour.h"

#include "storedvalue.h"
#include "tourreading.h"
#include "waiting.h"

#include <zbsettingsqmlenums.h>

#include <QtCore/QProcess>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <cstdio>

namespace {

constexpr int stateMilliseconds = 5000;
constexpr int answerMilliseconds = 1000;
constexpr int processMilliseconds = 20000;

struct Page
{
    int tab;
    const char *name;
};

constexpr Page pages[] = {{ZBSettingsTabNames::GENERAL, "general"},
                          {ZBSettingsTabNames::DATE_TIME, "date-time"},
                          {ZBSettingsTabNames::NETWORKING, "networking"},
                          {ZBSettingsTabNames::SYSTEM_UPDATES, "system-updates"},
                          {ZBSettingsTabNames::LANGUAGES, "languages"},
                          {ZBSettingsTabNames::USERS_PASSWORDS, "users-passwords"},
                          {ZBSettingsTabNames::PRINTER, "printer"},
                          {ZBSettingsTabNames::PRINTER_ALIGNMENT, "printer-alignment"},
                          {ZBSettingsTabNames::PRINTER_PRESETS, "presets"},
                          {ZBSettingsTabNames::PRINTER_ADVANCED, "printer-advanced"},
                          {ZBSettingsTabNames::PRINTER_HISTORY, "print-history"}};

} // namespace

PictureTour::PictureTour(QQuickWindow *window, const QString &directory)
    : m_window(window)
    , m_driver(window)
    , m_directory(directory)
    , m_output(stdout)
{
}

int PictureTour::run()
{
    if (!m_directory.mkpath(QStringLiteral("."))) {
        report(false, QStringLiteral("cannot make the folder %1").arg(m_directory.path()));
        return 1;
    }
    photographPages();
    photographNotice();
    demonstrateBrightness();
    demonstrateTabSelection();
    demonstrateInternet();
    demonstrateAbout();
    demonstrateCalibrationReset();
    demonstrateKeyboardLayout();
    demonstrateClock();
    demonstratePrinting();
    demonstrateHistory();
    return m_failures == 0 ? 0 : 1;
}

void PictureTour::photographPages()
{
    for (const Page &page : pages) {
        turnTo(page.tab);
        // What the page asks others, they mostly answer at once.
        if (page.tab == ZBSettingsTabNames::DATE_TIME)
            waitUntil([this] { return !m_driver.visibleText(QStringLiteral("networkTime")).isEmpty(); },
                      answerMilliseconds);
        if (page.tab == ZBSettingsTabNames::PRINTER_HISTORY)
            waitUntil([this] { return m_driver.visibleItem(QStringLiteral("history.none")) != nullptr; },
                      answerMilliseconds);
        writePicture(QLatin1String(page.name));
    }

    turnTo(ZBSettingsTabNames::GENERAL);
    scrollTo(0.5);
    writePicture(QStringLiteral("general-middle"));
    scrollTo(1);
    writePicture(QStringLiteral("general-end"));
    scrollTo(0);
    for (const Page &page : pages) {
        if (page.tab != ZBSettingsTabNames::PRINTER && page.tab != ZBSettingsTabNames::PRINTER_ALIGNMENT
            && page.tab != ZBSettingsTabNames::PRINTER_ADVANCED)
            continue;
        turnTo(page.tab);
        scrollTo(1);
        writePicture(QLatin1String(page.name) + QStringLiteral("-end"));
        scrollTo(0);
    }

    const struct
    {
        int tab;
        QString control;
        QString picture;
    } choices[] = {
        {ZBSettingsTabNames::GENERAL, QStringLiteral("dimmingInactive"), QStringLiteral("general-choices")},
        {ZBSettingsTabNames::DATE_TIME, QStringLiteral("timezone"), QStringLiteral("date-time-zones")},
        {ZBSettingsTabNames::PRINTER, QStringLiteral("ditheringMethod"), QStringLiteral("printer-dithering")},
        {ZBSettingsTabNames::PRINTER_PRESETS, QStringLiteral("presets.save"),
         QStringLiteral("presets-name")}};
    for (const auto &choice : choices) {
        turnTo(choice.tab);
        QQuickItem *const control = m_driver.visibleItem(choice.control);
        if (!control) {
            report(false, QStringLiteral("there is no control for %1").arg(choice.control));
            continue;
        }
        m_driver.click(*control);
        writePicture(choice.picture);
        // Leaving the page closes what lies over it.
        showTab(ZBSettingsTabNames::USERS_PASSWORDS);
    }
}

void PictureTour::photographNotice()
{
    turnTo(ZBSettingsTabNames::GENERAL);
    showTab(ZBSettingsTabNames::TABNAME_MAX);
    writePicture(QStringLiteral("no-such-tab"));
}

void PictureTour::demonstrateBrightness()
{
    turnTo(ZBSettingsTabNames::GENERAL);
    QQuickItem *const slider = m_driver.visibleItem(QStringLiteral("brightnessLevel"));
    if (!slider) {
        report(false, QStringLiteral("there is no brightness slider"));
        return;
    }
    const int before = qRound(slider->property("value").toDouble());
    const int after = before == 3 ? 8 : 3;
    const bool isVirtualDevice = m_device.clearCalls();
    const double handle = 27; // from the end of the slider to the middle of its handle there
    const auto place = [slider, handle](int level) {
        return QPointF(handle + (slider->width() - 2 * handle) * (level - 1) / 8, slider->height() / 2);
    };
    m_driver.drag(*slider, place(before), place(after));
    writePicture(QStringLiteral("general-brightness-moved"));

    const QString file = settingsFile();
    const QString stored = storedValue(file, QStringLiteral("display"), QStringLiteral("brightnessLevel"));
    report(stored == QString::number(after),
           QStringLiteral("the brightness slider was moved from %1 to %2, %3 holds '%4'")
               .arg(QString::number(before), QString::number(after), file, stored));
    if (!isVirtualDevice)
        return;

    VirtualDeviceControl::Call last;
    for (const VirtualDeviceControl::Call &call : m_device.calls()) {
        if (call.method == QLatin1String("setDisplayBrightness"))
            last = call;
    }
    const QVariant level = last.arguments.value(0);
    report(last.signature == QLatin1String("u") && level.toUInt() == uint(after),
           QStringLiteral(
               "the utility daemon was last called with setDisplayBrightness, signature '%1', value %2")
               .arg(last.signature, level.toString()));
}

void PictureTour::demonstrateTabSelection()
{
    turnTo(ZBSettingsTabNames::GENERAL);
    const int tab = ZBSettingsTabNames::SYSTEM_UPDATES;
    QProcess other;
    other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    other.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--select-tab"), QString::number(tab)});
    const bool turned =
        waitUntil([this] { return m_window->property("currentTab").toInt() == tab; }, processMilliseconds);
    waitUntil([&other] { return other.state() == QProcess::NotRunning; }, processMilliseconds);
    report(turned,
           QStringLiteral("process %1 wrote %2 to the local socket, the application shows tab %3 (%4)")
               .arg(QStringLiteral("'zbsettings --select-tab %1'").arg(tab), QString::number(tab),
                    m_window->property("currentTab").toString(),
                    m_driver.visibleText(QStringLiteral("pageTitle"))));
    writePicture(QStringLiteral("tab-selected-by-another-process"));
}

void PictureTour::demonstrateInternet()
{
    if (!m_device.isThere()) {
        report(false,
               QStringLiteral("the internet state cannot be changed: there is no utility daemon of a virtual "
                              "device on the system bus (start this program with zbvirtualdevice)"));
        return;
    }
    turnTo(ZBSettingsTabNames::NETWORKING);
    sayInternet(true, QStringLiteral("there"));
    sayInternet(false, QStringLiteral("gone"));
    writePicture(QStringLiteral("internet-gone"));
    turnTo(ZBSettingsTabNames::SYSTEM_UPDATES);
    writePicture(QStringLiteral("internet-gone-updates"));
    turnTo(ZBSettingsTabNames::NETWORKING);
    sayInternet(true, QStringLiteral("back"));
    writePicture(QStringLiteral("internet-back"));
    m_device.followRoutes();
}

void PictureTour::sayInternet(bool connected, const QString &word)
{
    const QString expected = connected
        ? QCoreApplication::translate("NetworkingPage", "Connected to the internet")
        : QCoreApplication::translate("NetworkingPage", "Not connected to the internet");
    const auto shown = [this] { return m_driver.visibleText(QStringLiteral("internetState")); };
    const bool worked = m_device.setInternetState(connected)
        && waitUntil([&shown, &expected] { return shown() == expected; }, stateMilliseconds);
    report(worked,
           QStringLiteral("the daemon says that the internet is %1, the page says '%2'").arg(word, shown()));
}

bool PictureTour::click(const QString &item)
{
    QQuickItem *const target = m_driver.visibleItem(item);
    if (target)
        m_driver.click(*target);
    else
        report(false, QStringLiteral("there is no %1 to touch").arg(item));
    return target != nullptr;
}

void PictureTour::turnTo(int tab)
{
    QQuickItem *const entry = m_driver.visibleItem(QStringLiteral("tab.%1").arg(tab));
    if (entry)
        m_driver.click(*entry);
    if (m_window->property("currentTab").toInt() != tab)
        report(false, QStringLiteral("the application does not turn to tab %1").arg(tab));
}

void PictureTour::showTab(int tab)
{
    QMetaObject::invokeMethod(m_window, "showTab", Q_ARG(QVariant, tab));
}

void PictureTour::scrollTo(double share)
{
    QQuickItem *const flickable = m_driver.visibleItem(QStringLiteral("pageScroll"));
    if (!flickable)
        return;
    const double hidden = flickable->property("contentHeight").toDouble() - flickable->height();
    flickable->setProperty("contentY", qMax(0.0, hidden * share));
}

void PictureTour::writePicture(const QString &name)
{
    const QString file = m_directory.filePath(name + QStringLiteral(".png"));
    const QImage picture = m_driver.picture().convertToFormat(QImage::Format_RGB32);
    report(!picture.isNull() && picture.save(file), QStringLiteral("picture %1").arg(file));
}

void PictureTour::skip(const QString &what)
{
    m_output << "skipped " << what << '\n';
    m_output.flush();
}

void PictureTour::report(bool worked, const QString &what)
{
    if (!worked)
        ++m_failures;
    m_output << (worked ? "ok " : "FAILED ") << what << '\n';
    m_output.flush();
}
