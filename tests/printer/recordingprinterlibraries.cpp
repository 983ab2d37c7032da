// The classes that note their calls.
#include "recordingprinterlibraries.h"

#include "cupssupport.h"
#include "preset.h"
#include "presetlist.h"

#include <QtCore/QHash>

#include <memory>
#include <vector>

using namespace RecordingPrinterLibraries;

namespace {

QString written(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString written(int value)
{
    return QString::number(value);
}

QString written(double value)
{
    const QString text = QString::number(value, 'g', 17);
    return text.contains(QLatin1Char('.')) || text.contains(QLatin1Char('n')) ? text
                                                                              : text + QStringLiteral(".0");
}

QString written(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString written(const QStringList &list)
{
    QStringList entries;
    for (const QString &entry : list)
        entries.append(written(entry));
    return QLatin1Char('[') + entries.join(QStringLiteral(", ")) + QLatin1Char(']');
}

template <typename... Arguments> void note(const char *function, const Arguments &...arguments)
{
    const QStringList list{written(arguments)...};
    state().calls.append(
        QStringLiteral("%1(%2)").arg(QLatin1String(function), list.join(QStringLiteral(", "))));
}

bool flag(const char *getter)
{
    note(getter);
    return state().flags.value(QLatin1String(getter));
}

int number(const char *getter)
{
    note(getter);
    return state().numbers.value(QLatin1String(getter));
}

/// Presets that findPreset() gave out or addPreset() took.
std::vector<std::unique_ptr<Preset>> keptPresets;
/// A preset is noted by the name that the test looked it up by.
QHash<const Preset *, QString> nameOfPreset;

} // namespace

State &RecordingPrinterLibraries::state()
{
    static State theState;
    return theState;
}

void RecordingPrinterLibraries::reset()
{
    keptPresets.clear();
    nameOfPreset.clear();
    state() = State();
}

QStringList RecordingPrinterLibraries::takeCalls()
{
    QStringList result;
    result.swap(state().calls);
    return result;
}

QStringList RecordingPrinterLibraries::changes(const QStringList &calls)
{
    QStringList result;
    for (const QString &call : calls) {
        if (call.startsWith(QLatin1String("set")))
            result.append(call);
    }
    return result;
}

struct CupsSupport::Private
{
};

CupsSupport::CupsSupport()
    : d(nullptr)
{
    note("new CupsSupport");
}

CupsSupport::~CupsSupport()
{
    delete d;
    note("delete CupsSupport");
}

bool CupsSupport::getInverse() const
{
    return flag("getInverse");
}

void CupsSupport::setInverse(bool value)
{
    note("setInverse", value);
}

bool CupsSupport::getMirror() const
{
    return flag("getMirror");
}

void CupsSupport::setMirror(bool value)
{
    note("setMirror", value);
}

bool CupsSupport::getOverprint() const
{
    return flag("getOverprint");
}

void CupsSupport::setOverprint(bool value)
{
    note("setOverprint", value);
}

bool CupsSupport::getWhiteBase() const
{
    return flag("getWhiteBase");
}

void CupsSupport::setWhiteBase(bool value)
{
    note("setWhiteBase", value);
}

bool CupsSupport::getRibbonSaver() const
{
    return flag("getRibbonSaver");
}

void CupsSupport::setRibbonSaver(bool value)
{
    note("setRibbonSaver", value);
}

_CupsOrientation CupsSupport::getOrientation() const
{
    note("getOrientation");
    return static_cast<_CupsOrientation>(state().orientation);
}

void CupsSupport::setOrientation(_CupsOrientation value)
{
    note("setOrientation", int(value));
}

int CupsSupport::getDithering() const
{
    note("getDithering");
    return state().dithering;
}

void CupsSupport::setDithering(int value)
{
    note("setDithering", value);
}

int CupsSupport::getCut() const
{
    note("getCut");
    return state().cut;
}

void CupsSupport::setCut(int value)
{
    note("setCut", value);
}

int CupsSupport::getColorHeadOffset(int head) const
{
    note("getColorHeadOffset", head);
    return state().numbers.value(QStringLiteral("getColorHeadOffset%1").arg(head));
}

void CupsSupport::setColorHeadOffset(int value, int head)
{
    note("setColorHeadOffset", value, head);
}

int CupsSupport::getFeed() const
{
    return number("getFeed");
}

void CupsSupport::setFeed(int value)
{
    note("setFeed", value);
}

double CupsSupport::getStop() const
{
    note("getStop");
    return state().stop;
}

void CupsSupport::setStop(double value)
{
    note("setStop", value);
}

int CupsSupport::getOffsetH1() const
{
    return number("getOffsetH1");
}

void CupsSupport::setOffsetH1(int value)
{
    note("setOffsetH1", value);
}

int CupsSupport::getOffsetH2() const
{
    return number("getOffsetH2");
}

void CupsSupport::setOffsetH2(int value)
{
    note("setOffsetH2", value);
}

int CupsSupport::getOffsetV1() const
{
    return number("getOffsetV1");
}

void CupsSupport::setOffsetV1(int value)
{
    note("setOffsetV1", value);
}

int CupsSupport::getOffsetV2() const
{
    return number("getOffsetV2");
}

void CupsSupport::setOffsetV2(int value)
{
    note("setOffsetV2", value);
}

int CupsSupport::getR1Tension() const
{
    return number("getR1Tension");
}

void CupsSupport::setR1Tension(int value)
{
    note("setR1Tension", value);
}

int CupsSupport::getR2Tension() const
{
    return number("getR2Tension");
}

void CupsSupport::setR2Tension(int value)
{
    note("setR2Tension", value);
}

struct Preset::Private
{
    QString name;
    QStringList options;
};

Preset::Preset(const QString &modelName, const QString &fileName, Preset::_State presetState,
               const QStringList &options, const QString &displayName, const QString &empty, int index)
    : d(new Private{displayName, options})
{
    note("new Preset", modelName, fileName, int(presetState), options, displayName, empty, index);
}

Preset::~Preset()
{
    delete d;
}

QStringList Preset::options() const
{
    return d->options;
}

namespace {

QString written(const Preset *preset)
{
    return preset ? QLatin1String("preset ") + nameOfPreset.value(preset, QStringLiteral("made"))
                  : QStringLiteral("null");
}

void notePreset(const char *function, const Preset *preset)
{
    state().calls.append(QStringLiteral("%1(%2)").arg(QLatin1String(function), written(preset)));
}

} // namespace

struct PresetList::Private
{
};

PresetList::PresetList(const QString &modelName, bool flag)
    : d(nullptr)
{
    note("new PresetList", modelName, flag);
}

PresetList::~PresetList()
{
    delete d;
    note("delete PresetList");
}

Preset *PresetList::findPreset(const QString &name) const
{
    note("findPreset", name);
    if (!state().presets.contains(name))
        return nullptr;
    const QStringList calls = state().calls;
    keptPresets.push_back(std::make_unique<Preset>(QString(), QString(), static_cast<Preset::_State>(2),
                                                   state().presets.value(name), name, QString(), 0));
    state().calls = calls;
    nameOfPreset.insert(keptPresets.back().get(), name);
    return keptPresets.back().get();
}

void PresetList::addPreset(Preset *preset)
{
    keptPresets.emplace_back(preset);
    notePreset("addPreset", preset);
}

QString PresetList::deletePreset(Preset *preset)
{
    notePreset("deletePreset", preset);
    return state().nameAfterDeletion;
}

void PresetList::setCurrentPreset(Preset *preset)
{
    notePreset("setCurrentPreset", preset);
}

int PresetList::applyLastPresetIndex()
{
    note("applyLastPresetIndex");
    return state().lastIndex;
}

void PresetList::save(const QStringList &predefinedNames)
{
    note("save", predefinedNames);
}

QStringList PresetList::getUserPresetNames() const
{
    note("getUserPresetNames");
    return state().userNames;
}

QStringList PresetList::getPredefinedPresetNames() const
{
    note("getPredefinedPresetNames");
    return state().predefinedNames;
}
