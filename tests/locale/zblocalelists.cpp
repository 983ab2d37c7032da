// Prints the language and keyboard layout lists as JSON, or with --cost the microseconds that each step takes
// in a fresh process: the constructor, the first list of languages, the first list of keyboard layouts, the
// first layout table, and a second object with all three.
#include "zblocalelanguages.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cstdio>
#include <memory>

namespace {

template <typename Step> void printCost(const char *name, const Step &step)
{
    QElapsedTimer timer;
    timer.start();
    step();
    std::printf("%s %.1f\n", name, double(timer.nsecsElapsed()) / 1000);
}

void printCosts()
{
    std::unique_ptr<ZBLocaleLanguages> object;
    printCost("constructor", [&] { object = std::make_unique<ZBLocaleLanguages>(nullptr); });
    printCost("languages", [&] { object->getTrLanguageNamesList(); });
    printCost("keyboards", [&] { object->getTranslatedKeyboardLayoutList(); });
    printCost("table", [&] { object->getKeyboardLayoutInfo(); });
    printCost("second", [] {
        const ZBLocaleLanguages second(nullptr);
        second.getTrLanguageNamesList();
        second.getTranslatedKeyboardLayoutList();
        second.getKeyboardLayoutInfo();
    });
}

void printLists()
{
    const ZBLocaleLanguages languages(nullptr);
    const QStringList names = languages.getTrLanguageNamesList();
    QJsonArray codes;
    for (int i = 0; i < names.size(); ++i)
        codes.append(languages.getLanguageCode(i));

    QJsonArray keys;
    QJsonArray table;
    const auto layouts = languages.getKeyboardLayoutInfo();
    for (auto layout = layouts.begin(); layout != layouts.end(); ++layout) {
        keys.append(layout.key());
        table.append(QJsonArray{layout->language, layout->layout, layout->variant, layout->description});
    }

    const QJsonObject lists{
        {QStringLiteral("current"), languages.getCurrentLanguageId()},
        {QStringLiteral("codes"), codes},
        {QStringLiteral("languages"), QJsonArray::fromStringList(names)},
        {QStringLiteral("keyboards"),
         QJsonArray::fromStringList(languages.getTranslatedKeyboardLayoutList())},
        {QStringLiteral("keys"), keys},
        {QStringLiteral("table"), table},
    };
    std::puts(QJsonDocument(lists).toJson(QJsonDocument::Compact).constData());
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--cost")))
        printCosts();
    else
        printLists();
    return 0;
}
