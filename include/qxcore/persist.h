// Objects that write themselves into a stream, inside a frame that names their class.
//
// The frame is: the class name with its terminating zero, the payload's size as 4 bytes, the
// payload. A null object is the one byte of an empty name. A class that needs versions puts them
// into its own payload.
//
// Errors: stream failures pass through, so a stream that ends inside a frame throws CXEofException.
// Frames nest as deep as the stream says, through the Load of classes that hold objects: where the
// stack runs short of room, reading throws CXException code 15, before the process could end.
#ifndef QXCORE_PERSIST_H
#define QXCORE_PERSIST_H

#include <qxcore/platform.h>
#include <qxcore/unknown.h>

struct IXStream;

struct IPersistX : IQXUnknown {
    // The name under which the class is registered, at most 259 bytes. Stays the object's.
    virtual const char* GetClassName() = 0;

protected:
    ~IPersistX() = default;
};
QX_DECLARE_TYPEID(IPersistX, ".?AUIPersistX@@");

struct IPersistXStream : IPersistX {
    // The bytes that Save will write.
    virtual unsigned GetSizeMax() = 0;
    virtual void Load(IXStream* stream) = 0;
    virtual void Save(IXStream* stream) = 0;

protected:
    ~IPersistXStream() = default;
};
QX_DECLARE_TYPEID(IPersistXStream, ".?AUIPersistXStream@@");

// The bytes of the object's frame, by its GetSizeMax. 1 for null.
QXCORE_API unsigned long SizeOfObject(IPersistXStream* object);
// Writes a frame; null is allowed. The payload's size is measured, so the stream must seek in both
// directions. Answers 1.
QXCORE_API int WriteObjectToXStream(IXStream* stream, IPersistXStream* object);
// Reads a frame into a new object: 1, and the caller owns a reference. A null object gives 0 and
// null, and so does a stream with nothing left. A class that is not registered comes back as a
// stand-in that keeps the payload and writes the identical frame again. A frame that claims more
// than the stream holds then throws CXException code 16. A registered class reads what it likes:
// the frame's size is not compared with what Load consumed.
QXCORE_API int ReadObjectFromXStream(IXStream* stream, IQXUnknown** out);
// Moves over a frame and answers where it started. Every frame is taken to have a size field:
// skipping the frame of a null object swallows four bytes of what follows.
QXCORE_API unsigned long SkipObjectToXStream(IXStream* stream);

#endif
