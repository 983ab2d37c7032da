// CupsSupport: one option a getter and a setter, over the options' store.
#include "cupssupport.h"

#include "optionvalue.h"
#include "printeroptionstore.h"

#include <QtCore/QDebug>

#include <atomic>
#include <optional>

struct CupsSupport::Private
{
    bool isOn(PrinterOption option) { return switchIn(store.value(option)); }
    int wholeNumber(PrinterOption option) { return wholeNumberIn(store.value(option)); }
    void set(PrinterOption option, double value)
    {
        store.setValue(option, textOf(printerOptionInfo(option).form, allowedValue(option, value)));
    }

    PrinterOptionStore store;
};

namespace {

std::optional<PrinterOption> optionOfHead(int head)
{
    if (head == 1)
        return PrinterOption::Head1Offset;
    if (head == 2)
        return PrinterOption::Head2Offset;
    return std::nullopt;
}

void complainOfHead(int head)
{
    static std::atomic<bool> hasComplained{false};
    if (!hasComplained.exchange(true))
        qWarning("the printer has no colour head %d: its heat offset is not set", head);
}

} // namespace

CupsSupport::CupsSupport()
    : d(new Private)
{
}

CupsSupport::~CupsSupport()
{
    delete d;
}

bool CupsSupport::getInverse() const
{
    return d->isOn(PrinterOption::NegativePrint);
}

void CupsSupport::setInverse(bool inverse)
{
    d->set(PrinterOption::NegativePrint, inverse);
}

bool CupsSupport::getMirror() const
{
    return d->isOn(PrinterOption::MirrorPrint);
}

void CupsSupport::setMirror(bool mirror)
{
    d->set(PrinterOption::MirrorPrint, mirror);
}

bool CupsSupport::getOverprint() const
{
    return d->isOn(PrinterOption::Overprint);
}

void CupsSupport::setOverprint(bool overprint)
{
    d->set(PrinterOption::Overprint, overprint);
}

bool CupsSupport::getWhiteBase() const
{
    return d->isOn(PrinterOption::WhiteBase);
}

void CupsSupport::setWhiteBase(bool whiteBase)
{
    d->set(PrinterOption::WhiteBase, whiteBase);
}

bool CupsSupport::getRibbonSaver() const
{
    return d->isOn(PrinterOption::RibbonSaver);
}

void CupsSupport::setRibbonSaver(bool ribbonSaver)
{
    d->set(PrinterOption::RibbonSaver, ribbonSaver);
}

_CupsOrientation CupsSupport::getOrientation() const
{
    return static_cast<_CupsOrientation>(d->wholeNumber(PrinterOption::Orientation));
}

void CupsSupport::setOrientation(_CupsOrientation orientation)
{
    d->set(PrinterOption::Orientation, int(orientation));
}

int CupsSupport::getDithering() const
{
    return d->wholeNumber(PrinterOption::Dithering);
}

void CupsSupport::setDithering(int dithering)
{
    d->set(PrinterOption::Dithering, dithering);
}

int CupsSupport::getCut() const
{
    return d->wholeNumber(PrinterOption::CutMedia);
}

void CupsSupport::setCut(int cut)
{
    d->set(PrinterOption::CutMedia, cut);
}

int CupsSupport::getColorHeadOffset(int head) const
{
    const std::optional<PrinterOption> option = optionOfHead(head);
    return option ? d->wholeNumber(*option) : 0;
}

void CupsSupport::setColorHeadOffset(int value, int head)
{
    const std::optional<PrinterOption> option = optionOfHead(head);
    if (option)
        d->set(*option, value);
    else
        complainOfHead(head);
}

int CupsSupport::getFeed() const
{
    return d->wholeNumber(PrinterOption::Feed);
}

void CupsSupport::setFeed(int feed)
{
    d->set(PrinterOption::Feed, feed);
}

double CupsSupport::getStop() const
{
    return numberIn(d->store.value(PrinterOption::Stop));
}

void CupsSupport::setStop(double stop)
{
    d->set(PrinterOption::Stop, stop);
}

int CupsSupport::getOffsetH1() const
{
    return d->wholeNumber(PrinterOption::HorizontalOffset1);
}

void CupsSupport::setOffsetH1(int offset)
{
    d->set(PrinterOption::HorizontalOffset1, offset);
}

int CupsSupport::getOffsetH2() const
{
    return d->wholeNumber(PrinterOption::HorizontalOffset2);
}

void CupsSupport::setOffsetH2(int offset)
{
    d->set(PrinterOption::HorizontalOffset2, offset);
}

int CupsSupport::getOffsetV1() const
{
    return d->wholeNumber(PrinterOption::VerticalOffset1);
}

void CupsSupport::setOffsetV1(int offset)
{
    d->set(PrinterOption::VerticalOffset1, offset);
}

int CupsSupport::getOffsetV2() const
{
    return d->wholeNumber(PrinterOption::VerticalOffset2);
}

void CupsSupport::setOffsetV2(int offset)
{
    d->set(PrinterOption::VerticalOffset2, offset);
}

int CupsSupport::getR1Tension() const
{
    return d->wholeNumber(PrinterOption::R1Tension);
}

void CupsSupport::setR1Tension(int tension)
{
    d->set(PrinterOption::R1Tension, tension);
}

int CupsSupport::getR2Tension() const
{
    return d->wholeNumber(PrinterOption::R2Tension);
}

void CupsSupport::setR2Tension(int tension)
{
    d->set(PrinterOption::R2Tension, tension);
}
