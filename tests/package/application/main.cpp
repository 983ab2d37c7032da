#include <QCoreApplication>
#include <QTextStream>
#include <zbsettingsmain.h>
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(settings.KEY_DISPLAY_BRIGHTNESS(), 5);
    const QVariant level = settings.getSetting(settings.KEY_DISPLAY_BRIGHTNESS());
    QTextStream(stdout) << settings.KEY_DISPLAY_BRIGHTNESS() << ' ' << level.toInt() << '\n';
}
