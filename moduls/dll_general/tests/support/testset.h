// Sets fields to what they can't be, and back.
#ifndef KAR_TEST_SET_H
#define KAR_TEST_SET_H

/// Gives a field another value while it lives.
template <class T>
class Set {
public:
    Set(T &changed, T value) : field(changed), before(changed) { field = value; }
    ~Set() { field = before; }
    Set(const Set &) = delete;
    Set &operator=(const Set &) = delete;

private:
    T &field;
    T before;
};

inline void *moved(void *p, int bytes) { return static_cast<char *>(p) + bytes; }

#endif
