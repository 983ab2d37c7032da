// The QML module Corvanta.Settings 1.0: the back end of the Settings application, ready for `import`.
#pragma once

#include <QtQml/QQmlExtensionPlugin>

/**
 * Registers the back-end classes under their own names: ZBSettingsMain, ZBSettingsPrinter and
 * ZBPrinterHistory as singletons, one object of each an engine, and the enumeration holders as types that
 * cannot be created; and ZBPrintJobModel, which can be.
 *
 * ZBPrinterHistory shows its times by the 24-hour clock if the setting says so when the object is made, which
 * is when QML first uses it.
 */
class SettingsModule : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *uri) override;
};
