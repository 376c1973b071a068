// The runtime's form of an exponent, as a part of literals: 1E-10 in the universal runtime, which
// writes two digits and more only where it must, 1E-010 in the older one, which writes three.
#ifndef QXCORE_TESTS_EXPONENT_H
#define QXCORE_TESTS_EXPONENT_H

#include <cstdio>  // tells the universal runtime

// What stands before the last two digits of a small exponent.
#ifdef _UCRT
#define EXPONENT_LEAD ""
#else
#define EXPONENT_LEAD "0"
#endif

#endif
