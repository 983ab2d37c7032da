// zbsettings: the Settings application of the label printer.
#include "commandline.h"
#include "picturetour.h"
#include "settingsapplication.h"
#include "tabselection.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QOpenGLContext>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRendererInterface>

#include <cstdio>

namespace {

constexpr int failure = 1;

int complain(const QString &line)
{
    std::fprintf(stderr, "zbsettings: %s\n", qPrintable(line));
    return failure;
}

QStringList argumentList(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    return arguments;
}

void nameApplication()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Corvanta"));
    // Also the name of the local socket through which another process selects a tab.
    QCoreApplication::setApplicationName(QStringLiteral("zbsettings"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZB_VERSION));
}

void doWithoutDisplay()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
}

/// Qt Quick ends the program where OpenGL is missing, unless it is told not to use it.
void chooseRenderer()
{
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && !QOpenGLContext().create())
        QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
}

void chooseFont()
{
    const QStringList families = QFontDatabase().families();
    for (const QString &family :
         {QStringLiteral("Inter"), QStringLiteral("Noto Sans"), QStringLiteral("DejaVu Sans")}) {
        if (families.contains(family)) {
            QGuiApplication::setFont(QFont(family));
            return;
        }
    }
}

int runWindow(int argc, char **argv, const CommandLine &commandLine)
{
    const bool takesPictures = commandLine.task == CommandLine::TakePictures;
    if (takesPictures)
        doWithoutDisplay();
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    chooseRenderer();
    chooseFont();

    SettingsApplication settings;
    SettingsApplication::Options options;
    options.tab = commandLine.tab;
    options.size = commandLine.size;
    options.animated = !takesPictures;
    if (!settings.show(options))
        return complain(QStringLiteral("the user interface cannot be loaded"));
    if (takesPictures)
        return PictureTour(settings.window(), commandLine.pictureDirectory).run();
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    nameApplication();
    const CommandLine commandLine = readCommandLine(argumentList(argc, argv));
    switch (commandLine.task) {
    case CommandLine::ShowHelp:
        std::fputs(qPrintable(commandLine.help), stdout);
        return 0;
    case CommandLine::ShowVersion:
        std::printf("zbsettings %s\n", ZB_VERSION);
        return 0;
    case CommandLine::Refuse:
        return complain(commandLine.error);
    case CommandLine::SelectTab: {
        const QString error = selectTab(QCoreApplication::applicationName(), commandLine.tab);
        return error.isEmpty() ? 0 : complain(error);
    }
    case CommandLine::ShowWindow:
    case CommandLine::TakePictures:
        break;
    }
    return runWindow(argc, argv, commandLine);
}
