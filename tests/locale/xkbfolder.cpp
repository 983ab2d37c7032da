// A folder of XKB data of the test's own, as XKB_CONFIG_ROOT takes it.
#include "xkbfolder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace {

QByteArray configItem(const QByteArray &name, const QByteArray &description)
{
    return "<configItem><name>" + name + "</name><description>" + description + "</description></configItem>";
}

QByteArray registryOf(const QList<XkbLayout> &layouts)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<!DOCTYPE xkbConfigRegistry SYSTEM \"xkb.dtd\">\n"
                     "<xkbConfigRegistry version=\"1.1\"><modelList/><layoutList>";
    for (const XkbLayout &layout : layouts) {
        xml += "<layout>" + configItem(layout.name, layout.description) + "<variantList>";
        for (const auto &variant : layout.variants)
            xml += "<variant>" + configItem(variant.first, variant.second) + "</variant>";
        xml += "</variantList></layout>";
    }
    return xml + "</layoutList><optionList/></xkbConfigRegistry>\n";
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

XkbFolder::XkbFolder(const QList<XkbLayout> &layouts)
{
    QDir(m_folder.path()).mkdir(QStringLiteral("rules"));
    QDir(m_folder.path()).mkdir(QStringLiteral("symbols"));
    setLayouts(layouts);
    for (const XkbLayout &layout : layouts)
        addSymbols(layout.name);
}

QByteArray XkbFolder::path() const
{
    return QFile::encodeName(m_folder.path());
}

QString XkbFolder::registryPath() const
{
    return m_folder.filePath(QStringLiteral("rules/evdev.xml"));
}

void XkbFolder::setRegistry(const QByteArray &bytes) const
{
    writeFile(registryPath(), bytes);
}

void XkbFolder::setLayouts(const QList<XkbLayout> &layouts) const
{
    setRegistry(registryOf(layouts));
}

void XkbFolder::removeSymbols(const QByteArray &layout) const
{
    QFile::remove(m_folder.filePath(QStringLiteral("symbols/") + QFile::decodeName(layout)));
}

void XkbFolder::addSymbols(const QByteArray &layout) const
{
    writeFile(m_folder.filePath(QStringLiteral("symbols/") + QFile::decodeName(layout)), QByteArray());
}
