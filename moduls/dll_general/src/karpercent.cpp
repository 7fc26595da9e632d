#include "karpercent.h"

#include "karnumeric.h"
#include "karstdio.h"

int karPercentList::ListObjectOk() { return 1; }

namespace {

unsigned clamped(int percent) { return percent >= 100 ? 100 : percent < 0 ? 0 : static_cast<unsigned>(percent); }

// ((end - start) * percent + 50) / 100 + start, 0 to 100 as the percentage itself; false on an invalid range. Unsigned,
// a negative start is above every end, and a negative end above 100.
bool mapTo(karPercentList &layer, unsigned &percent)
{
    const auto start = static_cast<unsigned>(layer.getStart());
    const auto end = static_cast<unsigned>(layer.getEnd());
    if (start > end || end > 100)
        return false;
    percent = ((end - start) * percent + 50) / 100 + start;
    return true;
}

// From a layer to the outermost one.
inline int mapThrough(karPercentList *layer, int percent)
{
    if (percent == -1)
        return -1;
    unsigned value = clamped(percent);
    for (; layer; layer = layer->prev())
        if (!mapTo(*layer, value))
            return -1;
    return static_cast<int>(value);
}

} // namespace

int karPercentList::calcPercent(int percent)
{
    unsigned value = clamped(percent);
    return percent != -1 && mapTo(*this, value) ? static_cast<int>(value) : -1;
}

int karPercent::ListHeadObjectOk() { return 1; }

karPercent::karPercent() : karListHeadTyped(ObjektIdies(0)) { addLayer(); }

karPercent::~karPercent() { ListRemoveAll(); }

int karPercent::getStart() { return ListLast() ? ListLast()->getStart() : -1; }

int karPercent::getEnd() { return ListLast() ? ListLast()->getEnd() : -1; }

void karPercent::addLayer() { ListAppend(new karPercentList(nullptr, 0, 100)); }

void karPercent::removeLayer()
{
    if (karPercentList *top = ListLast())
        ListRemove(top);
}

void karPercent::reset()
{
    ListRemoveAll();
    addLayer();
}

void karPercent::setStartEnd(int start, int end)
{
    if (!ListLast())
        return;
    ListLast()->setStartEnd(start, end);
    setLayerPercent(0);
}

int karPercent::folded(int value) const { return mapThrough(ListLast(), value); }

void karPercent::setLayerPercent(int newPercent)
{
    const int old = percent;
    if (ListLast()) {
        if (newPercent == -1 && folded(100) != 100)
            newPercent = 100;
        layerPercent = newPercent;
        percent = mapThrough(ListLast(), newPercent);
    } else {
        layerPercent = percent = -1;
    }
    if (old > percent)
        Fortschritt();
}

void karPercent::setLayerPercent(double fraction)
{
    if (fraction >= 0.0)
        setLayerPercent(kar::toInt(fraction * 100.0 + 0.5));
    else
        setLayerPercent(-1);
}
