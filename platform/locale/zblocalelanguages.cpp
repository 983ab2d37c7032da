// ZBLocaleLanguages: when the lists are made, and how objects share them.
#include "zblocalelanguages.h"

#include "installedlayouts.h"
#include "keyboardlayouts.h"
#include "languages.h"

#include <QtCore/QLocale>

#include <memory>

namespace {

// The lists in one language, each made when it is first asked for.
class Lists
{
public:
    explicit Lists(int currentLanguage)
        : m_currentLanguage(currentLanguage)
    {
    }

    int currentLanguage() const { return m_currentLanguage; }

    const QStringList &languageNames()
    {
        if (m_languageNames.isEmpty())
            m_languageNames = translatedLanguageNames(language().locale);
        return m_languageNames;
    }

    const QStringList &layoutNames()
    {
        if (m_layoutNames.isEmpty())
            m_layoutNames = ::layoutNames(layouts());
        return m_layoutNames;
    }

    // Apart from the names, which are shown at once: the table is needed only when a layout is chosen.
    const QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> &layoutTable()
    {
        if (m_layoutTable.isEmpty())
            m_layoutTable = ::layoutTable(layouts());
        return m_layoutTable;
    }

private:
    const QByteArray &layouts()
    {
        if (m_layouts.isEmpty())
            m_layouts = installedLayouts(language());
        return m_layouts;
    }

    const ZBLocaleLanguages::ZBLanguageInfo &language() const
    {
        return languageTable().at(m_currentLanguage);
    }

    const int m_currentLanguage;
    QStringList m_languageNames;
    QByteArray m_layouts;
    QStringList m_layoutNames;
    QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> m_layoutTable;
};

// The last language's lists stay for the next object; a process seldom runs in more than one.
std::shared_ptr<Lists> listsFor(const QLocale &locale)
{
    static QLocale lastLocale;
    static std::shared_ptr<Lists> lists;
    if (!lists || lastLocale != locale) {
        lists = std::make_shared<Lists>(languagePosition(locale.uiLanguages()));
        lastLocale = locale;
    }
    return lists;
}

} // namespace

struct ZBLocaleLanguages::Private
{
    Lists &lists()
    {
        if (!m_lists)
            m_lists = listsFor(QLocale());
        return *m_lists;
    }

private:
    std::shared_ptr<Lists> m_lists;
};

ZBLocaleLanguages::ZBLocaleLanguages(QObject *parent)
    : QObject(parent)
    , d(new Private)
{
}

ZBLocaleLanguages::~ZBLocaleLanguages()
{
    delete d;
}

QString ZBLocaleLanguages::getLanguageCode(int index) const
{
    return languageTable().value(index).code;
}

int ZBLocaleLanguages::getCurrentLanguageId() const
{
    return d->lists().currentLanguage();
}

QStringList ZBLocaleLanguages::getTrLanguageNamesList() const
{
    return d->lists().languageNames();
}

QStringList ZBLocaleLanguages::getTranslatedKeyboardLayoutList() const
{
    return d->lists().layoutNames();
}

QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> ZBLocaleLanguages::getKeyboardLayoutInfo() const
{
    return d->lists().layoutTable();
}
