// Names of temporary files. All of the library's start with the same prefix.
#ifndef QXCORE_FILE_PLATFORM_TEMP_NAME_H
#define QXCORE_FILE_PLATFORM_TEMP_NAME_H

#include <cstddef>

namespace qx {

inline constexpr size_t kTempNameSize = 512;

// Makes an empty new file in the directory and answers its path, or false with GetLastError.
bool MakeTempFile(const char* directory, char (&path)[kTempNameSize]);
// The same in the system's directory for temporary files.
bool MakeSystemTempFile(char (&path)[kTempNameSize]);

}  // namespace qx

#endif
