// What both kinds of page pools do with their chains of pages.
#ifndef KAR_PAGE_CHAIN_H
#define KAR_PAGE_CHAIN_H

namespace kar {

/// Before a page goes: the fields of its pool that lead to it lead to a neighbour, `first` backward,
/// the others forward.
template <class Page>
void leadPast(const Page &page, Page *&first, Page *&last, Page *&current)
{
    Page *const before = page.prev();
    Page *const behind = page.next();
    if (first == &page)
        first = before ? before : behind;
    if (last == &page)
        last = behind ? behind : before;
    if (current == &page)
        current = behind ? behind : before;
}

/// In a list of chains, each by its first page, the chain that begins with `page` begins with `replacement` from now
/// on; null takes it off the list. `link` gives the field of a first page that leads to the next chain.
template <class Page, class Link>
void replaceChain(Page *&chains, const Page *page, Page *replacement, Link link)
{
    for (Page **entry = &chains; *entry; entry = &link(**entry)) {
        if (*entry != page)
            continue;
        Page *const following = link(**entry);
        if (replacement)
            link(*replacement) = following;
        *entry = replacement ? replacement : following;
        return;
    }
}

} // namespace kar

#endif
