#include "karvarmem.h"

#include "addresstable.h"
#include "karnumeric.h"
#include "pagechain.h"

#include <cstdint>
#include <cstring>
#include <new>

// Runs of different pages are compared too, and a range may end behind its page: addresses are numbers here.
using kar::addressOf;

namespace {

constexpr int nodeBytes = 8;
static_assert(sizeof(karFreeVarElement) == nodeBytes && alignof(karFreeVarElement) == 1, "the node lies in any run");

void *placeAt(const void *base, std::int64_t bytes)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it may lie outside the storage
    return reinterpret_cast<void *>(addressOf(base) + static_cast<std::uintptr_t>(bytes));
}

std::uintptr_t behind(const karFreeVarElement *run) { return addressOf(run->nextStart()); }

} // namespace

// ---- Free runs

karFreeVarElement::karFreeVarElement(karFreeVarElement *run, int bytes)
{
    next(run);
    setSize(bytes);
}

karFreeVarElement::karFreeVarElement(const karFreeVarElement &other) : karFreeVarElement(other.next(), other.getSize())
{}

karFreeVarElement &karFreeVarElement::operator=(const karFreeVarElement &other)
{
    if (this != &other) {
        next(other.next());
        setSize(other.getSize());
    }
    return *this;
}

karFreeVarElement *karFreeVarElement::next() const
{
    if constexpr (sizeof(void *) == sizeof next_) {
        karFreeVarElement *run;
        std::memcpy(&run, next_, sizeof next_);
        return run;
    } else {
        std::int32_t distance;
        std::memcpy(&distance, next_, sizeof next_);
        return distance ? static_cast<karFreeVarElement *>(placeAt(this, distance)) : nullptr;
    }
}

karFreeVarElement *karFreeVarElement::next(karFreeVarElement *run)
{
    if constexpr (sizeof(void *) == sizeof next_) {
        std::memcpy(next_, &run, sizeof next_);
    } else {
        const auto span = static_cast<std::int64_t>(addressOf(run) - addressOf(this));
        const auto distance = static_cast<std::int32_t>(run && span == static_cast<std::int32_t>(span) ? span : 0);
        std::memcpy(next_, &distance, sizeof next_);
    }
    return this;
}

int karFreeVarElement::getSize() const
{
    int bytes;
    std::memcpy(&bytes, size, sizeof size);
    return bytes;
}

void karFreeVarElement::setSize(int bytes) { std::memcpy(size, &bytes, sizeof size); }
void *karFreeVarElement::start() const { return placeAt(this, 0); }
void *karFreeVarElement::end() const { return placeAt(this, std::int64_t{getSize()} - 1); }
void *karFreeVarElement::prevEnd() const { return placeAt(this, -1); }
void *karFreeVarElement::nextStart() const { return placeAt(this, getSize()); }

karFreeVarElement *karFreeVarElement::last() const
{
    const karFreeVarElement *run = this;
    while (const karFreeVarElement *following = run->next())
        run = following;
    return const_cast<karFreeVarElement *>(run);
}

// ---- Pages

// The free runs in their order. A list that leads back to a run ends there (Brent's cycle test: the run is compared
// with one that is renewed after 1, 2, 4, ... steps).
class karVarPage::Walk {
public:
    explicit Walk(const karVarPage &walked) : page(walked)
    {
        if (page.canHoldNode(page.firstFreeElement_))
            current = mark = page.firstFreeElement_;
    }

    karFreeVarElement *run() const { return current; }
    karFreeVarElement *before() const { return previous; }

    void step()
    {
        previous = current;
        current = page.following(current);
        if (current == mark)
            current = nullptr;
        if (++steps == limit) {
            mark = current;
            steps = 0;
            limit *= 2;
        }
    }

private:
    const karVarPage &page;
    karFreeVarElement *current = nullptr;
    karFreeVarElement *previous = nullptr;
    karFreeVarElement *mark = nullptr;
    unsigned steps = 0;
    unsigned limit = 1;
};

karVarPage::karVarPage(karVarPage *prev, int size, int count) : karListTyped(prev) { init(size, count); }

karVarPage::karVarPage(const karVarPage &other)
    : karListTyped(other), firstFreeElement_(other.firstFreeElement_), minElementCount_(other.minElementCount_)
{}

karVarPage::~karVarPage() = default;

karVarPage &karVarPage::operator=(const karVarPage &other)
{
    if (this == &other)
        return *this;
    karBasisPage::operator=(other);
    firstFreeElement_ = other.firstFreeElement_;
    minElementCount_ = other.minElementCount_;
    return *this;
}

void karVarPage::init(int size, int count)
{
    const std::int64_t wanted = std::int64_t{size} * count;
    const bool fits = size > 0 && count > 0 && wanted <= 0x7fffffff;
    // The node of the one free run finds room in the smallest storage too.
    firstPageElement_ = fits ? KarAllocMemory(static_cast<unsigned>(wanted < nodeBytes ? nodeBytes : wanted)) : nullptr;
    elementUsed_ = 0;
    if (firstPageElement_) {
        elementFullSize_ = size;
        elementCount_ = count;
        lastPageElement_ = placeAt(firstPageElement_, wanted - size);
        firstFreeElement_ = new (firstPageElement_) karFreeVarElement(nullptr, static_cast<int>(wanted));
    } else {
        elementFullSize_ = 0;
        elementCount_ = 0;
        lastPageElement_ = nullptr;
        firstFreeElement_ = nullptr;
    }
    minElementCount_ = kar::toInt(8.0 / elementFullSize_ + 0.5);
}

bool karVarPage::contains(const void *place) const
{
    return addressOf(place) - addressOf(firstPageElement_) < static_cast<std::uintptr_t>(storageBytes());
}

// Whether a place lies in the `bytes` from a run on, as far as the storage goes.
bool karVarPage::covers(const void *run, std::int64_t bytes, const void *place) const
{
    return contains(place) && addressOf(place) >= addressOf(run) &&
           static_cast<std::int64_t>(addressOf(place) - addressOf(run)) < bytes;
}

// The page whose storage holds a place: this one, or any of the chain where a node can link to other pages.
const karVarPage *karVarPage::pageWith(const void *place) const
{
    if (contains(place))
        return this;
    if constexpr (sizeof(void *) == 4) {
        for (const karVarPage *page = first(); page; page = page->next())
            if (page->contains(place))
                return page;
    }
    return nullptr;
}

bool karVarPage::canHoldNode(const void *place) const
{
    const karVarPage *const page = pageWith(place);
    if (!page)
        return false;
    const int bytes = page->storageBytes() < nodeBytes ? nodeBytes : page->storageBytes();
    return addressOf(place) - addressOf(page->firstPageElement_) <= static_cast<std::uintptr_t>(bytes - nodeBytes);
}

// Whether a run ends inside the storage in which it starts.
bool karVarPage::holds(const karFreeVarElement *run) const
{
    const karVarPage *const page = pageWith(run);
    return page &&
           behind(run) - addressOf(page->firstPageElement_) <= static_cast<std::uintptr_t>(page->storageBytes());
}

karFreeVarElement *karVarPage::following(const karFreeVarElement *run) const
{
    karFreeVarElement *const next = run->next();
    return canHoldNode(next) ? next : nullptr;
}

void karVarPage::linkBehind(karFreeVarElement *before, karFreeVarElement *run)
{
    if (before)
        before->next(run);
    else
        firstFreeElement_ = run;
}

void *karVarPage::newElement(int count, int fromEnd)
{
    const int elements = raised(count);
    const std::int64_t wanted = bytesOf(count);
    karFreeVarElement *chosen = nullptr;
    Walk walk(*this);
    while (fromEnd && walk.run() && following(walk.run()))
        walk.step();
    for (; walk.run(); walk.step()) {
        karFreeVarElement *const run = walk.run();
        const int bytes = run->getSize();
        if (!holds(run))
            continue; // an owner wrote over the node
        if (bytes == wanted) {
            chosen = run;
            break;
        }
        if (!chosen && bytes - wanted >= nodeBytes) // the remainder holds a node
            chosen = run;
    }
    if (!chosen)
        return nullptr;
    takeRange(chosen, static_cast<int>(wanted));
    elementUsed_ = elementUsed_ > 0 ? kar::wrapAdd(elementUsed_, elements) : elements;
    return chosen;
}

void karVarPage::takeRange(void *start, int bytes)
{
    const std::uintptr_t begin = addressOf(start);
    const std::uintptr_t end = begin + static_cast<std::uintptr_t>(bytes);
    for (Walk walk(*this); walk.run(); walk.step()) {
        karFreeVarElement *const run = walk.run();
        const std::uintptr_t runEnd = behind(run);
        if (addressOf(run) > begin || runEnd < end)
            continue;
        karFreeVarElement *rest = following(run);
        void *const restStart = placeAt(start, bytes);
        if (runEnd > end && canHoldNode(restStart))
            rest = new (restStart) karFreeVarElement(rest, static_cast<int>(runEnd - end));
        if (addressOf(run) < begin) {
            run->next(rest);
            run->setSize(static_cast<int>(begin - addressOf(run)));
        } else {
            linkBehind(walk.before(), rest);
        }
        return;
    }
}

void karVarPage::deleteElement(void *&p, int count)
{
    if (count == 0)
        return;
    for (Walk walk(*this); walk.run(); walk.step())
        if (walk.run() == p)
            return;
    const int elements = raised(count);
    const std::int64_t bytes = bytesOf(count);
    bool standsInRun = false; // the reference, where the bytes of a free run are then
    if (const karVarPage *const page = pageWith(p)) {
        const auto offset = static_cast<std::int64_t>(addressOf(p) - addressOf(page->firstPageElement_));
        const std::int64_t room = page->storageBytes() - offset;
        if (offset % page->elementFullSize_ == 0) {
            standsInRun = page->covers(p, bytes, &p);
            giveRange(p, static_cast<int>(bytes < room ? bytes : room));
        }
    }
    elementUsed_ = elementUsed_ > elements ? elementUsed_ - elements : 0;
    if (elementUsed_ == 0 && !standsInRun)
        p = nullptr;
}

void karVarPage::giveRange(void *start, int bytes)
{
    const std::uintptr_t begin = addressOf(start);
    const std::uintptr_t end = begin + static_cast<std::uintptr_t>(bytes);
    karFreeVarElement *before = nullptr;
    karFreeVarElement *after = nullptr;
    karFreeVarElement *beforeAfter = nullptr;
    for (Walk walk(*this); walk.run(); walk.step()) {
        if (behind(walk.run()) <= begin)
            before = walk.run();
        if (!after && addressOf(walk.run()) >= end) {
            after = walk.run();
            beforeAfter = walk.before();
        }
    }

    if (before && after && addressOf(before) >= addressOf(after)) { // a disordered list
        if (bytes >= nodeBytes)
            firstFreeElement_ = new (start) karFreeVarElement(firstFreeElement_, bytes);
        return;
    }
    const bool touchesBefore = before && behind(before) == begin;
    const bool touchesAfter = after && addressOf(after) == end;
    if (touchesBefore && touchesAfter) {
        before->next(following(after));
        before->setSize(kar::wrapAdd(kar::wrapAdd(before->getSize(), bytes), after->getSize()));
    } else if (touchesBefore) {
        before->setSize(kar::wrapAdd(before->getSize(), bytes));
    } else if (touchesAfter) {
        const int joined = kar::wrapAdd(bytes, after->getSize());
        linkBehind(beforeAfter, new (start) karFreeVarElement(following(after), joined));
    } else if (bytes >= nodeBytes) {
        linkBehind(before, new (start) karFreeVarElement(after, bytes));
    }
}

void *karVarPage::resizeElementLast(void *&p, int oldCount, int newCount)
{
    if (newCount == 0) {
        deleteElement(p, oldCount);
        return nullptr;
    }
    const int kept = raised(newCount);
    const int tailCount = kar::wrapSub(oldCount, kept);
    if (tailCount < minElementCount_)
        return nullptr;
    if (kept > oldCount)
        return nullptr;
    void *const run = p; // the reference may stand in the tail
    void *tail = placeAt(run, std::int64_t{kept} * elementFullSize_);
    deleteElement(tail, tailCount);
    return run;
}

bool karVarPage::isValid() const
{
    if (!firstPageElement_)
        return !firstFreeElement_ && !lastPageElement_ && elementFullSize_ == 0 && elementCount_ == 0;
    const std::uintptr_t storageEnd = addressOf(firstPageElement_) + static_cast<std::uintptr_t>(storageBytes());
    const int smallest = storageBytes() < nodeBytes ? storageBytes() : nodeBytes;
    std::uintptr_t lowest = addressOf(firstPageElement_);
    std::int64_t bytes = std::int64_t{elementUsed_} * elementFullSize_;
    for (const karFreeVarElement *run = firstFreeElement_; run; run = run->next()) {
        if (addressOf(run) < lowest || addressOf(run) >= storageEnd || run->getSize() < smallest ||
            behind(run) > storageEnd)
            return false;
        lowest = behind(run) + 1; // runs that touch are one
        bytes += run->getSize();
    }
    return elementUsed_ >= 0 && bytes <= storageBytes();
}

// ---- Pool

ObjektIdies karVarPageMemory::GetType() const { return KAR_ID_VAR_PAGE_MEMORY; }
int karVarPageMemory::CanCast(ObjektIdies id) const { return id == KAR_ID_VAR_PAGE_MEMORY; }
ObjektIdies karVarPageMemory::listType() const { return KAR_ID_VAR_PAGE_MEMORY; }

karVarPageMemory::karVarPageMemory(int size, int count) : elementSize_(size), elementCount(count) {}

karVarPageMemory::karVarPageMemory(const karVarPageMemory &other)
    : speicher_Speed_(other.speicher_Speed_),
      firstPage(other.firstPage),
      currentPage(other.currentPage),
      lastPage(other.lastPage),
      elementSize_(other.elementSize_),
      elementCount(other.elementCount)
{}

karVarPageMemory &karVarPageMemory::operator=(const karVarPageMemory &other)
{
    if (this == &other)
        return *this;
    speicher_Speed_ = other.speicher_Speed_;
    firstPage = other.firstPage;
    currentPage = other.currentPage;
    lastPage = other.lastPage;
    elementSize_ = other.elementSize_;
    elementCount = other.elementCount;
    apart = nullptr;
    return *this;
}

karVarPageMemory::~karVarPageMemory()
{
    keepApart(nullptr);
    karVarPage *page = firstPage ? firstPage->first() : nullptr;
    while (page || apart) {
        if (!page) {
            page = apart;
            apart = apart->nextApart;
        }
        karVarPage *const following = page->next();
        delete page;
        page = following;
    }
    firstPage = nullptr;
    currentPage = nullptr;
    lastPage = nullptr;
}

int karVarPageMemory::getAnzElem()
{
    if (!firstPage)
        enterChain(lastPage);
    int used = 0;
    for (const karVarPage *page = firstPage ? firstPage->first() : nullptr; page; page = page->next())
        used = kar::wrapAdd(used, page->elementUsed());
    return used;
}

bool karVarPageMemory::isValid() const
{
    const karVarPage *before = nullptr;
    for (const karVarPage *page = firstPage ? firstPage->first() : nullptr; page; page = page->next()) {
        if (page->prev() != before || !page->isValid())
            return false;
        before = page;
    }
    return true;
}

void *karVarPageMemory::newElement(int count)
{
    if (firstPage) {
        // The last page is left to appendElement.
        for (karVarPage *page = firstPage->first(); page && page->next(); page = page->next())
            if (void *const run = page->newElement(count, 0))
                return run;
    }
    return appendElement(count);
}

void *karVarPageMemory::appendElement(int count)
{
    for (karVarPage *page = speicher_Speed_ ? lastPage : firstPage; page; page = page->next())
        if (void *const run = page->newElement(count, speicher_Speed_))
            return run;
    karVarPage *const page = appendPage(count);
    return page ? page->newElement(count, 0) : nullptr;
}

void karVarPageMemory::deleteElement(void *&p, int count)
{
    if (!p || !firstPage)
        return;
    karVarPage *const page = firstPage->search(p);
    if (!page)
        return;
    // The reference may stand in the run itself, whose bytes are free then, or in the page, which may go.
    const bool standsInRun = count != 0 && page->covers(p, page->bytesOf(count), &p);
    const bool standsInPage = page->contains(&p);
    void *run = p;
    page->deleteElement(run, count);
    const bool empty = !run;
    if (empty)
        deletePage(page);
    if (!(empty ? standsInPage : standsInRun))
        p = nullptr;
}

void *karVarPageMemory::resizeElementLast(void *&p, int oldCount, int newCount)
{
    if (!p || !firstPage)
        return nullptr;
    karVarPage *const page = firstPage->search(p);
    if (!page)
        return nullptr;
    if (!speicher_Speed_) {
        if (void *run = newElement(newCount)) {
            const karVarPage *const newPage = firstPage->search(run);
            const void *const behindOld = placeAt(p, page->bytesOf(oldCount));
            const bool directlyBehind = newPage == page && run == behindOld;
            const int used = newPage ? newPage->elementUsed() : 0;
            if (!directlyBehind && kar::wrapMul(used, elementSize_) != newCount)
                return moveRun(page, p, run, oldCount, newCount);
            page->deleteElement(run, newCount); // not worth the move
        }
    }
    // The reference may stand in the run itself, whose bytes are free then.
    const bool standsInRun = page->covers(p, page->bytesOf(oldCount), &p);
    void *kept = p;
    if (kar::wrapMul(kar::wrapSub(oldCount, newCount), elementSize_) >= nodeBytes)
        page->resizeElementLast(kept, oldCount, newCount);
    else if (void *const run = newElement(newCount))
        kept = moveRun(page, p, run, oldCount, newCount);
    if (!standsInRun)
        p = kept;
    return kept;
}

// Copies elements to `target`, none from behind the page, and releases the old run on its page. Returns `target`.
void *karVarPageMemory::moveRun(karVarPage *page, void *run, void *target, int oldCount, int newCount)
{
    const std::int64_t wanted = std::int64_t{newCount} * elementSize_;
    const std::int64_t room =
        page->storageBytes() - static_cast<std::int64_t>(addressOf(run) - addressOf(page->storage()));
    const std::int64_t bytes = wanted < room ? wanted : room;
    if (bytes > 0)
        std::memmove(target, run, static_cast<std::size_t>(bytes));
    page->deleteElement(run, oldCount);
    return target;
}

void karVarPageMemory::checkMemory()
{
    void *run = lastPage ? lastPage->newElement(40, 0) : nullptr;
    if (!run)
        return;
    lastPage->deleteElement(run, 40);
    if (!run)
        deletePage(lastPage);
}

karVarPage *karVarPageMemory::appendPage(int count)
{
    auto *const page = new karVarPage(lastPage, elementSize_, count > elementCount ? count : elementCount);
    if (page && !lastPage && firstPage) {
        page->nextApart = apart;
        apart = page;
    }
    lastPage = page;
    currentPage = page;
    if (!firstPage)
        enterChain(page);
    return page;
}

void karVarPageMemory::deletePage(karVarPage *page)
{
    if (!page)
        return;
    kar::leadPast(*page, firstPage, lastPage, currentPage);
    keepApart(page);
    delete page;
}

void karVarPageMemory::enterChain(karVarPage *page)
{
    firstPage = page;
    keepApart(nullptr);
}

// Of the chains apart those stay that still are; one that begins with the page `leaving`, if any, loses it.
void karVarPageMemory::keepApart(const karVarPage *leaving)
{
    const auto link = [](karVarPage &first) -> karVarPage *& { return first.nextApart; };
    kar::dropJoined(apart, firstPage, link);
    if (leaving)
        kar::leadPast(*leaving, apart, link);
}
