// The one road from a failure of the operating system to an exception.
#ifndef QXCORE_FILE_PLATFORM_FILE_ERROR_H
#define QXCORE_FILE_PLATFORM_FILE_ERROR_H

#include <qxcore/exception.h>

namespace qx {

// The code of a Win32 error; 11 for one that has no code of its own.
int CodeOfSystemError(DWORD error);

// Raises CXFileException for GetLastError.
[[noreturn]] void RaiseFileError(const char* name, int operation);

}  // namespace qx

#endif
