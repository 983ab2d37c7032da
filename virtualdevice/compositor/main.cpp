// zbcompositor: starts the compositor from the device's environment file, for a person or for a trial of the
// keyboard.
#include "environmentfile.h"
#include "keyboardtrial.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTextStream>

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

int runTrial(const QByteArray &environmentFile, const QStringList &keyCodes, const QString &picture)
{
    KeyboardTrial trial(textField());
    QString complaint = trial.start(environmentFile);
    if (!complaint.isEmpty())
        return fail(complaint);
    QTextStream(stdout) << trial.type(keyCodes).join(QString()) << '\n';
    if (!picture.isEmpty())
        complaint = trial.writePicture(picture);
    return complaint.isEmpty() ? 0 : fail(complaint);
}

int runForPerson(const QByteArray &environmentFile, QStringList command)
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
    client.start(command.takeFirst(), command);
    if (!client.waitForFinished(-1))
        return fail(client.errorString());
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
    if (parser.isSet(type))
        return runTrial(content, parser.value(type).split(QLatin1Char(','), Qt::SkipEmptyParts),
                        parser.value(picture));
    const QStringList command = parser.positionalArguments();
    return runForPerson(content, command.isEmpty() ? QStringList{textField()} : command);
}
