// Reads the command line of the Settings application.
#include "commandline.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

namespace {

// The pages are made for 800 by 480; in less than the least their texts have no room.
constexpr QSize leastSize(640, 400);
constexpr QSize greatestSize(8192, 8192);

const char helpText[] = R"(Usage: zbsettings [OPTIONS]
The Settings application of the label printer.

  --tab N         open at the tab with number N (0 General, 1 Date & Time, 2 Networking,
                  3 System Updates, 4 Languages, 5 Users & Passwords, 6 Printer,
                  7 Printer alignment, 8 Presets, 9 About, 10 Printer advanced,
                  11 Print history)
  --size WxH      size of the window, 640x400 or more; 800x480 when not given
  --select-tab N  ask the Settings application that is running to turn to tab N, and end
  --pictures DIR  drive the application without a display: write a picture of every page into DIR,
                  move the brightness slider, select a tab from another process, take the internet
                  away and bring it back, compare the About page with the tools, reset the supply
                  calibration, choose a keyboard layout, set the clock, save a preset and load it,
                  print the test page; print three documents, print one of them again, kill the
                  print queue, clear the history; print what worked, and end with 0 only if all
                  of it did.
                  Changes stored settings: made for the virtual device (zbvirtualdevice)
  -h, --help      print this text
  -v, --version   print the version
)";

CommandLine refusal(const QString &error)
{
    CommandLine commandLine;
    commandLine.task = CommandLine::Refuse;
    commandLine.error = error;
    return commandLine;
}

bool readTab(const QString &text, int &tab)
{
    bool isNumber = false;
    tab = text.toInt(&isNumber);
    return isNumber && tab >= 0;
}

bool readSize(const QString &text, QSize &size)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return match.hasMatch() && size.boundedTo(greatestSize) == size && size.expandedTo(leastSize) == size;
}

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    const QCommandLineOption tabOption(QStringLiteral("tab"), QString(), QStringLiteral("N"));
    const QCommandLineOption sizeOption(QStringLiteral("size"), QString(), QStringLiteral("WxH"));
    const QCommandLineOption selectOption(QStringLiteral("select-tab"), QString(), QStringLiteral("N"));
    const QCommandLineOption picturesOption(QStringLiteral("pictures"), QString(), QStringLiteral("DIR"));
    const QCommandLineOption helpOption(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption versionOption(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    QCommandLineParser parser;
    parser.addOptions({tabOption, sizeOption, selectOption, picturesOption, helpOption, versionOption});

    if (!parser.parse(arguments))
        return refusal(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return refusal(QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));

    CommandLine commandLine;
    commandLine.help = QLatin1String(helpText);
    if (parser.isSet(helpOption)) {
        commandLine.task = CommandLine::ShowHelp;
        return commandLine;
    }
    if (parser.isSet(versionOption)) {
        commandLine.task = CommandLine::ShowVersion;
        return commandLine;
    }

    for (const QCommandLineOption &option : {tabOption, selectOption}) {
        if (parser.isSet(option) && !readTab(parser.value(option), commandLine.tab))
            return refusal(QStringLiteral("'%1' is not the number of a tab.").arg(parser.value(option)));
    }
    if (parser.isSet(sizeOption) && !readSize(parser.value(sizeOption), commandLine.size)) {
        return refusal(QStringLiteral("'%1' is not a size between 640x400 and 8192x8192.")
                           .arg(parser.value(sizeOption)));
    }
    if (parser.isSet(selectOption) && parser.isSet(picturesOption))
        return refusal(QStringLiteral("--select-tab and --pictures cannot go together."));
    if (parser.isSet(selectOption))
        commandLine.task = CommandLine::SelectTab;
    if (parser.isSet(picturesOption)) {
        commandLine.task = CommandLine::TakePictures;
        commandLine.pictureDirectory = parser.value(picturesOption);
        if (commandLine.pictureDirectory.isEmpty())
            return refusal(QStringLiteral("--pictures needs a directory."));
    }
    return commandLine;
}
