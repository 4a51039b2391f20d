#pragma once

#include <cstdio>
#include <cstdlib>

/// What the small programs of this folder say when something is not as it should be: the line, and
/// exit code 1 at once, also from a static destructor. The words at the front decide: the exit code
/// of a program that has said "passed" does not count.
#define CHECK(condition)                                                                           \
    ((condition)                                                                                   \
         ? static_cast<void>(0)                                                                    \
         : (std::fprintf(stderr, "Check failed: %s:%d: %s\n", __FILE__, __LINE__, #condition),     \
            std::fflush(stderr), std::_Exit(1)))
