// A variant as a short text that a test can spell: "INT 5", "TEXT Yes", "SIZE 4,-3", "EMPTY".
#ifndef QXCORE_TESTS_VARIANT_VARIANT_DESCRIPTION_H
#define QXCORE_TESTS_VARIANT_VARIANT_DESCRIPTION_H

#include <qxcore/variant.h>

#include <string>

// Reals are written with ten digits. A null text, blob or object is "null".
std::string Describe(const tagQXVARIANT& v);

#endif
