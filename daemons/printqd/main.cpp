// The print queue daemon of the device: the program.
#include "commandline.h"
#include "daemon.h"
#include "jobwire.h"
#include "recordedcall.h"
#include "terminationsignals.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtDBus/QDBusConnection>

#include <cstdlib>

namespace {

int run(const Options &options, TerminationSignals &terminationSignals)
{
    Daemon daemon(options, QDBusConnection::systemBus());
    const QString failure = daemon.start();
    if (!failure.isEmpty()) {
        qCritical().noquote() << failure;
        return EXIT_FAILURE;
    }
    QObject::connect(&daemon, &Daemon::ended, qApp, &QCoreApplication::exit);
    QObject::connect(&terminationSignals, &TerminationSignals::received, qApp, &QCoreApplication::quit);
    terminationSignals.listen();

    const int exitStatus = QCoreApplication::exec();
    daemon.stop();
    return exitStatus;
}

} // namespace

int main(int argc, char **argv)
{
    TerminationSignals terminationSignals;
    qSetMessagePattern(QStringLiteral("printqd: %{message}"));
    registerRecordedCallTypes();
    registerJobTypes();
    const QCoreApplication application(argc, argv);

    const auto commandLine =
        readCommandLine(QCoreApplication::arguments(), qEnvironmentVariable("STATE_DIRECTORY"));
    if (const auto *const end = std::get_if<EarlyEnd>(&commandLine))
        return printAndEnd(*end);
    return run(std::get<Options>(commandLine), terminationSignals);
}
