/// \file
/// Progress of nested phases, folded into one percentage.
#ifndef KAR_PERCENT_H
#define KAR_PERCENT_H

#include "karlisthead.h"

/// One layer: the stretch of the next outer layer that a phase covers.
class KAR_API karPercentList : public karListTyped<karPercentList, karListObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListObjectOk() override; ///< 1.
    /// \}

    /// Behind the end of `chain`, or alone with null.
    karPercentList(karPercentList *chain, int ownStart, int ownEnd) : karListTyped(chain), start(ownStart), end(ownEnd)
    {}

    int getStart() { return start; } ///< Where this layer's 0 lies in the next outer layer.
    int getEnd() { return end; }     ///< Where this layer's 100 lies in the next outer layer.
    /// Stores both, unchecked. A range is valid where 0 <= start <= end <= 100; `calcPercent` tells.
    void setStartEnd(int newStart, int newEnd)
    {
        start = newStart;
        end = newEnd;
    }

    /// The percentage of the next outer layer for one of this layer, which is clamped to 0 to 100 first; halves round
    /// up. -1 for the argument -1 and on an invalid range.
    int calcPercent(int percent);

protected:
    int start; ///< percentage of the next outer layer at which this layer's 0 lies
    int end;   ///< percentage of the next outer layer at which this layer's 100 lies
};

/// A stack of layers; the last is the innermost phase. A phase names the stretch of its sub-phase with `setStartEnd`,
/// opens a layer with `addLayer`, reports 0 to 100 with `setLayerPercent` and closes it with `removeLayer`; what is
/// read from `getPercent` is the percentage of the whole. -1 stands for none.
class KAR_API karPercent : public karListHeadTyped<karPercentList, karListHeadObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListHeadObjectOk() override; ///< 1.
    ~karPercent() override;          ///< Deletes the layers.
    /// \}

    karPercent();                                        ///< One layer of 0 to 100; both percentages -1.
    karPercent(const karPercent &) = default;            ///< Note: shares the layers with its source; both delete them.
    karPercent &operator=(const karPercent &) = default; ///< Note: as the copy; the old layers aren't deleted.

    /// \name Reading
    /// \{
    int getPercent() { return percent; }           ///< The percentage of the whole, or -1.
    int getLayerPercent() { return layerPercent; } ///< The last one given for the innermost layer, as stored, or -1.
    int getStart();                                ///< Range of the innermost layer, -1 on an empty stack.
    int getEnd();                                  ///< \overload
    /// \}

    /// \name Changing
    /// \{
    void addLayer();    ///< A layer of 0 to 100 on top; none if memory ends. The percentages don't change.
    void removeLayer(); ///< Takes the innermost layer away, if there is one. The percentages don't change.
    void reset();       ///< Leaves one layer of 0 to 100. Note: the percentages don't change before the next report.
    /// Range of the innermost layer, unchecked. Nothing on an empty stack.
    /// Note: then reports 0 by `setLayerPercent(0)`, which may tick.
    void setStartEnd(int start, int end);

    /// Reports the percentage of the innermost layer. On an empty stack both become -1.
    /// Note: -1 counts as 100, but where the layers end at 100 together it gives -1 in both.
    /// Note: the host hears a tick (`Fortschritt`) only when the percentage of the whole falls, be it to the -1 of an
    /// empty stack; a rise is silent.
    void setLayerPercent(int percent);
    /// The same for a fraction: 0 to 1 is rounded to percent, halves up.
    /// Note: below 0 and not-a-number count as -1; there is no limit above, and a product beyond the `int` range counts
    /// as the largest `int`.
    void setLayerPercent(double fraction);

    /// Stores the percentage of the whole as it is: no layer is asked, nothing ticks.
    void setPercent(int newPercent) { percent = newPercent; }
    /// \}

protected:
    void *reserved = nullptr; ///< carried along, used by nothing
    int percent = -1;         ///< of the whole
    int layerPercent = -1;    ///< of the innermost layer, as reported

private:
    int folded(int value) const; // through all layers, innermost first
};

#endif
