// Member functions that may be called on a null object.
#ifndef KAR_NULL_OBJECT_H
#define KAR_NULL_OBJECT_H

namespace kar {

/// `object` itself, in a form that is still tested for null, and that stays null in a conversion to a base class at an
/// offset: compilers take `this` for non-null and drop both. Reading it through a volatile pointer hides where it
/// comes from.
template <class T>
const T *maybeNull(const T *object)
{
    const T *const volatile seen = object;
    return seen;
}

/// Elements of the whole chain that holds `element`, 0 for null.
template <class Element>
int chainLength(const Element *element)
{
    if (!element)
        return 0;
    int length = 0;
    for (element = element->first(); element; element = element->next())
        ++length;
    return length;
}

} // namespace kar

/// Before a member function that tests its own object for null: the undefined-behaviour sanitizer leaves it alone.
#define KAR_MAY_BE_NULL __attribute__((no_sanitize("undefined")))

#endif
