// zbcompositor: starts the compositor from the device's environment file, for a person or for a trial of the
// keyboard.
#include "endrequest.h"
#include "environmentfile.h"
#include "keyboardtrial.h"
#include "processend.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdio>

namespace {

int fail(const QString &sentence)
{
    QTextStream(stderr) << "zbcompositor: " << sentence << '\n';
    return 1;
}

QString textField()
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("zbtextfield"));
}

bool areKeyCodes(const QStringList &texts)
{
    // Of what an X server has for keys. xdotool takes 8 and 9 for the digits, since those are names of keys.
    constexpr int lowest = 10;
    constexpr int highest = 255;
    return !texts.isEmpty() && std::all_of(texts.begin(), texts.end(), [](const QString &text) {
        bool isNumber = false;
        const int code = text.toInt(&isNumber);
        return isNumber && text == QString::number(code) && code >= lowest && code <= highest;
    });
}

int runTrial(const QByteArray &environmentFile, const QStringList &keyCodes, const QString &picture)
{
    if (!areKeyCodes(keyCodes))
        return fail(QStringLiteral("--type takes key codes from 10 to 255 with commas between them"));
    KeyboardTrial trial(textField());
    QString complaint = trial.start(environmentFile);
    if (complaint.isEmpty())
        complaint = trial.type(keyCodes);
    if (complaint.isEmpty() && !picture.isEmpty())
        complaint = trial.writePicture(picture);
    if (EndRequest::hasCome())
        return fail(QStringLiteral("told to end"));
    if (!complaint.isEmpty())
        return fail(complaint);
    QTextStream(stdout) << trial.typed().join(QString()) << '\n';
    return 0;
}

int runForPerson(const QByteArray &environmentFile, QStringList command, const EndRequest &endRequest)
{
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!environment.contains(QStringLiteral("DISPLAY"))
        && !environment.contains(QStringLiteral("WAYLAND_DISPLAY")))
        return fail(QStringLiteral("there is no display; try --type 29,47,24"));
    Compositor compositor;
    const QString complaint = compositor.start(environment, environmentFile);
    if (!complaint.isEmpty())
        return fail(complaint);

    QProcess client;
    client.setProcessChannelMode(QProcess::ForwardedChannels);
    client.setProcessEnvironment(compositor.clientEnvironment());
    QEventLoop untilEnd;
    QObject::connect(&client, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &untilEnd,
                     &QEventLoop::quit);
    QObject::connect(&client, &QProcess::errorOccurred, &untilEnd, &QEventLoop::quit);
    QObject::connect(&endRequest, &EndRequest::came, &untilEnd, &QEventLoop::quit);
    client.start(command.takeFirst(), command);
    untilEnd.exec();
    if (client.error() == QProcess::FailedToStart)
        return fail(client.errorString());
    endProcess(client);
    return client.exitStatus() == QProcess::NormalExit ? client.exitCode() : 1;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral(
            "Starts a Wayland compositor with the keyboard that %1 describes, and COMMAND in it, or a text "
            "field.")
            .arg(QLatin1String(waylandEnvironmentFile)));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption type(
        QStringLiteral("type"),
        QStringLiteral(
            "On a screen in memory, press the keys with these X key codes (29,47,24 are y, ; and q "
            "of a US keyboard) and print what the text field receives."),
        QStringLiteral("codes"));
    const QCommandLineOption picture(QStringLiteral("picture"),
                                     QStringLiteral("With --type: write a picture of the screen."),
                                     QStringLiteral("file"));
    parser.addOptions({type, picture});
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("the client and its arguments"),
                                 QStringLiteral("[COMMAND...]"));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.process(application);

    QFile file(QString::fromLatin1(waylandEnvironmentFile));
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
    const QByteArray content = file.readAll();
    const QStringList command = parser.positionalArguments();
    if (parser.isSet(type) && !command.isEmpty())
        return fail(QStringLiteral("--type types in a text field and takes no command"));
    if (parser.isSet(picture) && !parser.isSet(type))
        return fail(QStringLiteral("--picture needs --type"));
    const EndRequest endRequest;
    if (parser.isSet(type))
        return runTrial(content, parser.value(type).split(QLatin1Char(','), Qt::SkipEmptyParts),
                        parser.value(picture));
    return runForPerson(content, command.isEmpty() ? QStringList{textField()} : command, endRequest);
}
