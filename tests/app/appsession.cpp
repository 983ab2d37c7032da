// The Settings application in the process of the test, used as a person uses it.
#include "appsession.h"

#include <QtTest/QtTest>

namespace {
constexpr int dragSteps = 40;
}

AppSession::AppSession(int tab)
{
    SettingsApplication::Options options;
    options.tab = tab;
    options.animated = false;
    if (!m_application.show(options))
        qFatal("The application does not start.");
    m_driver = std::make_unique<WindowDriver>(window());
    window()->requestActivate();
    if (!QTest::qWaitForWindowActive(window()))
        qFatal("The window does not become active.");
}

QQuickWindow *AppSession::window() const
{
    return m_application.window();
}

void AppSession::waitForPicture()
{
    QSignalSpy drawn(window(), &QQuickWindow::frameSwapped);
    window()->update();
    if (!drawn.wait())
        qFatal("The window is not drawn.");
}

QQuickItem &AppSession::item(const QString &name)
{
    // Items take their final places when the window is drawn.
    waitForPicture();
    QQuickItem *const found = m_driver->visibleItem(name);
    if (!found)
        qFatal("There is no visible item '%s'.", qPrintable(name));
    m_driver->bringIntoView(*found);
    return *found;
}

bool AppSession::isVisible(const QString &name) const
{
    return m_driver->visibleItem(name) != nullptr;
}

QRectF AppSession::rectangle(const QString &name)
{
    waitForPicture();
    const QQuickItem *const found = m_driver->visibleItem(name);
    return found ? found->mapRectToScene(QRectF(0, 0, found->width(), found->height())) : QRectF();
}

QString AppSession::text(const QString &name) const
{
    return m_driver->visibleText(name);
}

QVariant AppSession::property(const QString &name, const char *property)
{
    return item(name).property(property);
}

void AppSession::click(const QString &name)
{
    const QQuickItem &target = item(name);
    const QPointF middle = target.mapToScene(QPointF(target.width() / 2, target.height() / 2));
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, middle.toPoint());
}

QPointF AppSession::handlePlace(const QQuickItem &slider, int value)
{
    const auto *const handle = slider.property("handle").value<QQuickItem *>();
    const double padding = slider.property("padding").toDouble();
    const double from = slider.property("from").toDouble();
    const double way = slider.width() - 2 * padding - handle->width();
    const double share = (value - from) / (slider.property("to").toDouble() - from);
    return {padding + handle->width() / 2 + way * share, slider.height() / 2};
}

QPoint AppSession::hold(const QString &name)
{
    QQuickItem &target = item(name);
    target.setProperty("delay", 60);
    target.setProperty("pause", 20);
    const QPoint place = target.mapToScene(QPointF(target.width() / 2, target.height() / 2)).toPoint();
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, place);
    return place;
}

void AppSession::drag(const QString &name, const QPointF &from, const QPointF &to)
{
    const QQuickItem &target = item(name);
    const auto place = [&target](const QPointF &point) { return target.mapToScene(point).toPoint(); };
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, place(from));
    for (int step = 1; step <= dragSteps; ++step)
        QTest::mouseMove(window(), place(from + (to - from) * step / dragSteps));
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, place(to));
}

void AppSession::slideFinger(const QString &name, const QPointF &from, const QPointF &to)
{
    static QTouchDevice *const screen = QTest::createTouchDevice();
    constexpr int finger = 0;
    // The item itself may move away under the finger.
    const QQuickItem &target = item(name);
    const QPointF start = target.mapToScene(from);
    const QPointF way = to - from;
    QTest::touchEvent(window(), screen).press(finger, start.toPoint(), window());
    for (int step = 1; step <= dragSteps; ++step)
        QTest::touchEvent(window(), screen)
            .move(finger, (start + way * step / dragSteps).toPoint(), window());
    QTest::touchEvent(window(), screen).release(finger, (start + way).toPoint(), window());
}

void AppSession::press(const QString &name, Qt::Key key)
{
    item(name).forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(window(), key);
}

int AppSession::currentTab() const
{
    return window()->property("currentTab").toInt();
}

void AppSession::turnTo(int tab)
{
    click(QStringLiteral("tab.%1").arg(tab));
}
