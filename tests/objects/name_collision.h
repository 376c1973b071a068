// Names that only look different to a map that compares hashes.
#ifndef QXCORE_TESTS_OBJECTS_NAME_COLLISION_H
#define QXCORE_TESTS_OBJECTS_NAME_COLLISION_H

#include <string>

// The text hash of the library, written from its rule: h = h * 257 + the byte as a signed char.
unsigned TextHash(const std::string& text);
// Nine letters with the hash of `name`, which must not have nine letters itself.
std::string NameWithTheHashOf(const std::string& name);

#endif
