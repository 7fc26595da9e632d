// How the examples of the documentation show what they get.
#ifndef EXPECT_H
#define EXPECT_H

#include <cstdio>
#include <cstdlib>

/// Ends the program if something doesn't hold.
#define EXPECT(condition)                                                                                              \
    ((condition) ? static_cast<void>(0)                                                                                \
                 : (std::fprintf(stderr, "%s:%d: %s doesn't hold\n", __FILE__, __LINE__, #condition), std::exit(1)))

#endif
