// How the library beside the tests was built. They ask at run time, so that a test is compiled
// alike for every build: once.
#ifndef QXCORE_TESTS_SUPPORT_BUILD_KIND_H
#define QXCORE_TESTS_SUPPORT_BUILD_KIND_H

// Each block of the heap takes pages and calls of the system, which has some 65,000 mappings.
extern const bool kHasGuardPages;
// Guard pages or traps: what loops runs several times as long as in the optimised build.
extern const bool kIsSlowBuild;

#endif
