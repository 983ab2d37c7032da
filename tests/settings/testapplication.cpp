// Another application of the device for the tests: holds a ZBSettingsMain and does what the test writes to
// its standard input, so that a test sees what a second process sees, and reads a file that its own process
// has not cached.
//
// One line a command and one line a reply, each the base64 text of a QVariantList: name and arguments one
// way, "ok" and the result or "exception" and its text the other way.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "testapplicationcommand.h"
#include "zbsettingsmain.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaProperty>
#include <QtCore/QSocketNotifier>

#include <csignal>
#include <exception>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void limitFileSize(int bytes)
{
    // A write beyond the limit then fails instead of ending the process.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes < 0 ? limit.rlim_max : rlim_t(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

class Application
{
public:
    QVariant carryOut(const QString &name, const QVariantList &arguments)
    {
        if (name == QLatin1String("construct")) {
            m_settings = std::make_unique<ZBSettingsMain>(nullptr, arguments.value(0).toBool());
            m_recorder = std::make_unique<EmissionRecorder>(m_settings.get());
        } else if (name == QLatin1String("destroy")) {
            m_settings.reset();
        } else if (name == QLatin1String("get")) {
            return arguments.size() == 1
                ? m_settings->getSetting(arguments.at(0).toString())
                : m_settings->getSetting(arguments.at(0).toString(), arguments.at(1));
        } else if (name == QLatin1String("set")) {
            m_settings->setSetting(arguments.at(0).toString(), arguments.at(1));
        } else if (name == QLatin1String("properties")) {
            return properties();
        } else if (name == QLatin1String("emitted values")) {
            return m_recorder->values(arguments.at(0).toString());
        } else if (name == QLatin1String("log")) {
            return m_log.texts();
        } else if (name == QLatin1String("limit file size")) {
            limitFileSize(arguments.at(0).toInt());
        } else {
            qFatal("no such command: %s", qPrintable(name));
        }
        return {};
    }

private:
    QVariantMap properties() const
    {
        QVariantMap result;
        const QMetaObject *const metaObject = m_settings->metaObject();
        for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject->propertyCount(); ++i)
            result.insert(QString::fromLatin1(metaObject->property(i).name()),
                          metaObject->property(i).read(m_settings.get()));
        return result;
    }

    MessageLog m_log;
    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<EmissionRecorder> m_recorder;
};

QVariantList replyTo(Application &application, const QVariantList &command)
{
    try {
        return {QStringLiteral("ok"), application.carryOut(command.value(0).toString(), command.mid(1))};
    } catch (const std::exception &exception) {
        return {QStringLiteral("exception"), QString::fromUtf8(exception.what())};
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(QString::fromLocal8Bit(argc > 1 ? argv[1] : argv[0]));
    const QCoreApplication qtApplication(argc, argv);
    Application application;

    QByteArray received;
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&application, &received] {
        char buffer[65536];
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0) {
            QCoreApplication::quit();
            return;
        }
        received.append(buffer, int(count));
        for (int end = received.indexOf('\n'); end >= 0; end = received.indexOf('\n')) {
            const QByteArray reply = commandLine(replyTo(application, commandOf(received.left(end))));
            received.remove(0, end + 1);
            qint64 written = 0;
            while (written < reply.size())
                written += write(STDOUT_FILENO, reply.constData() + written, size_t(reply.size() - written));
        }
    });
    return QCoreApplication::exec();
}
