#include "karstringlist.h"

int karStringList::ListObjectOk() { return 1; }
karStringList::~karStringList() = default;

karStringList::karStringList(karListObject *chain) : karListTyped(chain) {}
karStringList::karStringList(const karStringList &other, karListObject *chain)
    : karListTyped(chain), string(other.string, 8u)
{}
karStringList::karStringList(const karString &text, karListObject *chain) : karListTyped(chain), string(text, 8u) {}
karStringList::karStringList(const char *text, karListObject *chain) : karListTyped(chain), string(text, 8u) {}
karStringList::karStringList(unsigned reserve, karListObject *chain) : karListTyped(chain), string(reserve) {}

karStringList &karStringList::operator=(const karStringList &other)
{
    string = other.string;
    return *this;
}

karStringList &karStringList::operator=(const karString &text)
{
    string = text;
    return *this;
}

karStringList &karStringList::operator=(const char *text)
{
    string = text;
    return *this;
}

karStringList &karStringList::operator&=(const karStringList &other)
{
    string &= other.string;
    return *this;
}

karStringList &karStringList::operator&=(const karString &text)
{
    string &= text;
    return *this;
}

karStringList &karStringList::operator&=(const char *text)
{
    string &= text;
    return *this;
}

int karStringListHead::ListHeadObjectOk() { return 1; }
karStringListHead::~karStringListHead() = default;
karStringListHead::karStringListHead() = default;
