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

/// Of a list of chains, each by its first page, those that a host has joined to others meanwhile go off it: the chain
/// that `wayIn`, if any, stands in, and what begins no chain any more. `link` gives the field of a first page that leads
/// to the next chain.
template <class Page, class Link>
void dropJoined(Page *&chains, const Page *wayIn, Link link)
{
    const Page *const reached = wayIn ? wayIn->first() : nullptr;
    for (Page **entry = &chains; *entry;) {
        if (*entry == reached || (*entry)->prev())
            *entry = link(**entry);
        else
            entry = &link(**entry);
    }
}

/// Before a page goes: in such a list the chain that it begins, if any, begins with its successor from now on.
template <class Page, class Link>
void leadPast(const Page &page, Page *&chains, Link link)
{
    for (Page **entry = &chains; *entry; entry = &link(**entry)) {
        if (*entry != &page)
            continue;
        Page *const behind = page.next();
        if (behind)
            link(*behind) = link(**entry);
        *entry = behind ? behind : link(**entry);
        return;
    }
}

} // namespace kar

#endif
