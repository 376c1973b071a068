// The exceptions of the library: numbers, not texts. A host turns a code into words.
//
//     try {
//         document.Save(path);
//     } catch (CXFileException& e) {
//         Show(TextOf(e.GetCode()), e.name);  // the host's texts
//     } catch (CXException& e) {
//         Show(TextOf(e.GetCode()));
//     }
//
// Thrown by value, caught by reference; a catch of CXException& catches the family. Making one
// never allocates. Lookups, queries and the factory throw nothing of this: they answer 0.
#ifndef QXCORE_EXCEPTION_H
#define QXCORE_EXCEPTION_H

#include <qxcore/platform.h>
#include <qxcore/typeid.h>

// The codes are part of the interface.
enum : int {
    QXERR_CANCELLED = 1,       // the operation was cancelled by the user
    QXERR_MEMORY = 2,          // out of memory, or an unclassified failure of creating a file
    QXERR_DISK_FULL = 3,       // disk full
    QXERR_EOF = 4,             // end of file
    QXERR_SEEK = 5,            // bad seek
    QXERR_NOT_FOUND = 6,       // file or path not found
    QXERR_BAD_NAME = 7,        // invalid file name or path
    QXERR_SHARING = 8,         // access or sharing violation
    QXERR_ACCESS_DENIED = 9,   // not writable or write-protected
    QXERR_BAD_USE = 10,        // invalid seek origin, a second sink, an absent object or interface
    QXERR_UNKNOWN = 11,        // unclassified, or unsupported content
    QXERR_DEVICE = 12,         // device or I/O failure: read, write or seek failed
    QXERR_NETWORK = 13,        // network or incomplete-operation failure
    QXERR_TOO_MANY_OPEN = 14,  // too many open files
    QXERR_FORMAT = 15,         // bad format, and every failure without a code of its own
    QXERR_OBJECT_SIZE = 16,    // a persisted object claims more bytes than the stream holds
    QXERR_INI_LINE = 34        // an ini line of NUL characters
};

// The root of the family, and a failure that needs no more than its code.
class CXException {
public:
    // The library's own module handle goes along with the code.
    QXCORE_API explicit CXException(int code);
    CXException(const CXException&) = default;
    CXException& operator=(const CXException&) = default;
    virtual ~CXException() = default;

    // One of QXERR_..., or a code of the host's own.
    virtual int GetCode() { return code; }
    // Does nothing here; a hook for a class that shows its failure.
    virtual void Report() {}

    int code;
    HINSTANCE module;  // where it was raised
};

// Raised by heaps and by the creation of events.
class CXMemException : public CXException {
public:
    CXMemException() : CXException(QXERR_MEMORY) {}
};

// Raised by typed reads at the end of a stream.
class CXEofException : public CXException {
public:
    CXEofException() : CXException(QXERR_EOF) {}
};

// What was under way when a file operation failed.
enum : int {
    QXOP_OPEN = 0,
    QXOP_READ = 1,  // a failed write of a storage's stream tells this too
    QXOP_WRITE = 2,
    QXOP_SEEK = 3,
    QXOP_DELETE_ELEMENT = 4,  // of a storage
    QXOP_UNLOCK = 5,
    QXOP_DELETE_FILE = 7,
    QXOP_COPY = 8,
    QXOP_RENAME = 9,
    QXOP_CREATE_DIRECTORY = 10,
    QXOP_DELETE_DIRECTORY = 11,
    QXOP_GET_INFORMATION = 12,
    QXOP_SET_CURRENT_DIRECTORY = 14
};

// A failure with a file's or an element's name.
//
// `name` points into one of four buffers of 512 bytes, since memory may be what has run out: the
// constructor takes the first free one, or overwrites the first when all are in use; a longer name
// is cut. A null name gives an empty text. A copy shares the buffer and every destructor frees it,
// so raise unnamed temporaries only. Threading: the buffers have no guard; the code stays correct,
// the name is a diagnostic.
class CXFileException : public CXException {
public:
    QXCORE_API CXFileException(int code, const char* name, int operation);
    CXFileException(const CXFileException&) = default;
    CXFileException& operator=(const CXFileException&) = default;
    ~CXFileException() override { name[0] = 0; }

    char* name;
    int operation;  // one of QXOP_...; an open file gives its mode
};

// An expected interface or object is absent.
class CXIFaceException : public CXException {
public:
    explicit CXIFaceException(qx_type_info const& type) : CXException(QXERR_BAD_USE), type(&type) {}

    qx_type_info const* type;  // the interface that was missing
};

#endif
