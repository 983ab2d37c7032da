// Registration of the types of the QML module Corvanta.SettingsApplication.
#include "applicationtypes.h"

#include "clockcheck.h"
#include "networktime.h"
#include "printqueueprobe.h"
#include "qmlfunctions.h"
#include "servicepresence.h"

#include <QtQml/QQmlEngine>
#include <QtQml/qqml.h>

namespace {

constexpr char module[] = "Corvanta.SettingsApplication";
constexpr int majorVersion = 1;
constexpr int minorVersion = 0;

template <class Type> QObject *create(QQmlEngine *engine, QJSEngine *)
{
    return new Type(engine);
}

template <class Type> void registerSingleton()
{
    qmlRegisterSingletonType<Type>(module, majorVersion, minorVersion, Type::staticMetaObject.className(),
                                   create<Type>);
}

} // namespace

void registerApplicationTypes()
{
    qmlRegisterType<NetworkTime>(module, majorVersion, minorVersion, "NetworkTime");
    qmlRegisterType<ClockCheck>(module, majorVersion, minorVersion, "ClockCheck");
    qmlRegisterType<ServicePresence>(module, majorVersion, minorVersion, "ServicePresence");
    qmlRegisterType<PrintQueueProbe>(module, majorVersion, minorVersion, "PrintQueueProbe");
    registerSingleton<ToolOutput>();
    registerSingleton<KeyboardLayouts>();
    registerSingleton<ListSearch>();
    registerSingleton<PresetNames>();
    registerSingleton<PrinterFiles>();
}
