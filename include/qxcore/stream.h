// Byte channels: the one interface through which objects, variants and documents are written and
// read.
//
//     qx::Reference<IXStream> stream(new_StreamOnMemory());
//     stream->WriteLong(7);
//     stream->WriteString("seven");
//     stream->Seek(0, 0);
//     unsigned number = stream->ReadLong();
//
// Values travel little-endian with no framing, padding or alignment: a stream holds exactly what
// was written. Positions and lengths are 32 bits wide. A variant is its type in 2 bytes and then
// its value: 4 bytes also for an empty one, the plain values in their own width, a text as its
// length with the terminator in 4 bytes and its characters, a block as its size in 4 bytes and its
// bytes, an object as its frame (persist.h).
//
// There are memory streams, elements of storages (storage.h), wrappers of the platform's streams,
// a stream that is always empty, and watched streams (document.h). They share this interface and
// the encoding; where the interface says that they differ, code that takes any stream keeps to what
// they have in common.
// Errors: the typed reads and ReadString throw CXEofException at the end; an element of a storage
// throws CXFileException for what the platform refuses, with operation 1 for reads and writes
// alike and 3 for seeks, and with the element's name.
// Threading: no stream locks; a stream belongs to one thread at a time.
#ifndef QXCORE_STREAM_H
#define QXCORE_STREAM_H

#include <qxcore/unknown.h>

struct IProgress;
struct tagQXVARIANT;

struct IXStream : IQXUnknown {
    // Delivers at most count bytes and answers how many; 0 means that nothing could be delivered. A
    // stream over a foreign OLE stream, and the empty stream, answer a success flag instead.
    virtual int Read(void* buffer, int count) = 0;
    // Overwrites or appends at the position. The result is the class's own affair; callers ignore
    // it.
    virtual int Write(const void* buffer, int count) = 0;
    // Origin 0 is the start, 1 the position, 2 the end; any other throws CXFileException code 10.
    // Answers the new position.
    virtual int Seek(int offset, int origin) = 0;
    virtual int Tell() = 0;

    // Throw CXEofException when nothing was left. A value cut off by the end comes back with its
    // missing bytes unset, and no exception.
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadShort() = 0;
    virtual unsigned ReadLong() = 0;
    virtual double ReadDouble() = 0;
    // Reads up to and with a line feed or a NUL, at most count bytes, terminates, and answers the
    // length with that last byte. How a full buffer ends differs: an element of a storage puts the
    // NUL at buffer[count] and answers count; a memory stream puts it at buffer[count + 1] and
    // answers count + 1; a stream over a foreign OLE stream ends at a NUL only and terminates
    // nothing. So the buffer has room for count + 2 bytes.
    virtual int ReadString(char* buffer, int count) = 0;
    // Replaces the variant by the next one; 0 at the end. A value cut off by the end comes back
    // with its missing bytes 0, and as 1 when anything of it was there. A blob has the size that it
    // claims. An unknown tag throws CXFileException code 15.
    virtual int ReadVariant(tagQXVARIANT* variant) = 0;
    virtual void WriteVariant(const tagQXVARIANT* variant) = 0;

    virtual int WriteByte(unsigned char value) = 0;
    virtual int WriteShort(unsigned short value) = 0;
    virtual int WriteLong(unsigned value) = 0;
    virtual int WriteDouble(double value) = 0;
    // Writes the terminating NUL too.
    virtual int WriteString(const char* text) = 0;

    virtual int GetLength() = 0;
    // The stream's name, for messages.
    virtual const char* GetName() = 0;

protected:
    ~IXStream() = default;
};
QX_DECLARE_TYPEID(IXStream, ".?AUIXStream@@");

// The bytes of a memory stream, reached by asking the stream for this interface.
struct IMemBlock : IQXUnknown {
    virtual unsigned GetSize() = 0;
    // The first byte, null while there is no buffer. Valid until the next growing write, SetData or
    // the stream's end.
    virtual void* GetData() = 0;
    // Replaces the bytes by a copy of `bytes`, or by `size` zeros when that is null. The position
    // stays, and further growth goes in steps of `size`: a block set to 0 bytes cannot grow, and a
    // write to it divides by zero.
    virtual void SetData(const void* bytes, unsigned size) = 0;

protected:
    ~IMemBlock() = default;
};
QX_DECLARE_TYPEID(IMemBlock, ".?AUIMemBlock@@");

// The makers give the caller the one reference, or null when the heap gives no memory.

// A growing buffer. With a sink, each read and write ends with a look at IsCancelled, and a
// non-zero answer throws CXException code 1; the bytes of that call have moved. Seeks are clamped
// to the stream and never fail on range. What is read or written may be a part of the stream's own
// block.
QXCORE_API IXStream* new_StreamOnMemory();
QXCORE_API IXStream* new_StreamOnMemory(IProgress* progress);
// Swallows writes and reads as zeros. Its length is 1.
QXCORE_API IXStream* new_EmptyStream();
// A thin wrapper of an IStream, which it references, rewinds, and commits when it ends. OLE
// failures never throw; Read answers 1 only when all was delivered; the length is always 0; a
// negative seek is a huge positive one.
QXCORE_API IXStream* new_StreamByOleStream(void* oleStream);

// The IStream under a stream of a storage or of new_StreamByOleStream, with a reference for the
// caller. Nothing tests the class: any other stream is undefined behaviour.
QXCORE_API void* Stream_GetOLEStream(IXStream* stream);

#endif
