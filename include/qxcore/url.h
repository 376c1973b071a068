// Files behind URLs: addressing, transfers, and files that are a local copy.
#ifndef QXCORE_URL_H
#define QXCORE_URL_H

#include <qxcore/file.h>
#include <qxcore/fileops.h>

class CXString;

QXCORE_API int Fio_UrlCrack(const char* url, CXString& host, CXString& user, CXString& password,
                            CXString& path);
QXCORE_API const char* Fio_DownloadToCacheFile(const char* url);
QXCORE_API int Fio_DownloadToFile(const char* url, const char* localPath);
QXCORE_API void Fio_UrlGetFileInfo(const char* url, FioFileInfo* info);
QXCORE_API int Fio_UrlIsWritableFile(const char* url);
QXCORE_API int Fio_UrlIsWritableDir(const char* url);
QXCORE_API int Fio_UrlPutFile(const char* url, const char* localPath);
QXCORE_API int Fio_UrlDeleteFile(const char* url);
QXCORE_API void Fio_UrlCreateDirectory(const char* url);
QXCORE_API IXFile* Fio_UrlOpen(const char* url, int flags);
QXCORE_API IXOutFile* Fio_UrlOpenOut(const char* url, int flags);

#endif
