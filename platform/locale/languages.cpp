// The languages of the user interface: the table, which row fits the process, and their names in one of them.
// ICU takes the language as an argument, so that the locale of the process does not matter.
#include "languages.h"

#include <QtCore/QLocale>

#include <unicode/ucasemap.h>
#include <unicode/uldnames.h>

#include <algorithm>
#include <memory>

using LanguageInfo = ZBLocaleLanguages::ZBLanguageInfo;

namespace {

constexpr int longestName = 256;

LanguageInfo row(const QString &code, const QString &locale, const QString &name)
{
    return {code, locale, name};
}

struct CloseDisplayNames
{
    void operator()(ULocaleDisplayNames *names) const { uldn_close(names); }
};
using DisplayNames = std::unique_ptr<ULocaleDisplayNames, CloseDisplayNames>;

DisplayNames openDisplayNames(const QString &locale)
{
    UDisplayContext contexts[] = {UDISPCTX_CAPITALIZATION_FOR_UI_LIST_OR_MENU, UDISPCTX_STANDARD_NAMES};
    UErrorCode status = U_ZERO_ERROR;
    DisplayNames names(uldn_openForContext(locale.toLatin1().constData(), contexts, 2, &status));
    return U_SUCCESS(status) ? std::move(names) : DisplayNames();
}

QString displayName(const DisplayNames &names, const LanguageInfo &language)
{
    if (!names)
        return language.name;
    UChar text[longestName];
    UErrorCode status = U_ZERO_ERROR;
    const int length = uldn_localeDisplayName(names.get(), language.locale.toLatin1().constData(), text,
                                              longestName, &status);
    return U_SUCCESS(status) && length > 0 && length < longestName ? QString::fromUtf16(text, length)
                                                                   : language.name;
}

struct CloseCaseMap
{
    void operator()(UCaseMap *map) const { ucasemap_close(map); }
};
using CaseMap = std::unique_ptr<UCaseMap, CloseCaseMap>;

// Nothing but the first letter changes.
CaseMap openCaseMap(const QString &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    CaseMap map(ucasemap_open(
        locale.toLatin1().constData(),
        U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_LOWERCASE | U_TITLECASE_NO_BREAK_ADJUSTMENT, &status));
    return U_SUCCESS(status) ? std::move(map) : CaseMap();
}

// CLDR's own capitalisation for lists leaves out some languages, such as Polish and Norwegian.
QString capitalised(const CaseMap &map, const QString &name)
{
    if (!map)
        return name;
    UChar text[longestName];
    UErrorCode status = U_ZERO_ERROR;
    const int length = ucasemap_toTitle(map.get(), text, longestName,
                                        reinterpret_cast<const UChar *>(name.utf16()), name.size(), &status);
    return U_SUCCESS(status) && length < longestName ? QString::fromUtf16(text, length) : name;
}

// Position of the row with the language and region of \a wanted, else of the first row with its language and
// script; -1 when there is none.
int positionOf(const QLocale &wanted)
{
    const QVector<LanguageInfo> &table = languageTable();
    const auto positionWhere = [&table](const auto &fits) {
        const auto found = std::find_if(table.begin(), table.end(), fits);
        return found == table.end() ? -1 : int(found - table.begin());
    };
    const QString code = wanted.name().toLower();
    const int position = positionWhere([&](const LanguageInfo &info) { return info.code == code; });
    if (position >= 0)
        return position;
    const QString language = code.section(QLatin1Char('_'), 0, 0) + QLatin1Char('_');
    return positionWhere([&](const LanguageInfo &info) {
        return info.code.startsWith(language) && QLocale(info.locale).script() == wanted.script();
    });
}

} // namespace

const QVector<LanguageInfo> &languageTable()
{
    // Chinese needs its script, or ICU says "Chinese (China)", which tells nobody which characters are meant.
    static const QVector<LanguageInfo> table{
        row(QStringLiteral("ar_sa"), QStringLiteral("ar_SA"), QStringLiteral("Arabic (Saudi Arabia)")),
        row(QStringLiteral("bg_bg"), QStringLiteral("bg_BG"), QStringLiteral("Bulgarian (Bulgaria)")),
        row(QStringLiteral("cs_cz"), QStringLiteral("cs_CZ"), QStringLiteral("Czech (Czechia)")),
        row(QStringLiteral("da_dk"), QStringLiteral("da_DK"), QStringLiteral("Danish (Denmark)")),
        row(QStringLiteral("de_de"), QStringLiteral("de_DE"), QStringLiteral("German (Germany)")),
        row(QStringLiteral("el_gr"), QStringLiteral("el_GR"), QStringLiteral("Greek (Greece)")),
        row(QStringLiteral("en_us"), QStringLiteral("en_US"), QStringLiteral("English (United States)")),
        row(QStringLiteral("en_gb"), QStringLiteral("en_GB"), QStringLiteral("English (United Kingdom)")),
        row(QStringLiteral("es_es"), QStringLiteral("es_ES"), QStringLiteral("Spanish (Spain)")),
        row(QStringLiteral("es_mx"), QStringLiteral("es_MX"), QStringLiteral("Spanish (Mexico)")),
        row(QStringLiteral("fi_fi"), QStringLiteral("fi_FI"), QStringLiteral("Finnish (Finland)")),
        row(QStringLiteral("fr_fr"), QStringLiteral("fr_FR"), QStringLiteral("French (France)")),
        row(QStringLiteral("fr_ca"), QStringLiteral("fr_CA"), QStringLiteral("French (Canada)")),
        row(QStringLiteral("he_il"), QStringLiteral("he_IL"), QStringLiteral("Hebrew (Israel)")),
        row(QStringLiteral("hr_hr"), QStringLiteral("hr_HR"), QStringLiteral("Croatian (Croatia)")),
        row(QStringLiteral("hu_hu"), QStringLiteral("hu_HU"), QStringLiteral("Hungarian (Hungary)")),
        row(QStringLiteral("id_id"), QStringLiteral("id_ID"), QStringLiteral("Indonesian (Indonesia)")),
        row(QStringLiteral("it_it"), QStringLiteral("it_IT"), QStringLiteral("Italian (Italy)")),
        row(QStringLiteral("ja_jp"), QStringLiteral("ja_JP"), QStringLiteral("Japanese (Japan)")),
        row(QStringLiteral("ko_kr"), QStringLiteral("ko_KR"), QStringLiteral("Korean (South Korea)")),
        row(QStringLiteral("nb_no"), QStringLiteral("nb_NO"), QStringLiteral("Norwegian Bokmål (Norway)")),
        row(QStringLiteral("nl_nl"), QStringLiteral("nl_NL"), QStringLiteral("Dutch (Netherlands)")),
        row(QStringLiteral("pl_pl"), QStringLiteral("pl_PL"), QStringLiteral("Polish (Poland)")),
        row(QStringLiteral("pt_br"), QStringLiteral("pt_BR"), QStringLiteral("Portuguese (Brazil)")),
        row(QStringLiteral("pt_pt"), QStringLiteral("pt_PT"), QStringLiteral("Portuguese (Portugal)")),
        row(QStringLiteral("ro_ro"), QStringLiteral("ro_RO"), QStringLiteral("Romanian (Romania)")),
        row(QStringLiteral("ru_ru"), QStringLiteral("ru_RU"), QStringLiteral("Russian (Russia)")),
        row(QStringLiteral("sk_sk"), QStringLiteral("sk_SK"), QStringLiteral("Slovak (Slovakia)")),
        row(QStringLiteral("sl_si"), QStringLiteral("sl_SI"), QStringLiteral("Slovenian (Slovenia)")),
        row(QStringLiteral("sv_se"), QStringLiteral("sv_SE"), QStringLiteral("Swedish (Sweden)")),
        row(QStringLiteral("th_th"), QStringLiteral("th_TH"), QStringLiteral("Thai (Thailand)")),
        row(QStringLiteral("tr_tr"), QStringLiteral("tr_TR"), QStringLiteral("Turkish (Türkiye)")),
        row(QStringLiteral("uk_ua"), QStringLiteral("uk_UA"), QStringLiteral("Ukrainian (Ukraine)")),
        row(QStringLiteral("vi_vn"), QStringLiteral("vi_VN"), QStringLiteral("Vietnamese (Vietnam)")),
        row(QStringLiteral("zh_cn"), QStringLiteral("zh_Hans_CN"),
            QStringLiteral("Chinese (Simplified, China)")),
        row(QStringLiteral("zh_tw"), QStringLiteral("zh_Hant_TW"),
            QStringLiteral("Chinese (Traditional, Taiwan)")),
    };
    return table;
}

int languagePosition(const QStringList &uiLanguages)
{
    for (const QString &uiLanguage : uiLanguages) {
        const QLocale wanted(uiLanguage);
        if (wanted.language() == QLocale::C)
            continue;
        int position = positionOf(wanted);
        // The other written form of the same language, which every reader of this one knows.
        if (position < 0 && wanted.language() == QLocale::NorwegianNynorsk)
            position = positionOf(QLocale(QLocale::NorwegianBokmal, QLocale::Norway));
        if (position >= 0)
            return position;
    }
    return positionOf(QLocale(QLocale::English, QLocale::UnitedStates));
}

QStringList translatedLanguageNames(const QString &locale)
{
    const DisplayNames names = openDisplayNames(locale);
    const CaseMap caseMap = openCaseMap(locale);
    QStringList translated;
    translated.reserve(languageTable().size());
    for (const LanguageInfo &language : languageTable())
        translated.append(capitalised(caseMap, displayName(names, language)));
    return translated;
}
