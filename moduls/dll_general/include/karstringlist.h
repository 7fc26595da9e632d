/// \file
/// Lists of texts: an element that carries one, and the head of such a list.
#ifndef KAR_STRING_LIST_H
#define KAR_STRING_LIST_H

#include "karlist.h"
#include "karlisthead.h"
#include "karstring.h"

/// A list element with a text. A copy is a new element: it takes over the text, never the links.
class KAR_API karStringList : public karListTyped<karStringList, karListObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListObjectOk() override; ///< 1.
    ~karStringList() override;   ///< Destroys the text, then takes the element out of its chain.
    /// \}

    /// \name Construction
    /// A `chain` links the element behind the last one of that chain; a head doesn't come to know of it. Texts are
    /// copied with 8 bytes of spare room.
    /// Note: a plain `0` is ambiguous between no chain, no text and no room: write `nullptr` with its type, or `0u`.
    /// \{
    explicit karStringList(karListObject *chain = nullptr); ///< The empty text, size 16.
    /// The text of `other`, not its links.
    karStringList(const karStringList &other, karListObject *chain = nullptr);
    /// A copy of `text`.
    explicit karStringList(const karString &text, karListObject *chain = nullptr);
    /// A copy of `text`; null gives the empty text.
    explicit karStringList(const char *text, karListObject *chain = nullptr);
    explicit karStringList(unsigned reserve, karListObject *chain = nullptr); ///< Empty, room for so many characters.
    /// \}

    /// \name Assignment
    /// The text alone; the links stay.
    /// \{

    /// As the assignment of `karString`; gives the element.
    karStringList &operator=(const karStringList &other);
    karStringList &operator=(const karString &text);
    karStringList &operator=(const char *text);
    /// \}

    /// \name Reading
    /// \{
    karString &getString() { return string; }             ///< The text itself; what is written to it stays.
    const karString &getString() const { return string; } ///< The text itself.
    unsigned vstrlen() const { return string.vstrlen(); } ///< Measures the text; 0 without a buffer.
    /// \}

    void setString(const karString &text) { string = text; } ///< Assigns a copy.

    /// \name Appending
    /// \{

    /// As the concatenation of `karString`; gives the element.
    karStringList &operator&=(const karStringList &other);
    karStringList &operator&=(const karString &text);
    karStringList &operator&=(const char *text);
    /// \}

    /// \name Comparison
    /// 1 if the texts differ byte by byte, else 0.
    /// Note: there is no other comparison; equality is asked of `getString()`.
    /// \{

    /// 1 if the texts differ.
    int operator!=(const karStringList &other) const { return string != other.string; }
    int operator!=(const karString &text) const { return string != text; }
    int operator!=(const char *text) const { return string != text; }
    /// \}

protected:
    karString string; ///< the text, of its own
};

/// The head of a list of texts; owns its elements. A copy of a head shares the chain.
class KAR_API karStringListHead : public karListHeadTyped<karStringList> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListHeadObjectOk() override; ///< 1.
    ~karStringListHead() override;   ///< Deletes the elements.
    /// \}

    karStringListHead();                                               ///< Empty.
    karStringListHead(const karStringListHead &) = default;            ///< Note: shares the chain.
    karStringListHead &operator=(const karStringListHead &) = default; ///< Note: shares the chain.
};

#endif
