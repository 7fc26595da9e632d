// The sort of a chain: bubble sort of short parts, merge sort above.
#ifndef KAR_CHAIN_SORT_H
#define KAR_CHAIN_SORT_H

#include "karlisthead.h"

#include <array>

namespace kar {

/// Sorts one chain. The order that results is that of the plain recursion (count, cut in the middle, sort both parts,
/// merge); the way there differs in what nobody sees:
/// - the chain is counted once, and the parts take their elements from a cursor;
/// - a short part is sorted in an array, and neighbours aren't compared again while they stay neighbours;
/// - two merges that don't depend on each other take turns, so that each computes while the other waits, and the choice
///   of the next element is an index instead of a branch that is mispredicted every second time;
/// - until the last merge the chain is linked forward only. The free backward links of long parts lead some elements
///   ahead, so that an element is on its way from memory before its turn comes.
class ChainSort {
public:
    using Node = karListObjectNV;

    /// `listFirst` and `listLast` are the fields that a swap at the edge of a short part writes.
    ChainSort(karListHeadObject *object, karSortMethod method, karListObject *&listFirst, karListObject *&listLast)
        : sortObject(object), sortMethod(method), first(listFirst), last(listLast)
    {}

    /// Sorts the chain that begins with `start`, and gives its first element.
    karListObject *sort(Node *start)
    {
        const int length = count(start);
        cursor = start;
        Node *front = nullptr;
        if (length < shortestMerge) {
            front = bubble(length);
            end = linkBack(nullptr, front);
        } else {
            Node *a = nullptr;
            Node *b = nullptr;
            sortTwo(length / 2, length - length / 2, a, b);
            Merge<Neighbours> merge(*this, a, b);
            front = merge.run(*this);
            end = linkBack(merge.tail, merge.rest());
        }
        return element(front);
    }

    /// The last element of the chain: before `sort` null, after it the true end.
    karListObject *trueEnd() const { return element(end); }

    /// Whether the field `listLast` was the last element of the chain when the sort began.
    bool endWasKnown() const { return knownEnd; }

private:
    static constexpr int shortestMerge = 8;  // parts of fewer elements are bubbled
    static constexpr unsigned distance = 16; // from an element to the one that its backward link leads to
    static constexpr int longPart = 4096;    // parts from here on outgrow the nearer caches

    // What a merge writes into the backward link of each element that it takes, in their order.

    struct Nothing {
        explicit Nothing(Node *) {}
        void pass(Node *) {}
    };

    // The element that is taken `distance` elements later. The link that stood there tells what to fetch now.
    struct ElementAhead {
        explicit ElementAhead(Node *node) { seen.fill(node); }
        void pass(Node *node)
        {
            fetch(node->prev());
            Node *&slot = seen[position++ % distance];
            slot->prev(node);
            slot = node;
        }
        std::array<Node *, distance> seen;
        unsigned position = 0;
    };

    // The neighbour, as it stays.
    struct Neighbours {
        explicit Neighbours(Node *) {}
        void pass(Node *node)
        {
            fetch(node->prev());
            node->prev(before);
            before = node;
        }
        Node *before = nullptr;
    };

    // Two sorted parts that become one, step by step.
    template <class Backward>
    struct Merge {
        // The first comparison is that of the first step, too.
        Merge(const ChainSort &sorter, Node *a, Node *b)
            : heads{a, b}, which(sorter.secondGoesFirst(heads)), front(heads[which]), tail(front), backward(front)
        {}

        // Steps on in the part that gave the last element; false if that part has ended.
        bool advance()
        {
            backward.pass(tail);
            return (heads[which] = tail->next()) != nullptr;
        }
        void take(const ChainSort &sorter)
        {
            which = sorter.secondGoesFirst(heads);
            Node *const taken = heads[which];
            tail->next(taken);
            tail = taken;
        }
        Node *rest() const { return heads[which ^ 1]; }
        Node *finish()
        {
            tail->next(rest());
            return front;
        }
        Node *run(const ChainSort &sorter)
        {
            while (advance())
                take(sorter);
            return finish();
        }

        Node *heads[2];
        unsigned which; // the part that gave the last element
        Node *front;
        Node *tail; // the last element taken
        Backward backward;
    };

    static karListObject *element(Node *node) { return &static_cast<karListObject &>(*node); }
    // The links and what the comparison reads, which stands behind them; the two may lie in different cache lines.
    static void fetch(const Node *node)
    {
        if (!node)
            return;
        __builtin_prefetch(node);
        __builtin_prefetch(node + 1);
    }

    int compare(Node *a, Node *b) const { return (sortObject->*sortMethod)(element(a), element(b)); }
    unsigned secondGoesFirst(Node *const heads[2]) const { return compare(heads[0], heads[1]) <= 0; }

    // Elements of the chain from `start` on.
    int count(Node *start)
    {
        int length = 0;
        Node *node = start;
        ElementAhead ahead(start);
        for (;;) {
            ++length;
            Node *const following = node->next();
            ahead.pass(node);
            if (!following)
                break;
            node = following;
        }
        knownEnd = element(node) == last;
        return length;
    }

    // Takes `length` elements from the cursor and sorts them. The part is linked forward and ends with null.
    Node *sortPart(int length)
    {
        if (length < shortestMerge)
            return bubble(length);
        Node *a = nullptr;
        Node *b = nullptr;
        sortTwo(length / 2, length - length / 2, a, b);
        return Merge<Nothing>(*this, a, b).run(*this);
    }

    // Two parts, one behind the other, of the same length or the second one element longer.
    void sortTwo(int lengthA, int lengthB, Node *&a, Node *&b)
    {
        if (lengthA < shortestMerge) {
            a = sortPart(lengthA);
            b = sortPart(lengthB);
            return;
        }
        Node *secondA = nullptr;
        Node *secondB = nullptr;
        sortTwo(lengthA / 2, lengthA - lengthA / 2, a, secondA);
        sortTwo(lengthB / 2, lengthB - lengthB / 2, b, secondB);
        if (lengthA < longPart)
            mergeTwo<Nothing>(a, secondA, b, secondB);
        else
            mergeTwo<ElementAhead>(a, secondA, b, secondB);
    }

    template <class Backward>
    void mergeTwo(Node *&a, Node *secondA, Node *&b, Node *secondB) const
    {
        Merge<Backward> mergeA(*this, a, secondA);
        Merge<Backward> mergeB(*this, b, secondB);
        bool goesOnA = mergeA.advance();
        bool goesOnB = mergeB.advance();
        while (goesOnA && goesOnB) {
            mergeA.take(*this);
            mergeB.take(*this);
            goesOnA = mergeA.advance();
            goesOnB = mergeB.advance();
        }
        for (; goesOnA; goesOnA = mergeA.advance())
            mergeA.take(*this);
        for (; goesOnB; goesOnB = mergeB.advance())
            mergeB.take(*this);
        a = mergeA.finish();
        b = mergeB.finish();
    }

    // Takes up to 7 elements from the cursor and bubbles them in passes from the front. The part is linked forward.
    Node *bubble(int length)
    {
        Node *part[shortestMerge] = {};
        Node *node = cursor;
        for (int i = 0; i < length; ++i) {
            part[i] = node;
            fetch(node->prev());
            node = node->next();
        }
        cursor = node;

        const unsigned allPairs = (1u << (length - 1)) - 1;
        unsigned open = allPairs; // bit i: the elements at i and i + 1 aren't known to stay as they are
        while (open) {
            unsigned pass = open;
            do {
                const int i = __builtin_ctz(pass);
                if (compare(part[i], part[i + 1]) < 0) {
                    Node *const earlier = part[i];
                    part[i] = part[i + 1];
                    part[i + 1] = earlier;
                    if (i == 0)
                        first = element(part[0]);
                    if (i == length - 2)
                        last = element(earlier);
                    open |= ((5u << i) >> 1) & allPairs; // the pairs on both sides are new
                } else {
                    open &= ~(1u << i);
                }
                pass = open & (~1u << i);
            } while (pass);
        }

        for (int i = 1; i < length; ++i)
            part[i - 1]->next(part[i]);
        part[length - 1]->next(nullptr);
        return part[0];
    }

    // Writes the backward links of a chain that is linked forward, from `node` on, which stands behind `before`. Gives
    // the last element.
    static Node *linkBack(Node *before, Node *node)
    {
        for (; node; node = node->next()) {
            fetch(node->prev());
            node->prev(before);
            before = node;
        }
        return before;
    }

    karListHeadObject *const sortObject;
    karSortMethod const sortMethod;
    karListObject *&first;
    karListObject *&last;
    Node *cursor = nullptr; // first element that no part has taken yet
    Node *end = nullptr;
    bool knownEnd = false;
};

} // namespace kar

#endif
