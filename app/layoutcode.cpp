// Names keyboard layouts for the settings file.
#include "layoutcode.h"

#include <zblocalelanguages.h>

QString layoutCode(const QString &layout, const QString &variant)
{
    if (layout.isEmpty() || variant.isEmpty())
        return layout;
    return QStringLiteral("%1(%2)").arg(layout, variant);
}

QStringList layoutCodes()
{
    // Positions are the same in every object of the process, so also in the one of the back end.
    const ZBLocaleLanguages languages(nullptr);
    QStringList codes;
    for (const ZBLocaleLanguages::ZBKeyboardInfo &info : languages.getKeyboardLayoutInfo())
        codes += layoutCode(info.layout, info.variant);
    return codes;
}
