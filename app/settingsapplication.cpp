// The QML engine and the window of the Settings application.
#include "settingsapplication.h"

#include "applicationtypes.h"
#include "iconprovider.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTimeZone>
#include <QtQuick/QQuickWindow>

namespace {

/// Where the QML module lies: beside the program in the build tree, below the same prefix when installed.
QStringList moduleDirectories()
{
    const QDir programs(QCoreApplication::applicationDirPath());
    QStringList directories;
    for (const QString &relative : {QStringLiteral(ZB_QML_DIRECTORY), QStringLiteral("../qml")}) {
        const QDir directory(programs.filePath(relative));
        if (directory.exists(QStringLiteral("Corvanta/Settings")))
            directories += directory.canonicalPath();
    }
    return directories;
}

/// The zones that a person would look for: "Region/City" and UTC, without the database's aliases and offsets.
QStringList timeZoneNames()
{
    static const QStringList regions = {QStringLiteral("Africa"),     QStringLiteral("America"),
                                        QStringLiteral("Antarctica"), QStringLiteral("Arctic"),
                                        QStringLiteral("Asia"),       QStringLiteral("Atlantic"),
                                        QStringLiteral("Australia"),  QStringLiteral("Europe"),
                                        QStringLiteral("Indian"),     QStringLiteral("Pacific")};
    QStringList names;
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds()) {
        const QString name = QString::fromLatin1(id);
        if (name.contains(QLatin1Char('/')) && regions.contains(name.section(QLatin1Char('/'), 0, 0)))
            names += name;
    }
    names += QStringLiteral("UTC");
    names.removeDuplicates();
    names.sort();
    return names;
}

} // namespace

SettingsApplication::SettingsApplication(QObject *parent)
    : QObject(parent)
{
    registerApplicationTypes();
    for (const QString &directory : moduleDirectories())
        m_engine.addImportPath(directory);
    m_engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
}

bool SettingsApplication::show(const Options &options)
{
    m_engine.setInitialProperties({{QStringLiteral("startTab"), options.tab},
                                   {QStringLiteral("width"), options.size.width()},
                                   {QStringLiteral("height"), options.size.height()},
                                   {QStringLiteral("animated"), options.animated},
                                   {QStringLiteral("timeZones"), timeZoneNames()}});
    m_engine.load(QUrl(QStringLiteral("qrc:/app/Main.qml")));
    return window() != nullptr;
}

QQuickWindow *SettingsApplication::window() const
{
    const QObjectList roots = m_engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.first());
}
