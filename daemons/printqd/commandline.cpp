// Reads the command line.
#include "commandline.h"

#include <QtCore/QCommandLineParser>

#include <cstdlib>
#include <optional>

namespace {

const char defaultPrinter[] = "ipp://localhost/printers/BrackenXL";
constexpr int defaultLimit = 10000;
// A list of the GUIDs of more jobs nears what a bus carries in one message (32 MiB).
constexpr int highestLimit = 500000;
constexpr int mostJobs = 100000;

QString versionText()
{
    return QStringLiteral("printqd ") + QStringLiteral(PRINTQD_VERSION);
}

/// The number between \a lowest and \a highest that \a text is; none if it is no such number.
std::optional<int> numberOf(const QString &text, int lowest, int highest)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= lowest && number <= highest ? std::optional<int>(number) : std::nullopt;
}

EarlyEnd wrong(const QString &text)
{
    return {text, EXIT_FAILURE};
}

QCommandLineOption option(const char *name, const char *description, const char *value = "")
{
    return {QLatin1String(name), QLatin1String(description), QLatin1String(value)};
}

} // namespace

std::variant<Options, EarlyEnd> readCommandLine(const QStringList &arguments,
                                                const QString &stateDirectoryOfUnit)
{
    const QCommandLineOption virtualDevice =
        option("virtual-device",
               "Export the control interfaces com.corvanta.VirtualDevice1 and VirtualPrintQueue1 "
               "too, for tests.");
    const QCommandLineOption stateDirectory = option(
        "state-directory",
        "Keep the jobs in <directory>; by default in $STATE_DIRECTORY or /var/lib/printqd.", "directory");
    const QCommandLineOption withoutScheduler =
        option("without-scheduler", "Follow no scheduler: nothing comes, and what is ordered waits.");
    const QCommandLineOption printer = option(
        "printer", "Follow this queue of a scheduler; by default ipp://localhost/printers/BrackenXL.", "URI");
    const QCommandLineOption historyLimit =
        option("history-limit",
               "Keep <number> jobs, 1 to 500000; by default 10000. The oldest finished ones go.", "number");
    const QCommandLineOption jobs =
        option("jobs", "On a virtual device: begin with <number> believable jobs, up to 100000.", "number");

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Print queue daemon of the device, on the system bus."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({virtualDevice, stateDirectory, withoutScheduler, printer, historyLimit, jobs});

    if (!parser.parse(arguments))
        return wrong(parser.errorText());
    if (parser.isSet(help))
        return EarlyEnd{parser.helpText(), EXIT_SUCCESS};
    if (parser.isSet(version))
        return EarlyEnd{versionText(), EXIT_SUCCESS};
    if (!parser.positionalArguments().isEmpty())
        return wrong(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));

    Options options;
    options.isVirtualDevice = parser.isSet(virtualDevice);
    options.hasScheduler = !parser.isSet(withoutScheduler);
    options.stateDirectory = QStringLiteral("/var/lib/printqd");
    // systemd separates several folders by colons; the unit has one.
    if (!stateDirectoryOfUnit.isEmpty())
        options.stateDirectory = stateDirectoryOfUnit.section(QLatin1Char(':'), 0, 0);
    if (parser.isSet(stateDirectory))
        options.stateDirectory = parser.value(stateDirectory);
    if (options.stateDirectory.isEmpty())
        return wrong(QStringLiteral("The state directory is empty."));

    if (parser.isSet(printer) && !options.hasScheduler)
        return wrong(QStringLiteral("There is no printer without a scheduler."));
    options.printer = parser.isSet(printer) ? parser.value(printer) : QLatin1String(defaultPrinter);
    if (!options.printer.startsWith(QLatin1String("ipp://"))
        && !options.printer.startsWith(QLatin1String("ipps://")))
        return wrong(QStringLiteral("The printer '%1' is no URI of a queue, such as %2.")
                         .arg(options.printer, QLatin1String(defaultPrinter)));

    options.historyLimit = defaultLimit;
    if (parser.isSet(historyLimit)) {
        const std::optional<int> number = numberOf(parser.value(historyLimit), 1, highestLimit);
        if (!number)
            return wrong(QStringLiteral("The history limit is 1 to %1, not '%2'.")
                             .arg(highestLimit)
                             .arg(parser.value(historyLimit)));
        options.historyLimit = *number;
    }
    if (parser.isSet(jobs)) {
        const std::optional<int> number = numberOf(parser.value(jobs), 0, mostJobs);
        if (!number)
            return wrong(QStringLiteral("The number of jobs is 0 to %1, not '%2'.")
                             .arg(mostJobs)
                             .arg(parser.value(jobs)));
        if (!options.isVirtualDevice)
            return wrong(QStringLiteral("Only a virtual device begins with jobs."));
        options.jobs = *number;
    }
    return options;
}
