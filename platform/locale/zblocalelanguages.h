// ZBLocaleLanguages: the languages of the user interface and the keyboard layouts that the device offers.
//
// Two lists with positions that stay as they are while the object lives: a position in the list of languages
// is the index that getLanguageCode() takes, a position in the list of keyboard layouts is a key of the
// layout table.
#pragma once

#include "zblocalelanguages_export.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * Names are given in the language that the user interface runs in: the first of QLocale().uiLanguages() that
 * has a place in the list of languages. That is what QLocale::setDefault() set or else the environment
 * (LANGUAGE, LC_ALL, LC_MESSAGES, LANG), so the same that QTranslator::load() follows. It is fixed when the
 * object is first asked for anything; an application that changes its language makes a new object.
 *
 * The constructor does no work. Each list is made when it is first asked for and is then shared with every
 * later object of the process that runs in the same language. Nothing here fails: what is not
 * installed is left out, and a machine without any keyboard layouts is named in the log once.
 *
 * To be used from one thread.
 */
class ZBLOCALELANGUAGES_EXPORT ZBLocaleLanguages : public QObject
{
    Q_OBJECT

public:
    /// One keyboard layout. The names are those of XKB, see xkeyboard-config(7).
    struct ZBKeyboardInfo
    {
        QString language; ///< short code of the language that the layout is for, such as "de"; may be empty
        QString layout; ///< XKB layout, such as "de"; never empty
        QString variant; ///< XKB variant, such as "nodeadkeys"; empty for the plain layout
        QString description; ///< untranslated name, such as "German (no dead keys)"
    };

    /// One language of the user interface.
    struct ZBLanguageInfo
    {
        QString code; ///< language combined with region, such as "zh_cn"
        QString locale; ///< the locale of CLDR and ICU, with a script where it matters, such as "zh_Hans_CN"
        QString name; ///< untranslated name, such as "Chinese (Simplified, China)"
    };

    explicit ZBLocaleLanguages(QObject *parent);
    ~ZBLocaleLanguages() override;

    /// Code of the language at \a index, such as "en_us", in the form of the setting `language`; empty when
    /// there is no such position. The same position has the same code in every language of the user
    /// interface.
    QString getLanguageCode(int index) const;

    /// Position of the language that the user interface runs in. A language whose region is not in the list
    /// stands for the first one with the same language and script ("de_at" for "de_de", "zh_hk" for "zh_tw"),
    /// and Norwegian Nynorsk for Bokmål ("nb_no"); where no language fits, "en_us". Never out of range.
    int getCurrentLanguageId() const;

    /// Language names in the current language, each with a capital first letter where the script has any:
    /// "Portugiesisch (Brasilien)". All differ.
    QStringList getTrLanguageNamesList() const;

    /// Keyboard layout names in the current language, in its alphabetical order. All differ. A name that
    /// xkeyboard-config has no translation of is English. Never empty: where no layouts are installed, the
    /// one entry is "us", which is libxkbcommon's own default.
    QStringList getTranslatedKeyboardLayoutList() const;

    /// The keyboard layouts by their position in getTranslatedKeyboardLayoutList(): keys 0 to its length - 1.
    QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> getKeyboardLayoutInfo() const;

private:
    Q_DISABLE_COPY(ZBLocaleLanguages)
    struct Private;
    Private *d;
};
