/// \file
/// Pools of equal elements over large pages, and the records of large blocks and open files.
#ifndef KAR_MEM_H
#define KAR_MEM_H

#include "karlist.h"

#include <cstdint>
#include <cstdio>
#include <type_traits>

class karPage;

namespace kar {

class PageIndex;
class RecordIndex;
struct PoolAccess;

/// Adds without an undefined overflow: a figure wraps at the width of its type.
constexpr long addLong(long a, unsigned long b)
{
    const unsigned long sum = static_cast<unsigned long>(a) + b;
    constexpr unsigned long largest = ~0ul >> 1;
    return sum <= largest ? static_cast<long>(sum) : -static_cast<long>(~sum) - 1;
}

/// What a page knows beyond its stated fields, only to be fast. It doesn't go with a copy.
struct PageState {
    PageState() = default;                                              ///< Of a page in no pool.
    PageState(const PageState &other) : reciprocal(other.reciprocal) {} ///< Of a copy, which stands in no pool.
    /// The index and the chain stay.
    // cppcheck-suppress operatorEqVarError ; the rest doesn't go with a copy
    PageState &operator=(const PageState &other)
    {
        if (this != &other)
            reciprocal = other.reciprocal;
        return *this;
    }

    /// Whether an element starts `offset` bytes behind the start of the storage. The remainder of a division of 32-bit
    /// numbers is 0 exactly where the product with the rounded reciprocal doesn't exceed it (Lemire, Kaser, Kurz).
    bool startsElement(std::uintptr_t offset) const { return offset * reciprocal < reciprocal; }
    /// The size in bytes, above 0, by which `startsElement` goes.
    void setElementSize(int size) { reciprocal = ~std::uint64_t(0) / static_cast<unsigned>(size) + 1; }

    PageIndex *index = nullptr;   ///< of the chain that the page stands in, null outside a pool
    unsigned slot = 0;            ///< place in that index, in the order of the chain
    std::uint64_t reciprocal = 0; ///< of the element size, 2^64 divided by it and rounded up
    karPage *nextApart = nullptr; ///< see `PoolState::apart`
};

/// What a pool knows beyond its stated fields, only to be fast. It doesn't go with a copy, which finds it again
/// through the pages.
struct PoolState {
    PoolState() = default;          ///< Of a pool without a page.
    PoolState(const PoolState &) {} ///< As of a new pool.
    /// As of a new pool, unless assigned to itself.
    PoolState &operator=(const PoolState &other)
    {
        if (this != &other) {
            index = nullptr;
            apart = nullptr;
        }
        return *this;
    }

    PageIndex *index = nullptr; ///< that of the chain of `firstPage`
    karPage *apart = nullptr;   ///< the chains that stand apart from `firstPage`, each by its first page
};

} // namespace kar

/// What the fixed and the variable pages have in common: storage and the figures about it. Pages form a chain by
/// themselves. A copy has the same links and the same storage: only one of the two may be used further or destroyed.
class KAR_API karBasisPage : public karListTyped<karBasisPage, karListObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListObjectOk() override; ///< 1.
    ~karBasisPage() override;    ///< Releases the storage, then leaves the chain.

protected:
    /// `p` if it lies in the storage, from `firstPageElement()` to `lastPageElement()`, otherwise null.
    virtual void *checkElement(void *p);
    /// `base` plus `i` times `elementFullSize()`.
    virtual void *element_X(void *base, int i);

public:
    virtual void *PageBegin(); ///< As `firstPageElement()`.
    virtual void *PageEnd();   ///< As `lastPageElement()`.
    /// \}

    /// \name Construction
    /// A page without storage, chained by position (`karListPosition`; the end of the chain if none is given).
    /// \{
    explicit karBasisPage(karBasisPage *other);   ///< At the end of the chain of `other`.
    karBasisPage(karBasisPage *other, int mode);  ///< By the position `mode`.
    karBasisPage(const karBasisPage &) = default; ///< Copies every field, links included.
    /// \}

    karBasisPage &operator=(const karBasisPage &) = default; ///< Copies every field, links included.

    /// \name Reading
    /// \{
    void *firstPageElement() const { return firstPageElement_; } ///< First byte of the storage, null if there is none.
    void *lastPageElement() const { return lastPageElement_; }   ///< Last byte of the storage.
    int elementUsed() const { return elementUsed_; }             ///< Elements now handed out.
    /// The first page of the whole chain whose storage holds `p`; null for none and for a null `p`. Linear.
    karBasisPage *search(void *p);
    /// \}

protected:
    void initBasis(); ///< All five fields zero.
    /// Address of element `i`, by the virtual `element_X`; not tested.
    void *element(int i) { return element_X(firstPageElement_, i); }
    /// `i` elements behind `base`, null outside the storage.
    void *element(void *base, int i) { return checkElement(element_X(base, i)); }
    /// Bytes from one element to the next.
    int elementFullSize() const { return elementFullSize_; }
    int elementSize() const { return elementFullSize_; } ///< \overload
    int elementCount() const { return elementCount_; }   ///< Elements that the page was built for.

    void *firstPageElement_; ///< see `firstPageElement()`
    void *lastPageElement_;  ///< see `lastPageElement()`
    int elementFullSize_;    ///< see `elementFullSize()`
    int elementCount_;       ///< see `elementCount()`
    int elementUsed_;        ///< see `elementUsed()`
};

/// The node in a free element: two links in its first bytes, so it exists only while the element is free.
class KAR_API karFreeElement : public karListTyped<karFreeElement, karListObjectNV> {
public:
    /// Directly before `other`; both links null with a null `other`.
    explicit karFreeElement(karFreeElement *other) : karListTyped(other, KAR_LIST_INSERT) {}
};

/// A page of equal elements. The free list lies in the free elements; a fresh one runs from the highest element to the
/// lowest, and a released element stands at its front.
class KAR_API karPage : public karListTyped<karPage, karBasisPage> {
public:
    /// Elements still in use die with the page.
    ~karPage() override;

    /// A page at the end of the chain of `prev` with room for `count` elements of `size` bytes. An element takes at
    /// least the two links of a free node; on 64-bit targets it is rounded up to a multiple of 8. Without memory the
    /// page stands in the chain with zero sizes and has no element.
    karPage(karPage *prev, int size, int count);
    /// Copies every field, links included. As after `append`, pools walk the chain of both.
    karPage(const karPage &other);
    karPage &operator=(const karPage &other); ///< \overload

    /// \name Reading
    /// \{
    int canInsertElement() const; ///< 1 if there is a free element, otherwise 0. Constant.
    karPage *search(void *p) { return static_cast<karPage *>(karBasisPage::search(p)); } ///< As in `karBasisPage`.
    bool isValid() const; ///< Whether links, range and count of the free list agree with the figures. Linear.
    /// \}

    /// \name Changing
    /// \{

    /// The element released last, null if the page is full. Its first bytes hold stale links. Constant.
    void *newElement();
    /// Releases an element of this page. `p` becomes null if the page is empty now, otherwise it stays.
    /// An element that is free already changes nothing. Constant, but for live elements that hold what looks like the
    /// links of a free one: then linear in the free elements.
    /// Note: an element is known as free by its own links, so one that was written to after its release may be released
    /// again. An address that isn't the start of an element counts as a release and doesn't become free.
    /// Note: a `p` that itself lies in the released element is not written to.
    void deleteElement(void *&p);
    int delete_all() { return 0; }      ///< Does nothing.
    int test_delete_all() { return 0; } ///< Does nothing.
    /// \}

    /// \name Chaining by hand
    /// As in `karListObjectNV`. A pool that finds one of the pages concerned in its chain walks that chain from then
    /// on, until all pages that it knew before are gone.
    /// Note: a pool isn't told of links that are changed through a pointer to a base class and goes by the chain as it
    /// was before.
    /// \{
    using karListTyped::next;
    using karListTyped::prev;
    /// Stores the link; the neighbour isn't touched.
    void next(karPage *element)
    {
        linksChange(element);
        karListTyped::next(element);
    }
    void prev(karPage *element) ///< \overload
    {
        linksChange(element);
        karListTyped::prev(element);
    }
    /// To the end of the chain of `other`.
    void append(karListObjectNV *other)
    {
        linksChange(nullptr);
        karListTyped::append(other);
    }
    /// Directly before `other`.
    void insert(karListObjectNV *other)
    {
        linksChange(nullptr);
        karListTyped::insert(other);
    }
    /// To the start of the chain of `other`.
    void insertFront(karListObjectNV *other)
    {
        linksChange(nullptr);
        karListTyped::insertFront(other);
    }
    template <class Page, class = std::enable_if_t<std::is_base_of_v<karPage, Page>>>
    void append(Page *other) ///< \overload
    {
        linksChange(other);
        karListTyped::append(other);
    }
    template <class Page, class = std::enable_if_t<std::is_base_of_v<karPage, Page>>>
    void insert(Page *other) ///< \overload
    {
        linksChange(other);
        karListTyped::insert(other);
    }
    template <class Page, class = std::enable_if_t<std::is_base_of_v<karPage, Page>>>
    void insertFront(Page *other) ///< \overload
    {
        linksChange(other);
        karListTyped::insertFront(other);
    }
    /// Bridges the neighbours and clears both links.
    void unchain()
    {
        linksChange(nullptr);
        karListTyped::unchain();
    }
    /// \}

protected:
    friend class karPageMemory;
    friend class kar::PageIndex;
    friend struct kar::PoolAccess;

    /// Obtains the storage and fills the free list, as the constructor tells.
    void init(int size, int count);
    /// The element handed out next, null if the page is full.
    void *firstFreeElement() const { return firstFreeElement_; }

    karFreeElement *firstFreeElement_; ///< Null if the page is full.

private:
    // The chains of the page and of another, if any, are no longer those that their pools know.
    void linksChange(const karPage *other) const;

    kar::PageState state;
};

/// A pool of elements of one size over pages. It has no size limit but the heap and holds nothing while it is empty.
/// A page is two blocks that come straight from the heap, without a record, and goes with its last element.
/// Note: so a pool that goes between 0 and 1 elements makes and drops a page each time.
/// A copy shares the pages: only one of the two may be used further or destroyed.
class KAR_API karPageMemory {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const;       ///< 4001.
    virtual int CanCast(ObjektIdies id) const; ///< Equality with 4001.
    /// \}

    KAR_LIBRARY_NEW

    /// \name Construction
    /// \{
    karPageMemory(int size, int count);             ///< No page yet; `count` elements of `size` bytes to a page.
    karPageMemory(const karPageMemory &) = default; ///< Copies the fields, so both have the pages.
    ~karPageMemory();                               ///< As `delete_all`.
    /// \}

    karPageMemory &operator=(const karPageMemory &) = default; ///< Copies the fields; the pages held before are lost.

    /// \name Reading
    /// \{

    /// Elements in use. Linear in the pages. Where `firstPage` is null the pool goes on with the chain of `lastPage`.
    int getAnzElem();
    int elementFullSize() const { return elementSize_; } ///< The size given; the pages may use a larger one.
    int elementSize() const { return elementSize_; }     ///< \overload
    int elementCount() const { return elementCount_; }   ///< Elements to a page.
    bool isValid() const; ///< Whether chain, pages and index agree. Linear in the elements.
    /// \}

    /// \name Changing
    /// \{

    /// An element of the first page that has a free one, else of a new page at the end; null without memory. Constant.
    void *newElement();
    /// Releases an element and sets `p` to null; the page goes with its last element. A null `p` or one in no page
    /// stays and changes nothing; an element that is free already only becomes null. Constant, as in `karPage`.
    /// Note: a `p` that itself lies in the released element, or in the page that goes with it, is not written to.
    void deleteElement(void *&p);
    /// Destroys all pages, elements in use included; 0.
    /// Note: does nothing while `firstPage` is null.
    int delete_all();
    int test_delete_all(); ///< 0.
    /// \}

protected:
    friend struct kar::PoolAccess;
    friend class karGlobalMemory;

    /// A pool whose pages place their elements `stride` bytes apart.
    karPageMemory(int size, int count, int stride);

    /// A new page at the end of the chain of `lastPage`; null if none could be had.
    karPage *appendPage();
    /// Destroys a page. The fields that point to it move on to a neighbour.
    void deletePage(karPage *page);

    karPage *firstPage;   ///< The way into the chain.
    karPage *currentPage; ///< The page appended last or a neighbour of one deleted; nothing reads it.
    /// The page appended last.
    /// Note: null after a page object that couldn't be had. The page after that starts a chain of its own, which is
    /// reached only once the older one is gone, and is destroyed with the pool.
    karPage *lastPage;
    int elementSize_;  ///< as given
    int elementCount_; ///< elements to a page

private:
    void enterChain(karPage *page);
    void keepApart(const karPage *leaving);
    void deleteApart();
    static void deleteChain(karPage *page);

    int pageElementSize; ///< What the pages are given.
    kar::PoolState state;
};

/// The record of a tracked block.
class KAR_API karMemory_Entry : public karListTyped<karMemory_Entry, karListObject> {
public:
    int ListObjectOk() override; ///< 1.
    ~karMemory_Entry() override; ///< Leaves the chain; the block stays.

    /// At the end of the chain of `other`.
    karMemory_Entry(void *p, int size, karMemory_Entry *other);
    karMemory_Entry(const karMemory_Entry &) = default;  ///< Copies links and fields.
    karMemory_Entry &operator=(const karMemory_Entry &); ///< Copies links and fields.

    void *hentry() const { return hentry_; } ///< The block as its user sees it.
    long hsize() const { return hsize_; }    ///< The size it was registered with.
    /// The successor, else the predecessor, else null.
    /// Note: changes nothing.
    karMemory_Entry *set_besideIt() const { return next() ? next() : prev(); }

    void hentry(void *p);                   ///< Stores the block alone.
    void hsize(int size) { hsize_ = size; } ///< Stores the size alone.
    void hentry(void *p, int size);         ///< Stores both.

protected:
    friend class karMemory;

    void *hentry_; ///< see `hentry()`
    long hsize_;   ///< see `hsize()`
};

/// The record of a tracked file.
class KAR_API karFile_EntryZ : public karListTyped<karFile_EntryZ, karListObject> {
public:
    int ListObjectOk() override; ///< 1.
    ~karFile_EntryZ() override;  ///< Leaves the chain; the file stays open.

    /// At the end of the chain of `other`.
    karFile_EntryZ(std::FILE *f, int size, char kind, karFile_EntryZ *other);
    karFile_EntryZ(const karFile_EntryZ &) = default;            ///< Copies links and fields.
    karFile_EntryZ &operator=(const karFile_EntryZ &) = default; ///< Copies links and fields.

    std::FILE *hentry() const { return hentry_; } ///< The stream, open while the record lives.
    int hsize() const { return hsize_; }          ///< Size at open; without meaning if opened with "wb".
    /// The successor, else the predecessor, else null.
    /// Note: changes nothing.
    karFile_EntryZ *set_besideIt() const { return next() ? next() : prev(); }

    void hentry(std::FILE *f) { hentry_ = f; } ///< Stores the stream alone.
    void hsize(int size) { hsize_ = size; }    ///< Stores the size alone.
    /// Stores both.
    void hentry(std::FILE *f, int size)
    {
        hentry_ = f;
        hsize_ = size;
    }

protected:
    std::FILE *hentry_; ///< see `hentry()`
    int hsize_;         ///< see `hsize()`
    char openKind;      ///< 1 for mode "rb", 2 for "wb", 3 for any other text.
};

/// Keeps a record of everything that has to be released in the end: large blocks and open files. It owns the records
/// and, at its end, the blocks; files stay open.
class KAR_API karMemory {
public:
    /// \name Construction
    /// \{
    karMemory();                       ///< No records.
    karMemory(const karMemory &other); ///< Copies the fields; the copy aliases pages and records.
    /// Releases the blocks that still have a record.
    /// Note: an open file stays open and its record is lost.
    ~karMemory();
    /// \}

    karMemory &operator=(const karMemory &other); ///< Copies the fields.

    /// \name Blocks
    /// \{

    /// Registers the block `p` with its size in bytes and returns `p`; null is returned and nothing else done.
    /// Note: where no memory for the record is to be had, the older records are cut off as well; the size counts all
    /// the same. A record for which the pool alone has no room comes from the general allocator and never goes back.
    void *dxnew(void *p, unsigned size);
    /// Takes the record of `*p` away; the block isn't released. `*p` becomes null if there is no such record.
    /// Of several records of one address the one registered last is taken if no other record is newer, otherwise the
    /// oldest. Constant.
    void dxdelete(void **p);
    void testDeleteAllGlobal(); ///< Asks the pool for its elements where no block has a record; changes no record.
    long curr_used_memory() const { return curr_used_memory_; } ///< Sum of the sizes in the block records.
    long max_used_memory() const { return max_used_memory_; }   ///< Highest value that the sum ever had.
    /// \}

    /// \name Files
    /// \{

    /// Opens a file and records it. Null for the empty name, which touches no file, and where `fopen` gives null.
    /// Note: without memory for the record the stream is returned, and the older records are cut off.
    std::FILE *xfopen(const char *name, const char *mode);
    int xfclose(std::FILE *f); ///< The result of `fclose`; 1 for an unknown stream, which stays open.
    /// Closes the file opened last; 0, or 1 if there was none.
    /// Note: one call closes one file; it is called until it gives 1.
    int xfclose_all();
    /// \}

    void xmemcpy(void *dst, void *src, long n); ///< Copies `n` bytes; the ranges may overlap.

    bool isValid() const; ///< Whether records, chain, pool and index agree. Linear.

protected:
    /// Releases the blocks of all records with `KarDellocMemory`, newest first. 2 without a record, 1 if sizes remain
    /// in the sum, otherwise 0. A record whose block the allocator no longer knows is passed over and
    /// remains in the sum.
    /// Note: the release takes the record out of the allocator's own list, so the sum of any other `karMemory` stays.
    int delete_all();
    /// The record of a block, null if it has none.
    karMemory_Entry *search_memory_entry(void *p);
    /// The record of a stream, null if it has none.
    karFile_EntryZ *search_file_entry(void *f);

    karPageMemory entryPool;        ///< Source of the block records.
    karMemory_Entry *memoryEntries; ///< The tail of the block records, null without one.
    karFile_EntryZ *fileEntries;    ///< The tail of the file records, null without one.
    long curr_used_memory_;         ///< see `curr_used_memory()`
    long max_used_memory_;          ///< see `max_used_memory()`

private:
    void forgetIndex();

    kar::RecordIndex *index; ///< Record by address, only to be fast; null where there are few.
};

// The variable pages and pools, a unit of their own, belong to this header as well.
#include "karvarmem.h"

#endif
