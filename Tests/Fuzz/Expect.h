#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program, as a crash would, when what must hold does not.
inline void expect(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
