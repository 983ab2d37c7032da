// Runs the benchmarks in a virtual device.
//
//   zbbenchmarks [--smoke] [--report BASE] [--benchmark_...]
//
// --smoke      only sees to it that everything runs and that the results are equal; no times are judged
// --report     writes the figures to BASE.md and BASE.json
// --benchmark_filter=REGEX, --benchmark_min_time=SECONDS and so on are Google Benchmark's
#include "benchmarks.h"
#include "ratioreport.h"

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

// A ratio that misses its target on a machine that does other things meanwhile may hold the next time.
constexpr int attempts = 3;

struct Options
{
    bool isSmoke = false;
    QString report;
};

void dropDebugLines(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtDebugMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

/// Takes our own options off \a arguments; false when one of them is wrong.
bool takeOptions(std::vector<char *> &arguments, Options &options)
{
    std::vector<char *> others;
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (std::strcmp(arguments[i], "--smoke") == 0) {
            options.isSmoke = true;
        } else if (std::strcmp(arguments[i], "--report") == 0) {
            if (++i == arguments.size())
                return false;
            options.report = QString::fromLocal8Bit(arguments[i]);
        } else {
            others.push_back(arguments[i]);
        }
    }
    arguments = others;
    return true;
}

/// Runs all benchmarks, then those again that miss their target.
void runAll(RatioReport &report)
{
    benchmark::RunSpecifiedBenchmarks(&report);
    for (int attempt = 1; attempt < attempts; ++attempt) {
        const QStringList misses = report.misses();
        if (misses.isEmpty() || report.hasError())
            return;
        std::printf("\nOnce more, what misses its target:\n");
        // The names of the operations hold nothing that means something else in a regular expression.
        const QString filter = QStringLiteral("^(%1)/").arg(misses.join(QLatin1Char('|')));
        benchmark::RunSpecifiedBenchmarks(&report, filter.toStdString());
    }
}

} // namespace

int main(int argumentCount, char **arguments)
{
    // Both are read once in a process and change what everything costs: without TZ, every look at a file's
    // time is followed by three looks at /etc/localtime.
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C.UTF-8");
    if (!qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_DIRECTORY")) {
        std::fprintf(stderr,
                     "The benchmarks write the user's settings file: run them in a virtual device.\n");
        return 2;
    }

    const QCoreApplication application(argumentCount, arguments);
    QCoreApplication::setApplicationName(QStringLiteral("zbbenchmarks"));
    qInstallMessageHandler(dropDebugLines);

    std::vector<char *> remaining(arguments, arguments + argumentCount);
    Options options;
    if (!takeOptions(remaining, options)) {
        std::fprintf(stderr, "--report needs a file name\n");
        return 2;
    }
    char fullTime[] = "--benchmark_min_time=2";
    char smokeTime[] = "--benchmark_min_time=0.002";
    remaining.insert(remaining.begin() + 1, options.isSmoke ? smokeTime : fullTime);
    int remainingCount = int(remaining.size());
    benchmark::Initialize(&remainingCount, remaining.data());
    if (benchmark::ReportUnrecognizedArguments(remainingCount, remaining.data()))
        return 2;

    registerSettingsBenchmarks();
    registerConstructionBenchmarks();
    registerNotificationBenchmarks();
    registerTabMessageBenchmarks();
    registerAboutBenchmarks();
    registerLocaleBenchmarks();
    registerPrinterOptionBenchmarks();
    registerHistoryBenchmarks(options.isSmoke);
    registerHistoryFetchBenchmarks(options.isSmoke);

    RatioReport report(!options.isSmoke);
    runAll(report);
    if (!options.report.isEmpty() && !report.write(options.report)) {
        std::fprintf(stderr, "Cannot write %s\n", qPrintable(options.report));
        return 1;
    }
    return report.hasError() || !report.misses().isEmpty() ? 1 : 0;
}
