// Names keyboard layouts for the settings file, and reads what the compositor is given.
#include "layoutcode.h"

#include <zblocalelanguages.h>

QString layoutCode(const QString &layout, const QString &variant)
{
    if (layout.isEmpty() || variant.isEmpty())
        return layout;
    return QStringLiteral("%1(%2)").arg(layout, variant);
}

QString layoutInEnvironment(const QString &text)
{
    QString layout;
    QString variant;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const int equals = line.indexOf(QLatin1Char('='));
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed();
        if (equals >= 0 && key == QLatin1String("XKB_DEFAULT_LAYOUT"))
            layout = value;
        if (equals >= 0 && key == QLatin1String("XKB_DEFAULT_VARIANT"))
            variant = value;
    }
    return layoutCode(layout, variant);
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
