#include "karpercent.h"

#include "karnumeric.h"
#include "karstdio.h"

int karPercentList::ListObjectOk() { return 1; }

// ((end - start) * percent + 50) / 100 + start
int karPercentList::calcPercent(int percent)
{
    if (start > end || start < 0 || end > 100 || percent == -1)
        return -1;
    if (percent >= 100)
        percent = 100;
    else if (percent < 0)
        percent = 0;
    if (end == start)
        return start;
    return ((end - start) * percent + 50) / 100 + start;
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

int karPercent::folded(int value) const
{
    for (karPercentList *layer = ListLast(); layer; layer = layer->prev())
        value = layer->calcPercent(value);
    return value;
}

void karPercent::setLayerPercent(int newPercent)
{
    const int old = percent;
    if (ListLast()) {
        if (newPercent == -1 && folded(100) != 100)
            newPercent = 100;
        layerPercent = newPercent;
        percent = folded(newPercent);
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
