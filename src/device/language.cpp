// The slots of ZBSettingsMain for languages and keyboard layouts.
#include "zbsettingsmain.h"

#include "waylandenvironment.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>

#include <unistd.h>

QVariant ZBSettingsMain::getLanguageCode(int index)
{
    return d->locale.getLanguageCode(index);
}

int ZBSettingsMain::getLanguageIndex()
{
    return d->locale.getCurrentLanguageId();
}

QStringList ZBSettingsMain::getLanguageComboBoxModel()
{
    return d->locale.getTrLanguageNamesList();
}

QStringList ZBSettingsMain::getKeyboardLanguageComboBoxModel()
{
    return d->locale.getTranslatedKeyboardLayoutList();
}

void ZBSettingsMain::setKeyboardLanguage(int layoutIndex)
{
    const ZBLocaleLanguages::ZBKeyboardInfo keyboard = d->locale.getKeyboardLayoutInfo().value(layoutIndex);

    QFile file(QStringLiteral("/etc/corvanta/wayland.env"));
    if (!file.open(QIODevice::ReadWrite))
        qDebug() << "failed to open wayland file";
    const QString content = QString::fromUtf8(file.isOpen() ? file.readAll().constData() : "");
    file.close();

    // Rewritten in place and not replaced: the file may be a mount or a link, and its owner and mode are the
    // system's.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Truncate))
        qDebug() << "failed to reopen wayland file";
    if (file.isOpen())
        file.write(withKeyboardLayout(content, keyboard.layout, keyboard.variant).toLatin1());
    file.close();
    sync();
}
