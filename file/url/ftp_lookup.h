// Files found on a server.
#ifndef QXCORE_FILE_URL_FTP_LOOKUP_H
#define QXCORE_FILE_URL_FTP_LOOKUP_H

#include <qxcore/platform.h>

namespace qx {

// Finds what the url names, whatever the case of its name. Raises CXFileException with
// QXOP_GET_INFORMATION and the url when there is no such entry, the server cannot be asked, or
// `found` is null.
void FtpFindEntry(const char* url, WIN32_FIND_DATAA* found);

}  // namespace qx

#endif
