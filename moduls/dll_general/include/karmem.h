// Pools of equal elements over large pages, and the records of large blocks and open files.
#ifndef KAR_MEM_H
#define KAR_MEM_H

#include "karlist.h"

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
    explicit karBasisPage(karBasisPage *other);
    karBasisPage(karBasisPage *other, int mode);
    karBasisPage(const karBasisPage &) = default;
    /// \}

    karBasisPage &operator=(const karBasisPage &) = default;

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

    void *firstPageElement_;
    void *lastPageElement_;
    int elementFullSize_;
    int elementCount_;
    int elementUsed_;
};

#endif
