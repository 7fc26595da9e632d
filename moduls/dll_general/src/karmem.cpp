#include "karmem.h"

#include <cstdint>

namespace {

std::uintptr_t address(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

} // namespace

karBasisPage::karBasisPage(karBasisPage *other) : karListTyped(other, KAR_LIST_APPEND) { initBasis(); }
karBasisPage::karBasisPage(karBasisPage *other, int mode) : karListTyped(other, mode) { initBasis(); }

karBasisPage::~karBasisPage()
{
    if (firstPageElement_)
        KarDellocMemory(firstPageElement_);
}

void karBasisPage::initBasis()
{
    firstPageElement_ = nullptr;
    lastPageElement_ = nullptr;
    elementFullSize_ = 0;
    elementCount_ = 0;
    elementUsed_ = 0;
}

int karBasisPage::ListObjectOk() { return 1; }

void *karBasisPage::checkElement(void *p)
{
    if (!firstPageElement_ || address(p) < address(firstPageElement_) || address(p) > address(lastPageElement_))
        return nullptr;
    return p;
}

void *karBasisPage::element_X(void *base, int i)
{
    const std::intptr_t distance = static_cast<std::intptr_t>(i) * elementFullSize_;
    return reinterpret_cast<void *>(address(base) + static_cast<std::uintptr_t>(distance));
}

void *karBasisPage::PageBegin() { return firstPageElement_; }
void *karBasisPage::PageEnd() { return lastPageElement_; }

karBasisPage *karBasisPage::search(void *p)
{
    if (!p)
        return nullptr;
    for (karBasisPage *page = first(); page; page = page->next())
        if (page->checkElement(p))
            return page;
    return nullptr;
}
