// Files behind URLs: taking a URL apart, transfers of whole files, questions and changes on a
// server, and file objects that are a local copy.
//
// Every URL is served by FTP on port 21, whatever scheme and port it names; host, user and password
// come from the URL alone, and one without a user is served as anonymous. Only
// Fio_DownloadToCacheFile goes another way. Each call makes a connection of its own and closes it
// before it returns; nothing is kept between calls.
//
// The functions of <qxcore/file.h> and <qxcore/fileops.h> bring URLs here by themselves. A host
// calls these where it wants to know more than they tell, for instance whether an upload went.
//
// A url must stand in memory that may be written to: taking it apart puts a NUL behind each part
// for a moment. Memory that takes no NUL serves too, but no other thread may read the text
// meanwhile.
//
// Time: a call blocks its thread until the server has answered, and has no time-out of its own. A
// server that is silent holds the caller as long as the platform waits for it; call from a thread
// that may wait.
//
// Errors: questions and transfers answer 0 and say no more; GetLastError then often has the
// platform's reason. A server that cannot be reached looks like a missing file. Where a function
// raises, it is CXFileException with the url as name, password included: show it with care.
//
// Threading: the functions share nothing, apart from the text that Fio_DownloadToCacheFile answers
// and the table of locks (Fio_LockFile), where a file opened for output has its local copy: both
// serve one thread at a time.
#ifndef QXCORE_URL_H
#define QXCORE_URL_H

#include <qxcore/file.h>
#include <qxcore/fileops.h>

class CXString;

// Takes a url apart: 1, or 0 when it is null, no URL (see Fio_PathIsURL) or malformed; the four
// texts then stay as they are. A part that the url does not have is empty. Escapes ("%20") stay as
// they stand, a port is dropped, and the path starts with its '/'.
QXCORE_API int Fio_UrlCrack(const char* url, CXString& host, CXString& user, CXString& password,
                            CXString& path);

// Brings a file into the platform's cache and answers the path of the copy, which belongs to the
// cache; null when that fails. The text is overwritten by the next call. This alone looks at the
// url's scheme and port.
QXCORE_API const char* Fio_DownloadToCacheFile(const char* url);
// Brings a file to a local path, over what is there: non-zero when the server says that all of it
// has come. A transfer that breaks off leaves no half of a file: what it had begun to write is
// deleted, and an old file that was being overwritten with it. FTP has no other sign of the end
// than the server's word, so a server that cuts a file short and says otherwise is believed.
QXCORE_API int Fio_DownloadToFile(const char* url, const char* localPath);
// Sends a local file, over what the server has: non-zero when the server says that all of it has
// come. The last directory of the url is made if it is missing, not the levels above it. 0 without
// a transfer when the local file does not exist, or the remote one does and may not be written. A
// transfer that breaks off leaves what the server makes of it, as a rule the first bytes of the new
// file in the old one's place.
//
// The server's root cannot be looked up as a directory, so a file directly in it is never sent.
QXCORE_API int Fio_UrlPutFile(const char* url, const char* localPath);

// Size and time as the server's listing tells them; a listing may leave out the time of day. The
// entry is looked for by extension, and its name compared without regard to case; a name that has
// no extension is found only where the server or the platform takes "*." for such names. Raises
// with QXOP_GET_INFORMATION when there is none, or `info` is null.
QXCORE_API void Fio_UrlGetFileInfo(const char* url, FioFileInfo* info);
// Whether the file could be written: 0 if it is there and read-only, otherwise the answer about its
// directory.
QXCORE_API int Fio_UrlIsWritableFile(const char* url);
// Whether a file can be made in the directory. It is tried: a file "NUMBER.tmp" is opened for
// writing there and deleted again.
QXCORE_API int Fio_UrlIsWritableDir(const char* url);
// Non-zero when the file was there and the server has deleted it.
QXCORE_API int Fio_UrlDeleteFile(const char* url);
// Makes one level; a directory that exists is done. Raises with QXOP_CREATE_DIRECTORY.
QXCORE_API void Fio_UrlCreateDirectory(const char* url);

// Opens a remote file: a whole copy of it, brought into a temporary file. One reference for the
// caller; null only when the heap gives no memory. Raises with QXOP_OPEN when the file cannot be
// brought. What changes on the server afterwards is not seen, and what QXFIO_OUTPUT lets a caller
// write stays in the copy. GetPath answers the url; exceptions of data operations name the copy.
// The last Release closes the copy, raises what that raises, and leaves the temporary file behind.
QXCORE_API IXFile* Fio_UrlOpen(const char* url, int flags);
// Opens a file that Commit sends to the server. One reference for the caller; null only when the
// heap gives no memory. A url that may not be written to is a plain CXException with code 9.
// Writing starts empty: QXFIO_KEEP brings nothing from the server.
//
// Commit closes the copy, sends it with Fio_UrlPutFile, and deletes it. It does not tell whether
// the server took it: a host that must know asks Fio_UrlGetFileInfo, or sends a file of its own
// with Fio_UrlPutFile. A second Commit raises code 6. A last Release without Commit sends nothing
// and leaves an empty temporary file behind.
QXCORE_API IXOutFile* Fio_UrlOpenOut(const char* url, int flags);

#endif
