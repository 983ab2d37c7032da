// Reads the command line.
#include "commandline.h"

#include <QtCore/QCommandLineParser>

#include <cstdlib>

std::variant<Options, EarlyEnd> readCommandLine(const QStringList &arguments,
                                                const QString &stateDirectoryOfUnit)
{
    const QCommandLineOption stateDirectory(
        QStringLiteral("state-directory"),
        QStringLiteral(
            "Keep the state in <directory>; by default in $STATE_DIRECTORY or /var/lib/zbutilityd."),
        QStringLiteral("directory"));
    const QCommandLineOption virtualDevice(
        QStringLiteral("virtual-device"),
        QStringLiteral("Export the control interface com.corvanta.VirtualDevice1 too, for tests."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Utility daemon of the device, on the system bus."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({stateDirectory, virtualDevice});

    if (!parser.parse(arguments))
        return EarlyEnd{parser.errorText(), EXIT_FAILURE};
    if (parser.isSet(help))
        return EarlyEnd{parser.helpText(), EXIT_SUCCESS};
    if (parser.isSet(version))
        return EarlyEnd{QStringLiteral("zbutilityd ") + QStringLiteral(ZBUTILITYD_VERSION), EXIT_SUCCESS};
    if (!parser.positionalArguments().isEmpty())
        return EarlyEnd{
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()),
            EXIT_FAILURE};

    Options options;
    options.isVirtualDevice = parser.isSet(virtualDevice);
    if (parser.isSet(stateDirectory)) {
        options.stateDirectory = parser.value(stateDirectory);
        if (options.stateDirectory.isEmpty())
            return EarlyEnd{QStringLiteral("The state directory is empty."), EXIT_FAILURE};
    } else if (!stateDirectoryOfUnit.isEmpty()) {
        // systemd separates several folders by colons; the unit has one.
        options.stateDirectory = stateDirectoryOfUnit.section(QLatin1Char(':'), 0, 0);
    } else {
        options.stateDirectory = QStringLiteral("/var/lib/zbutilityd");
    }
    return options;
}
