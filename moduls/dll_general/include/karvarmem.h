/// \file
/// Pools of runs: consecutive elements of one size, each request with a count of its own.
#ifndef KAR_VARMEM_H
#define KAR_VARMEM_H

#include "karalloc.h"
#include "karenum.h"
#include "karlist.h"
#include "karmem.h"

#include <cstdint>

/// The node at the start of a free run. It is made of bytes, since a run may start at any address.
/// Note: it takes 8 bytes on every target. Where pointers are wider than 32 bits, the link is the distance from the
/// node itself: a copy computes its own, a link to the node itself or to one 2 GiB away and more reads as null.
class KAR_API karFreeVarElement {
public:
    KAR_LIBRARY_NEW

    /// \name Construction
    /// \{
    karFreeVarElement(karFreeVarElement *run, int bytes); ///< A link to `run`, a length of `bytes`.
    karFreeVarElement(const karFreeVarElement &other);    ///< Both fields; the copy links to the same run.
    /// \}

    karFreeVarElement &operator=(const karFreeVarElement &other); ///< Both fields; the copy links to the same run.

    /// \name Reading
    /// \{
    karFreeVarElement *next() const; ///< The following free run, higher in memory; null at the end.
    int getSize() const;             ///< Length of the run in bytes.
    void *start() const;             ///< The first byte, which is the node's own address.
    void *end() const;               ///< The last byte.
    void *prevEnd() const;           ///< The byte before the run.
    void *nextStart() const;         ///< The byte behind the run.
    karFreeVarElement *last() const; ///< Tail of the list. Linear.
    /// \}

    /// \name Changing
    /// \{
    karFreeVarElement *next(karFreeVarElement *run); ///< Stores the link and returns this object.
    void setSize(int bytes);                         ///< Stores the length of the run in bytes.
    /// \}

protected:
    unsigned char next_[4]; ///< the link
    unsigned char size[4];  ///< the length in bytes
};

/// A page of runs. Its free runs form a list from the lowest address to the highest, in which two that touch become
/// one; the nodes lie in the runs themselves. A run has no header: its owner releases it with the count of the request.
/// The page keeps to its storage whatever is released into it: a link that leaves the storage or leads back, as bytes
/// that an owner wrote into a free run may read, is the end of the list.
class KAR_API karVarPage : public karListTyped<karVarPage, karBasisPage> {
public:
    ~karVarPage() override; ///< Releases the storage; runs in use are lost with it.

    /// \name Construction
    /// \{

    /// A page of `count` elements of `size` bytes behind the chain of `prev`. Without memory for them the page stands
    /// in the chain with zero sizes and no free run; a size or count that isn't positive, or a product beyond the
    /// `int` range, counts as such a failure.
    karVarPage(karVarPage *prev, int size, int count);
    karVarPage(const karVarPage &other); ///< Copies every field: both have the storage, one may be destroyed.
    /// \}

    karVarPage &operator=(const karVarPage &other); ///< \overload

    /// \name Reading
    /// \{
    karFreeVarElement *firstFreeElement() const { return firstFreeElement_; } ///< Free run of the lowest address.
    /// The smallest run in elements: 8 bytes divided by the element size and rounded.
    /// Note: as rounded it may be too short for a node (1 for 6 bytes) and is 0 from 17 bytes on.
    int minElementCount() const { return minElementCount_; }
    using karBasisPage::elementCount;
    using karBasisPage::elementSize;
    using karBasisPage::firstPageElement;
    /// Note: the start of the last element, not its last byte; `search` knows no address above it.
    using karBasisPage::lastPageElement;
    /// The page of this chain whose storage holds `p`, null if none does. Linear.
    karVarPage *search(void *p) { return static_cast<karVarPage *>(karBasisPage::search(p)); }
    /// Whether the free runs lie inside the storage, ascending, with used bytes between them, and leave room for the
    /// elements in use. For tests; linear.
    bool isValid() const;
    /// \}

    /// \name Changing
    /// \{

    /// A run of `count` elements, but at least `minElementCount`; null if there is none. A run of exactly the wanted
    /// length is taken first, then the first that is at least 8 bytes longer. `fromEnd` other than 0 looks at the
    /// last run alone. Linear in the free runs.
    /// Note: with elements of 17 bytes and more a count of 0 gives the address of a free run and takes nothing.
    void *newElement(int count, int fromEnd);
    /// Releases `count` elements at `p`, but at least `minElementCount`. `p` becomes null if the page is empty then.
    /// A count of 0 and a `p` at which a free run starts change nothing. A range of fewer than 8 bytes without a free
    /// neighbour is lost until the page dies.
    /// Note: the count isn't compared with the request: it goes off the elements in use in any case. What lies behind
    /// the storage is cut off, and a `p` that isn't the start of an element is not linked, nor is one outside this page
    /// (with 32-bit pointers: outside every page of the chain).
    /// Note: a `p` that itself lies in the run is not written to.
    void deleteElement(void *&p, int count);
    /// Shortens the run at `p` by its tail and returns `p`. `newCount` 0 releases it and returns null. Null, and
    /// nothing changes, if the tail is shorter than `minElementCount` or the run would grow.
    void *resizeElementLast(void *&p, int oldCount, int newCount);
    /// \}

protected:
    friend class karVarPageMemory;

    /// Obtains the storage and makes it one free run, as the constructor tells.
    void init(int size, int count);
    /// Takes `bytes` at `start` out of the free run that covers them; what is left before and behind stays free.
    void takeRange(void *start, int bytes);
    /// Puts a range back and joins it with the free runs that touch it.
    void giveRange(void *start, int bytes);

    karFreeVarElement *firstFreeElement_; ///< null if the page is full
    int minElementCount_;                 ///< see `minElementCount()`

private:
    class Walk;

    unsigned char *storage() const { return static_cast<unsigned char *>(firstPageElement_); }
    int storageBytes() const { return elementFullSize_ * elementCount_; }
    bool contains(const void *place) const;
    bool covers(const void *run, std::int64_t bytes, const void *place) const;
    const karVarPage *pageWith(const void *place) const;
    bool canHoldNode(const void *place) const;
    bool holds(const karFreeVarElement *run) const;
    karFreeVarElement *following(const karFreeVarElement *run) const;
    int raised(int count) const { return count < minElementCount_ ? minElementCount_ : count; }
    std::int64_t bytesOf(int count) const { return std::int64_t{raised(count)} * elementFullSize_; }
    void linkBehind(karFreeVarElement *before, karFreeVarElement *run);

    karVarPage *nextApart = nullptr; // behind the stated fields: see `karVarPageMemory::apart`
};

/// A pool of runs over a chain of pages. An empty page is released with its last run.
class KAR_API karVarPageMemory {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const;       ///< 4005.
    virtual int CanCast(ObjektIdies id) const; ///< Equality with 4005.
    virtual ObjektIdies listType() const;      ///< 4005.
    /// \}

    /// \name Construction
    /// \{
    karVarPageMemory(int size, int count); ///< Elements of `size` bytes, at least `count` in a page. No page yet.
    karVarPageMemory(const karVarPageMemory &other); ///< Shares the pages: one of the two may be destroyed or used.
    ~karVarPageMemory();                             ///< Destroys every page; runs in use are lost with them.
    /// \}

    karVarPageMemory &operator=(const karVarPageMemory &other); ///< Shares the pages of `other`; its own are dropped.

    /// \name Reading
    /// \{

    /// Not 0 where `appendElement` tries the last page alone; 0 at first.
    int speicher_Speed() const { return speicher_Speed_; }
    int elementSize() const { return elementSize_; } ///< Bytes of an element, as given.
    int minElementCount() const { return firstPage ? firstPage->minElementCount() : 0; } ///< 0 without a page.
    ObjektIdies elementType() const { return listType(); }                               ///< As `listType`.
    /// Elements in use. Linear in the pages. Where `firstPage` is null the pool goes on with the chain of `lastPage`.
    int getAnzElem();
    bool isValid() const; ///< Whether every page is. For tests; linear.
    /// \}

    /// \name Changing
    /// \{
    void speicher_Speed(int speed) { speicher_Speed_ = speed; } ///< Not 0: `appendElement` tries the last page alone.
    /// A run of `count` elements from the first page that has one, otherwise from a new page; null on failure.
    void *newElement(int count);
    /// As `newElement`. With `speicher_Speed` only the last page is tried, and of its free runs the last alone.
    void *appendElement(int count);
    /// Releases the run at `p`, which was requested with `count`, and sets `p` to null; a `p` in no page stays.
    /// Note: a `p` that itself lies in the run, or in the page that goes with it, is not written to.
    void deleteElement(void *&p, int count);
    /// Shortens the run at `p`. Without `speicher_Speed` it moves to the first gap that `newElement` finds, a later one
    /// and a new page included. Returns where the run is now; null for a `p` that is null or in no page.
    /// Note: after a move into a gap only the result tells the new address, `p` keeps the old one. A tail of fewer
    /// than 8 bytes moves the run too, and then `p` has the new address. A page that a move empties stays in the pool.
    /// Note: it stays where the gap is directly behind it on its page, and where the elements in use on the gap's page,
    /// in bytes, are as many as `newCount`. A gap that isn't used goes back through the page of `p`.
    /// Note: `newCount` above `oldCount` moves as many elements as the page of `p` has behind it.
    /// Note: a `p` that itself lies in the run is not written to.
    void *resizeElementLast(void *&p, int oldCount, int newCount);
    void checkMemory(); ///< Destroys the last page if it is empty and has room for 40 elements.
    /// \}

protected:
    /// A page of at least `count` elements at the end of the chain of `lastPage`; null on failure.
    /// Note: after a failure `lastPage` is null while the chain stands. The next page starts a chain of its own, which
    /// allocation doesn't reach from `firstPage`.
    karVarPage *appendPage(int count);
    /// Destroys a page. `firstPage` moves back, `lastPage` and `currentPage` forward if it is theirs.
    void deletePage(karVarPage *page);

    int speicher_Speed_ = 0;           ///< see `speicher_Speed()`
    karVarPage *firstPage = nullptr;   ///< the way into the chain
    karVarPage *currentPage = nullptr; ///< the page appended last or a neighbour of one deleted; nothing reads it
    karVarPage *lastPage = nullptr;    ///< the page appended last; null after one that couldn't be had
    int elementSize_;                  ///< bytes of an element
    int elementCount;                  ///< elements in a new page, at least

private:
    void enterChain(karVarPage *page);
    void keepApart(const karVarPage *leaving);
    void *moveRun(karVarPage *page, void *run, void *target, int oldCount, int newCount);

    // Behind the stated fields: the chains that stand apart from `firstPage`, each by its first page. A copy has none.
    karVarPage *apart = nullptr;
};

#endif
