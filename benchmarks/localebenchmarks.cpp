// The lists of languages and keyboard layouts, against reading the registry of layouts.
#include "benchmarks.h"
#include "pairedmeasurement.h"

#include "zblocalelanguages.h"

#include <QtCore/QLocale>

#include <memory>
#include <xkbcommon/xkbregistry.h>

namespace {

struct Unref
{
    void operator()(rxkb_context *context) const { rxkb_context_unref(context); }
};

// The one entry that is no layout but a place for the user's own, and that does not compile without it.
constexpr int userDefinedLayouts = 1;

int layoutsInRegistry()
{
    const std::unique_ptr<rxkb_context, Unref> context(rxkb_context_new(RXKB_CONTEXT_NO_FLAGS));
    if (!context || !rxkb_context_parse(context.get(), "evdev"))
        return -1;
    int count = 0;
    for (rxkb_layout *layout = rxkb_layout_first(context.get()); layout; layout = rxkb_layout_next(layout))
        ++count;
    return count - userDefinedLayouts;
}

/// Lists are kept for the next object of the same locale, so that the locale has to change for each.
void alternate(const QLocale &one, const QLocale &other)
{
    static bool isOne = false;
    isOne = !isOne;
    QLocale::setDefault(isOne ? one : other);
}

void makeLists(benchmark::State &state, const QLocale &one, const QLocale &other)
{
    int ourCount = 0;
    const Way ours{[&] { alternate(one, other); },
                   [&] {
                       const ZBLocaleLanguages locale(nullptr);
                       locale.getTrLanguageNamesList();
                       ourCount = locale.getTranslatedKeyboardLayoutList().size();
                   },
                   [&] { return ourCount; }};
    int count = 0;
    const Way plain{{}, [&] { count = layoutsInRegistry(); }, [&] { return count; }};
    measurePair(state, ours, plain, noTarget);
    QLocale::setDefault(QLocale::system());
}

/// As in a language that the device has not been started in before: the cache holds the last one.
void makeListsAnew(benchmark::State &state)
{
    makeLists(state, QLocale(QLocale::German, QLocale::Germany), QLocale(QLocale::French, QLocale::France));
}

/// As at every other start: two countries that share their language's lists.
void makeListsFromCache(benchmark::State &state)
{
    makeLists(state, QLocale(QLocale::German, QLocale::Germany), QLocale(QLocale::German, QLocale::Austria));
}

} // namespace

void registerLocaleBenchmarks()
{
    registerPair("language lists, at a start", makeListsFromCache);
    registerPair("language lists, another language", makeListsAnew);
}
