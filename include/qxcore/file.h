// One object shape for every kind of file: on a disk, in memory ("fmem::ADDRESS,SIZE"), behind a
// URL (see <qxcore/url.h>).
//
//     qx::Reference<IXOutFile> file(Fio_OpenOut("letters.txt", 0));
//     file->WriteString("Dear Sir");
//     file->Commit();  // until then letters.txt is what it was
//
// Ownership: what opens a file gives the caller one reference, and the last Release closes it.
// Failures are CXFileException; its `operation` is 1 on a file open for input and 2 on one open for
// output. Threading: no object here locks; a file belongs to one thread at a time.
#ifndef QXCORE_FILE_H
#define QXCORE_FILE_H

#include <qxcore/unknown.h>

// Flags of Fio_Open and Fio_OpenOut.
enum : int {
    QXFIO_OUTPUT = 1,  // open for output
    QXFIO_KEEP = 2,  // output keeps what exists, and the file must exist; otherwise it starts empty
    QXFIO_RANDOM = 0x100,     // expect random access; otherwise sequential
    QXFIO_TEMPORARY = 0x8000  // output: a temporary file that goes when it is closed
};

// Origins of Seek.
enum : int { QXSEEK_START = 0, QXSEEK_CURRENT = 1, QXSEEK_END = 2 };

struct IXFile : IQXUnknown {
    // Bytes delivered: fewer than asked for at the end of the file, 0 behind it. An unreadable
    // buffer or page is code 12.
    virtual unsigned Read(void* buffer, unsigned count) = 0;
    virtual void Write(const void* buffer, unsigned count) = 0;
    // The new position. Code 5 for another origin, a negative target, or, on input, a target behind
    // the end. On output any target is accepted; what a later write leaves out is zero or what the
    // file held there.
    virtual unsigned long long Seek(long long offset, int origin) = 0;
    virtual unsigned long long Tell() = 0;
    virtual int Flush() = 0;  // non-zero on success
    // The typed reads deliver the full width or raise code 4, operation 1.
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadShort() = 0;
    virtual unsigned ReadLong() = 0;
    virtual double ReadDouble() = 0;
    // Reads up to and with the next line feed, at most count bytes, and puts a NUL behind what was
    // read. The answer leaves out the line feed, which stays in the buffer unless it was byte
    // number count: the NUL then takes its place. Where the file ends first, the cell behind the
    // last byte keeps what it held and the NUL stands behind it. The buffer must have room for
    // count + 1 bytes.
    virtual int ReadLine(char* buffer, int count) = 0;
    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteShort(unsigned short value) = 0;
    virtual void WriteLong(unsigned value) = 0;
    virtual void WriteDouble(double value) = 0;
    virtual void WriteString(const char* text) = 0;  // with its NUL
    virtual unsigned long long GetLength() = 0;
    virtual const char* GetPath() = 0;  // lives as long as the file

protected:
    ~IXFile() = default;
};
QX_DECLARE_TYPEID(IXFile, ".?AUIXFile@@");

// A file that appears whole or not at all. Only Commit puts what was written in the target's place;
// the last Release without it abandons everything and leaves the target as it was.
struct IXOutFile : IXFile {
    // Closes the file and puts it in the target's place: the target is deleted, then the new file
    // renamed. A failure between the two leaves the new content in the temporary file beside the
    // target. A second call does nothing. Data operations after it raise code 10.
    virtual void Commit() = 0;

protected:
    ~IXOutFile() = default;
};
QX_DECLARE_TYPEID(IXOutFile, ".?AUIXOutFile@@");

// Opens a file; one reference for the caller. Null only when the heap gives no memory. A null path
// makes a temporary file. The last Release closes; it raises code 2 when the file cannot be closed
// or cut to its length. A URL is brought whole, and the call waits for it without a time-out.
QXCORE_API IXFile* Fio_Open(const char* path, int flags);
// Opens a file that replaces the target on Commit, through a temporary file in the target's
// directory. QXFIO_KEEP starts with the old content, at its end. QXFIO_TEMPORARY loses the target:
// Commit finds nothing to rename. A target that exists is locked (Fio_LockFile); Commit, or the
// last Release without it, unlocks a target that exists then, so one that vanished meanwhile stays
// locked. Null only when the heap gives no memory. A target that may not be written is CXException
// code 9; a directory in which no temporary file can be made is CXException 9, 13, 7 or 2. A URL
// starts empty, and its Commit does not tell whether the server took the file.
QXCORE_API IXOutFile* Fio_OpenOut(const char* path, int flags);

// 1 when the path starts with "fmem::", in any case. Nothing looks at the rest.
QXCORE_API int Fio_IsMemFile(const char* path);

#endif
