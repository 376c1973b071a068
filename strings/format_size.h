// The sizing walk behind Format: how many units a format and its arguments may need.
#ifndef QXCORE_STRINGS_FORMAT_SIZE_H
#define QXCORE_STRINGS_FORMAT_SIZE_H

#include <cstddef>

// Instances for char and wchar_t. The result fits an int.
template <class Ch>
int FormatSize(const Ch* format, char* args);

#endif
