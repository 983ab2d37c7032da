// The keyboard layouts that are installed on this machine, named in one language.
#include "installedlayouts.h"

#include "keyboardlayouts.h"
#include "layoutcache.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>

#include <unicode/uvernum.h>

namespace {

// "zh_cn" -> "zh_CN": how the catalogues' folders are named.
QString catalogueLocale(const QString &code)
{
    return code.section(QLatin1Char('_'), 0, 0) + QLatin1Char('_')
        + code.section(QLatin1Char('_'), 1).toUpper();
}

// Everything that the list is made from: the programs that make it, the language, the files.
QByteArray sourcesOf(const ZBLocaleLanguages::ZBLanguageInfo &language, const QByteArrayList &folders,
                     const QString &cataloguePath)
{
    QByteArrayList paths{QFile::encodeName(cataloguePath)};
    for (const QByteArray &folder : folders)
        paths << registryFile(folder) << symbolsFolder(folder);
    return "library " ZB_VERSION " ICU " U_ICU_VERSION " language " + language.locale.toLatin1() + ' '
        + fingerprintOf(paths);
}

} // namespace

QByteArray installedLayouts(const ZBLocaleLanguages::ZBLanguageInfo &language)
{
    const QByteArrayList folders = xkbFolders();
    const QString cataloguePath =
        installedCatalogue(QStringLiteral("xkeyboard-config"), catalogueLocale(language.code));
    const auto translated = [&](const QVector<KeyboardEntry> &entries) {
        return packedLayouts(entries, readCatalogue(cataloguePath), language.locale);
    };

    QByteArray layouts = cachedLayouts(sourcesOf(language, folders, cataloguePath), [&] {
        return translated(loadableEntries(readRegistry(folders), folders));
    });
    if (!layouts.isEmpty())
        return layouts;
    qWarning("No keyboard layouts in %s: offering \"us\" only", folders.join(" and ").constData());
    return translated({{"us", "", "en", "English (US)"}});
}
