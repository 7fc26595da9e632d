#include "karmem.h"

#include "karmemgb.h"
#include "karnumeric.h"
#include "karpool.h"
#include "karstdio.h"
#include "pagechain.h"

#include <cstring>

using kar::addressOf;
using kar::FreeLinks;
using kar::PageIndex;
using kar::PoolAccess;

namespace {

/// Clears the mark of the global allocator for its own lifetime: what is allocated meanwhile comes straight from the
/// heap, without a record.
class MarkCleared {
public:
    MarkCleared() : saved(globalMemList->setMarkMemListGlobal(0)) {}
    ~MarkCleared() { globalMemList->setMarkMemListGlobal(saved); }
    MarkCleared(const MarkCleared &) = delete;
    MarkCleared &operator=(const MarkCleared &) = delete;

private:
    int saved;
};

} // namespace

kar::AddressTable<kar::PageStretch> kar::largePages;

// ---- Pages

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
    if (!firstPageElement_ || addressOf(p) < addressOf(firstPageElement_) || addressOf(p) > addressOf(lastPageElement_))
        return nullptr;
    return p;
}

void *karBasisPage::element_X(void *base, int i)
{
    // As a number: the result may lie outside the storage, and unsigned arithmetic wraps.
    const std::intptr_t index = i;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it may lie outside the storage
    return reinterpret_cast<void *>(addressOf(base) +
                                    static_cast<std::uintptr_t>(index) * static_cast<std::uintptr_t>(elementFullSize_));
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

karPage::karPage(karPage *prev, int size, int count) : karListTyped(prev)
{
    init(size, count);
    if (const karPage *const before = this->prev())
        if (before->state.index)
            before->state.index->add(*this);
}

karPage::karPage(const karPage &other)
    : karListTyped(other), firstFreeElement_(other.firstFreeElement_), state(other.state)
{
    other.linksChange(nullptr); // the neighbours bypass it as the copy dies
}

karPage::~karPage()
{
    if (state.index)
        state.index->remove(*this);
}

karPage &karPage::operator=(const karPage &other)
{
    if (this == &other)
        return *this;
    linksChange(&other); // and the page has another storage and other room from now on
    karListTyped::operator=(other);
    firstFreeElement_ = other.firstFreeElement_;
    state = other.state;
    return *this;
}

void karPage::linksChange(const karPage *other) const
{
    if (state.index)
        state.index->giveUp();
    if (other && other->state.index)
        other->state.index->giveUp();
}

void karPage::init(int size, int count)
{
    constexpr long long smallest = sizeof(karFreeElement);
    constexpr long long largest = 0x7fffffff;
    long long distance = size < smallest ? smallest : size;
    if (sizeof(void *) > 4)
        distance = (distance + 7) / 8 * 8;
    // A product that doesn't fit 32 bits is a failed allocation. Both factors are below 2^32.
    const long long total = count < 0 || distance > largest ? -1 : distance * count;
    firstPageElement_ = total >= 0 && total <= 0xffffffffll ? KarAllocMemory(static_cast<unsigned>(total)) : nullptr;
    elementUsed_ = 0;
    firstFreeElement_ = nullptr;
    if (!firstPageElement_) {
        lastPageElement_ = nullptr;
        elementFullSize_ = 0;
        elementCount_ = 0;
        return;
    }
    elementFullSize_ = static_cast<int>(distance);
    elementCount_ = count;
    state.setElementSize(elementFullSize_);
    char *const start = static_cast<char *>(firstPageElement_);
    lastPageElement_ = start + (total - 1);
    void *lower = nullptr;
    for (char *place = start; count > 0; --count, place += distance) {
        FreeLinks{lower, count > 1 ? place + distance : nullptr}.write(place);
        lower = place;
    }
    firstFreeElement_ = static_cast<karFreeElement *>(lower);
}

int karPage::canInsertElement() const
{
    return firstFreeElement_ && const_cast<karPage *>(this)->checkElement(firstFreeElement_);
}

void *karPage::newElement() { return firstFreeElement_ ? PoolAccess::take(*this) : nullptr; }

void karPage::deleteElement(void *&p)
{
    void *const released = p;
    const bool standsInElement = PoolAccess::standsInElement(*this, &p, released); // whose bytes are free then
    if (PoolAccess::give(*this, released) && !standsInElement)
        p = nullptr;
}

bool karPage::isValid() const
{
    if (!firstPageElement_)
        return !lastPageElement_ && !firstFreeElement_ && elementFullSize_ == 0 && elementCount_ == 0 &&
               elementUsed_ == 0;
    const std::uintptr_t size = static_cast<std::uintptr_t>(elementFullSize_) * static_cast<unsigned>(elementCount_);
    if (addressOf(lastPageElement_) - addressOf(firstPageElement_) + 1 != size)
        return false;
    int freeElements = 0;
    const void *before = nullptr;
    for (const void *element = firstFreeElement_; element;) {
        if (!PoolAccess::isElement(*this, element) || ++freeElements > elementCount_)
            return false;
        const FreeLinks links = FreeLinks::read(element);
        if (links.prev != before)
            return false;
        before = element;
        element = links.next;
    }
    return freeElements + elementUsed_ == elementCount_;
}

// ---- Pool

karPageMemory::karPageMemory(int size, int count) : karPageMemory(size, count, size) {}

karPageMemory::karPageMemory(int size, int count, int stride)
    : firstPage(nullptr),
      currentPage(nullptr),
      lastPage(nullptr),
      elementSize_(size),
      elementCount_(count),
      pageElementSize(stride)
{}

karPageMemory::~karPageMemory()
{
    delete_all();
    deleteApart(); // those beside no first page
}

ObjektIdies karPageMemory::GetType() const { return KAR_ID_PAGE_MEMORY; }
int karPageMemory::CanCast(ObjektIdies id) const { return id == KAR_ID_PAGE_MEMORY; }

void kar::PoolAccess::findIndex(karPageMemory &pool)
{
    pool.state.index = pool.firstPage ? pool.firstPage->state.index : nullptr;
}

karPage *kar::PoolAccess::find(karPageMemory &pool, void *p)
{
    if (!p || !pool.firstPage)
        return nullptr;
    findIndex(pool);
    const PageIndex *const index = pool.state.index;
    return index && index->complete() ? index->find(p) : pool.firstPage->search(p);
}

void *kar::PoolAccess::takeSlowly(karPageMemory &pool)
{
    findIndex(pool);
    const PageIndex *const index = pool.state.index;
    if (index && index->complete()) {
        if (karPage *const page = index->firstWithRoom())
            return take(*page);
    } else if (pool.firstPage) {
        for (karPage *page = pool.firstPage->first(); page; page = page->next())
            if (page->canInsertElement())
                return page->newElement();
    }
    karPage *const page = pool.appendPage();
    return page && page->canInsertElement() ? page->newElement() : nullptr;
}

bool kar::PoolAccess::giveSlowly(karPageMemory &pool, void *p)
{
    karPage *const page = find(pool, p);
    if (!page)
        return false;
    if (give(*page, p))
        pool.deletePage(page);
    return true;
}

void *karPageMemory::newElement()
{
    PoolAccess::findIndex(*this); // a subclass may have entered another chain
    return PoolAccess::take(*this);
}

void karPageMemory::deleteElement(void *&p)
{
    karPage *const page = PoolAccess::find(*this, p);
    if (!page)
        return;
    // The reference may stand in the element, whose bytes are free then, or in the page, which may go.
    const bool standsInElement = PoolAccess::standsInElement(*page, &p, p);
    const bool standsInPage = PoolAccess::holds(*page, &p);
    const bool empty = PoolAccess::give(*page, p);
    if (empty)
        deletePage(page);
    if (!(empty ? standsInPage : standsInElement))
        p = nullptr;
}

karPage *karPageMemory::appendPage()
{
    {
        const MarkCleared direct;
        lastPage = new karPage(lastPage, pageElementSize, elementCount_);
    }
    if (lastPage && !lastPage->prev()) {
        if (PageIndex *const index = PageIndex::create())
            index->add(*lastPage);
        if (firstPage) {
            lastPage->state.nextApart = state.apart;
            state.apart = lastPage;
        }
    }
    if (!firstPage)
        enterChain(lastPage);
    currentPage = lastPage;
    PoolAccess::findIndex(*this);
    return lastPage;
}

void karPageMemory::deletePage(karPage *page)
{
    if (!page)
        return;
    kar::leadPast(*page, firstPage, lastPage, currentPage);
    keepApart(page);
    {
        const MarkCleared direct;
        delete page;
    }
    PoolAccess::findIndex(*this);
}

void karPageMemory::enterChain(karPage *page)
{
    firstPage = page;
    keepApart(nullptr);
}

// Of the chains apart those stay that still are; one that begins with the page `leaving`, if any, loses it.
void karPageMemory::keepApart(const karPage *leaving)
{
    if (!state.apart)
        return;
    const auto link = [](karPage &first) -> karPage *& { return first.state.nextApart; };
    kar::dropJoined(state.apart, firstPage, link);
    if (leaving)
        kar::leadPast(*leaving, state.apart, link);
}

void karPageMemory::deleteApart()
{
    keepApart(nullptr);
    if (!state.apart)
        return;
    const MarkCleared direct;
    while (karPage *const page = state.apart) {
        state.apart = page->state.nextApart;
        deleteChain(page);
    }
}

void karPageMemory::deleteChain(karPage *page)
{
    while (page) {
        karPage *const behind = page->next();
        delete page;
        page = behind;
    }
}

int karPageMemory::delete_all()
{
    if (!firstPage)
        return 0;
    keepApart(nullptr);
    {
        const MarkCleared direct;
        deleteChain(firstPage->first());
    }
    firstPage = currentPage = lastPage = nullptr;
    deleteApart(); // would be out of reach from now on
    PoolAccess::findIndex(*this);
    return 0;
}

int karPageMemory::test_delete_all() { return 0; }

int karPageMemory::getAnzElem()
{
    if (!firstPage)
        enterChain(lastPage);
    if (!firstPage)
        return 0;
    unsigned sum = 0;
    for (const karPage *page = firstPage->first(); page; page = page->next())
        sum += static_cast<unsigned>(page->elementUsed());
    return kar::toSigned(sum);
}

bool karPageMemory::isValid() const
{
    if (!firstPage)
        return !currentPage || currentPage == lastPage;
    const PageIndex *const index = firstPage->state.index;
    if (state.index && state.index != index)
        return false;
    const auto complete = [](const PageIndex *known) { return known && known->complete() ? known : nullptr; };
    const karPage *withRoom = nullptr;
    const karPage *before = nullptr;
    int pages = 0;
    for (const karPage *page = firstPage->first(); page; before = page, page = page->next(), ++pages) {
        if (!page->isValid() || page->prev() != before || complete(page->state.index) != complete(index))
            return false;
        if (!withRoom && page->canInsertElement())
            withRoom = page;
        if (!complete(index))
            continue;
        if (before && before->state.slot >= page->state.slot)
            return false;
        if (page->firstPageElement_ &&
            (index->find(page->firstPageElement_) != page || index->find(page->lastPageElement_) != page))
            return false;
    }
    return !complete(index) || (index->firstWithRoom() == withRoom && index->pages() == pages);
}

// ---- Records

namespace kar {

/// The records of one `karMemory` by the address of their block. Several records of one address stand in their order.
class RecordIndex {
public:
    static RecordIndex *create()
    {
        void *const memory = std::malloc(sizeof(RecordIndex));
        return memory ? ::new (memory) RecordIndex : nullptr;
    }
    void destroy()
    {
        records.clear();
        std::free(this);
    }

    /// A record has been given another address since the index was made.
    bool isStale() const { return changes != recordChanges; }
    std::size_t size() const { return records.size(); }

    bool add(karMemory_Entry &record) { return records.insert({keyOf(record.hentry()), &record}); }
    void remove(karMemory_Entry &record)
    {
        if (Record *const found = find(record))
            records.erase(found);
    }
    bool contains(karMemory_Entry &record) const { return find(record); }
    /// The oldest record of the block, or null.
    karMemory_Entry *find(void *block) const
    {
        const Record *const found = records.find(
            keyOf(block), [block](const Record &candidate) { return candidate.record->hentry() == block; });
        return found ? found->record : nullptr;
    }

    static void noteChange() { ++recordChanges; }

private:
    struct Record {
        std::uintptr_t key;
        karMemory_Entry *record;
    };

    Record *find(karMemory_Entry &record) const
    {
        return records.find(keyOf(record.hentry()),
                            [&record](const Record &candidate) { return candidate.record == &record; });
    }

    // A record may be given any address, null included, and no key is 0.
    static std::uintptr_t keyOf(const void *block) { return addressOf(block) | 1; }

    static unsigned recordChanges;

    AddressTable<Record> records;
    unsigned changes = recordChanges;
};

unsigned RecordIndex::recordChanges = 0;

} // namespace kar

using kar::RecordIndex;

karMemory_Entry::karMemory_Entry(void *p, int size, karMemory_Entry *other)
    : karListTyped(other), hentry_(p), hsize_(size)
{}

karMemory_Entry::~karMemory_Entry() = default;
int karMemory_Entry::ListObjectOk() { return 1; }

karMemory_Entry &karMemory_Entry::operator=(const karMemory_Entry &other)
{
    if (this == &other)
        return *this;
    karListTyped::operator=(other);
    hentry(other.hentry_);
    hsize_ = other.hsize_;
    return *this;
}

void karMemory_Entry::hentry(void *p)
{
    hentry_ = p;
    RecordIndex::noteChange();
}

void karMemory_Entry::hentry(void *p, int size)
{
    hentry(p);
    hsize_ = size;
}

karFile_EntryZ::karFile_EntryZ(std::FILE *f, int size, char kind, karFile_EntryZ *other)
    : karListTyped(other), hentry_(f), hsize_(size), openKind(kind)
{}

karFile_EntryZ::~karFile_EntryZ() = default;
int karFile_EntryZ::ListObjectOk() { return 1; }

// ---- Tracked blocks

namespace {

constexpr int recordSize = sizeof(karMemory_Entry) > 28 ? static_cast<int>(sizeof(karMemory_Entry)) : 28;
constexpr int recordsPerPage = 1000;
constexpr int fewRecords = 8; // are looked through without an index

} // namespace

karMemory::karMemory()
    : entryPool(recordSize, recordsPerPage),
      memoryEntries(nullptr),
      fileEntries(nullptr),
      curr_used_memory_(0),
      max_used_memory_(0),
      index(nullptr)
{}

karMemory::karMemory(const karMemory &other)
    : entryPool(other.entryPool),
      memoryEntries(other.memoryEntries),
      fileEntries(other.fileEntries),
      curr_used_memory_(other.curr_used_memory_),
      max_used_memory_(other.max_used_memory_),
      index(nullptr)
{}

karMemory &karMemory::operator=(const karMemory &other)
{
    if (this == &other)
        return *this;
    forgetIndex();
    entryPool = other.entryPool;
    memoryEntries = other.memoryEntries;
    fileEntries = other.fileEntries;
    curr_used_memory_ = other.curr_used_memory_;
    max_used_memory_ = other.max_used_memory_;
    return *this;
}

karMemory::~karMemory()
{
    testDeleteAllGlobal();
    delete_all();
    forgetIndex();
}

void karMemory::forgetIndex()
{
    if (index)
        index->destroy();
    index = nullptr;
}

void *karMemory::dxnew(void *p, unsigned size)
{
    if (!p)
        return nullptr;
    void *element;
    {
        const MarkCleared direct;
        element = entryPool.newElement();
    }
    void *const place = KarAllocMemory(sizeof(karMemory_Entry), element);
    if (place) {
        // cppcheck-suppress legacyUninitvar ; it takes the placement for a use
        karMemory_Entry *const record = ::new (place) karMemory_Entry(p, 0, memoryEntries);
        record->hsize_ = kar::addLong(0, size);
        memoryEntries = record;
        if (index && !index->add(*record))
            forgetIndex();
    } else {
        memoryEntries = nullptr;
        forgetIndex();
    }
    curr_used_memory_ = kar::addLong(curr_used_memory_, size);
    if (curr_used_memory_ > max_used_memory_)
        max_used_memory_ = curr_used_memory_;
    return p;
}

void karMemory::dxdelete(void **p)
{
    karMemory_Entry *const record = memoryEntries ? search_memory_entry(*p) : nullptr;
    if (!record) {
        if (memoryEntries) {
            debugErrorText(0, "%s(%d)", "moduls/dll_general/src/karmem", __LINE__);
            debugErrorText(0, "Speichereintrag nicht gefunden! (karMemory :: dxdelete)");
        }
        *p = nullptr;
        return;
    }
    if (memoryEntries == record)
        memoryEntries = record->set_besideIt();
    curr_used_memory_ = kar::addLong(curr_used_memory_, 0ul - static_cast<unsigned long>(record->hsize_));
    if (!memoryEntries)
        forgetIndex();
    else if (index)
        index->remove(*record);
    record->~karMemory_Entry();
    void *element = record;
    const MarkCleared direct;
    entryPool.deleteElement(element);
}

karMemory_Entry *karMemory::search_memory_entry(void *p)
{
    if (!memoryEntries || memoryEntries->hentry() == p)
        return memoryEntries;
    if (index && index->isStale())
        forgetIndex();
    if (!index) {
        // From the tail back; the oldest match counts.
        karMemory_Entry *match = nullptr;
        karMemory_Entry *record = memoryEntries->prev();
        for (int looked = 0; record && looked < fewRecords; ++looked, record = record->prev())
            if (record->hentry() == p)
                match = record;
        if (!record)
            return match;
        index = RecordIndex::create();
        for (record = memoryEntries->first(); record && index; record = record->next())
            if (!index->add(*record))
                forgetIndex();
    }
    if (index) {
        karMemory_Entry *const record = index->find(p);
        if (!record || (record->next() && record->next()->prev() == record))
            return record;
        forgetIndex(); // a host has taken the record out of the chain
    }
    for (karMemory_Entry *record = memoryEntries->first(); record->next(); record = record->next())
        if (record->hentry() == p)
            return record;
    return nullptr;
}

int karMemory::delete_all()
{
    if (!memoryEntries)
        return 2;
    for (karMemory_Entry *record = memoryEntries->last(); record;) {
        karMemory_Entry *const before = record->prev();
        memoryEntries = record; // found first by the release, also where records were passed over
        if (record->hentry() && globalMemList->knows(record->hentry()))
            KarDellocMemory(record->hentry());
        record = before;
    }
    memoryEntries = nullptr;
    forgetIndex();
    return curr_used_memory_ != 0;
}

void karMemory::testDeleteAllGlobal()
{
    if (!memoryEntries)
        entryPool.getAnzElem();
}

bool karMemory::isValid() const
{
    if (!entryPool.isValid() || (memoryEntries && memoryEntries->next()) || (fileEntries && fileEntries->next()))
        return false;
    if (!index || index->isStale())
        return true;
    std::size_t records = 0;
    for (karMemory_Entry *record = memoryEntries; record; record = record->prev(), ++records)
        if ((record->prev() && record->prev()->next() != record) || !index->contains(*record))
            return false;
    return records == index->size();
}

// ---- Tracked files

std::FILE *karMemory::xfopen(const char *name, const char *mode)
{
    if (!*name)
        return nullptr;
    std::FILE *const file = std::fopen(name, mode);
    if (!file)
        return nullptr;
    char kind = 3;
    if (std::strcmp(mode, "rb") == 0)
        kind = 1;
    if (std::strcmp(mode, "wb") == 0)
        kind = 2;
    long size = 0;
    if (kind != 2) {
        std::fseek(file, 0, SEEK_END);
        size = std::ftell(file);
        std::fseek(file, 0, SEEK_SET);
    }
    fileEntries = new karFile_EntryZ(file, kar::toSigned(static_cast<unsigned>(size)), kind, fileEntries);
    return file;
}

int karMemory::xfclose(std::FILE *f)
{
    karFile_EntryZ *const record = search_file_entry(f);
    if (!record)
        return 1;
    const int result = std::fclose(f);
    if (fileEntries == record)
        fileEntries = record->set_besideIt();
    delete record;
    return result;
}

int karMemory::xfclose_all()
{
    if (!fileEntries)
        return 1;
    karFile_EntryZ *record = fileEntries;
    while (karFile_EntryZ *const behind = record->next())
        record = behind;
    if (record->hentry())
        std::fclose(record->hentry());
    fileEntries = record->prev();
    delete record;
    return 0;
}

karFile_EntryZ *karMemory::search_file_entry(void *f)
{
    if (!fileEntries || fileEntries->hentry() == f)
        return fileEntries;
    for (karFile_EntryZ *record = fileEntries->first(); record->next(); record = record->next())
        if (record->hentry() == f)
            return record;
    return nullptr;
}

void karMemory::xmemcpy(void *dst, void *src, long n)
{
    if (n > 0)
        std::memmove(dst, src, static_cast<std::size_t>(n));
}
