// Registration of the types of the QML module Corvanta.Settings.
#include "settingsmodule.h"

#include "guardedtype.h"
#include "zbprintjobmodel.h"

#include <zbprinterhistory.h>
#include <zbsettingsmain.h>
#include <zbsettingsprinter.h>
#include <zbsettingsqmlenums.h>

#include <QtQml/QQmlEngine>
#include <QtQml/qqml.h>

namespace {

constexpr int majorVersion = 1;
constexpr int minorVersion = 0;

QObject *createSettingsMain(QQmlEngine *engine, QJSEngine *scriptEngine)
{
    constexpr bool runLocalServer = true;
    return new GuardedType<ZBSettingsMain>(scriptEngine, engine, runLocalServer);
}

QObject *createSettingsPrinter(QQmlEngine *engine, QJSEngine *scriptEngine)
{
    return new GuardedType<ZBSettingsPrinter>(scriptEngine, engine);
}

bool is24HourClock(QQmlEngine *engine)
{
    static const int settingsType = qmlTypeId("Corvanta.Settings", majorVersion, minorVersion,
                                              ZBSettingsMain::staticMetaObject.className());
    auto *const settings = engine->singletonInstance<ZBSettingsMain *>(settingsType);
    return settings->getSetting(settings->KEY_DATETIME_24HOUR(), false).toBool();
}

QObject *createPrinterHistory(QQmlEngine *engine, QJSEngine *scriptEngine)
{
    return new GuardedType<ZBPrinterHistory>(scriptEngine, engine, is24HourClock(engine));
}

template <class Holder> void registerEnumerations(const char *uri)
{
    const char *const name = Holder::staticMetaObject.className();
    qmlRegisterUncreatableType<Holder>(
        uri, majorVersion, minorVersion, name,
        QStringLiteral("%1 only carries enumerations").arg(QLatin1String(name)));
}

} // namespace

void SettingsModule::registerTypes(const char *uri)
{
    qmlRegisterSingletonType<ZBSettingsMain>(
        uri, majorVersion, minorVersion, ZBSettingsMain::staticMetaObject.className(), createSettingsMain);
    qmlRegisterSingletonType<ZBSettingsPrinter>(uri, majorVersion, minorVersion,
                                                ZBSettingsPrinter::staticMetaObject.className(),
                                                createSettingsPrinter);
    qmlRegisterSingletonType<ZBPrinterHistory>(uri, majorVersion, minorVersion,
                                               ZBPrinterHistory::staticMetaObject.className(),
                                               createPrinterHistory);
    qmlRegisterType<ZBPrintJobModel>(uri, majorVersion, minorVersion,
                                     ZBPrintJobModel::staticMetaObject.className());
    registerEnumerations<ZBSettingsAboutInfoFields>(uri);
    registerEnumerations<QMLCupsEnums>(uri);
    registerEnumerations<ZBSettingsTabNames>(uri);
}
