// Watched documents: storages and streams wrapped so that saving and loading can be shown and
// stopped.
//
// A wrapper stands in front of a storage, and everything that is reached through it is wrapped too:
// its sub-storages, theirs, and all their streams. Each operation of such a stream that moves data
// asks one sink (IProgress) whether the user wants to stop, and throws CXException code 1 when the
// answer is not zero. Nothing in the code that saves or loads needs to know of it:
//
//     qx::Reference<IXStorage> file(open_Storage(path, 1)), watched;
//     new_CIXDocStorage(file.Get(), sink, watched.Receive(), 0);
//     try {
//         LoadDrawing(watched.Get());  // reads as from any storage
//     } catch (CXException& e) {
//         if (e.GetCode() != QXERR_CANCELLED) throw;
//     }
//
// Stopping a save. Closing a storage commits it, also while an exception is on its way, and the
// wrapper forwards Commit and nothing that undoes. A program that stops in the middle therefore
// keeps the document on the disk in one of two ways:
//
// - It opens the document transacted, saves through a wrapper, and reverts the storage beneath when
//   the save does not come to its end:
//
//       qx::Reference<IXStorage> file(open_Storage(path, 0)), watched;
//       new_CIXDocStorage(file.Get(), sink, watched.Receive(), 0);
//       try {
//           SaveDrawing(watched.Get());
//       } catch (...) {
//           watched.Release();  // first what stands on top: sub-storages commit into their parent
//           static_cast<CStorage*>(file.Get())->Revert();
//           throw;
//       }
//
// - It saves into a new file beside the document, and puts that in the document's place when it is
//   whole.
//
// Ownership: a wrapper holds what it wraps and, through the root, the sink. Children keep the root
// alive. The sink must not hold the document in return, or neither goes.
// Errors: code 1 where the sink stops the work, code 10 where there is nothing to ask; the rest is
// what the wrapped objects raise. What a sink throws reaches the caller.
// Threading: the sink is asked on the thread that works on the stream. It may answer what another
// thread told it, and it may let go of the document in its answer: the operation under way still
// ends as it should.
#ifndef QXCORE_DOCUMENT_H
#define QXCORE_DOCUMENT_H

#include <qxcore/progress.h>
#include <qxcore/storage.h>
#include <qxcore/stream.h>
#include <qxcore/unknown.h>

// What a wrapped stream tells of its document. Every wrapped stream answers a query for it.
struct IDocStrorageInfo : IQXUnknown {
    // The storage that the document's wrapper stands in front of, with a reference for the caller;
    // null for a stream without a document. Always 1. REQUIRES: out is not null; so below.
    virtual int GetInnerStorage(IXStorage** out) = 0;
    // Answers 0 and stores nothing, like the other two.
    virtual int Reserved1(void* unused) = 0;
    // The document's wrapper, with a reference for the caller; null for a stream without one.
    // Always 1.
    virtual int GetDocStorage(IXStorage** out) = 0;
    virtual int Reserved2(void* unused) = 0;
    // The stream that this one stands in front of, with a reference for the caller: what is read
    // and written there is not watched. Always 1.
    virtual int GetInnerStream(IXStream** out) = 0;
    virtual int Reserved3(void* unused) = 0;
    // The flag that the document, or this stream alone, was wrapped with. It means nothing to the
    // library.
    virtual int GetFlag() = 0;

protected:
    ~IDocStrorageInfo() = default;
};
QX_DECLARE_TYPEID(IDocStrorageInfo, ".?AUIDocStrorageInfo@@");

// Wraps a storage as the root of a watched document and calls the sink's SetRange(0, 100). Always
// answers 1; *out is null only when the heap gives no memory. Without a sink the document can be
// walked, but the first operation of a stream that would ask it raises CXException code 10.
//
// The wrapper forwards every operation. Four wrap what they hand out: CreateStorage, OpenStorage,
// CreateStream and OpenStream. GetParent hands out the parent of the storage beneath, unwrapped.
// Asked for IProgress, a wrapper passes the question to the sink; it answers IQXUnknown and
// IXStorage itself, and nothing else: properties (IQXProperty) are had from the storage beneath.
//
// REQUIRES: neither storage nor out is null.
QXCORE_API int new_CIXDocStorage(IXStorage* storage, IProgress* progress, IXStorage** out,
                                 int flag);

// Wraps one stream for a document that new_CIXDocStorage or one of its sub-storages is; a storage
// of any other class, or none, gives a stream without a document, which can be told its position,
// length and name, while everything else raises CXException code 10. Always answers 1; *out is null
// only when the heap gives no memory.
//
// Where the operations of a wrapped stream ask the sink:
//
//     Read, Write, Seek, ReadByte to ReadString, ReadVariant    after the stream beneath has worked
//     WriteByte to WriteString, WriteVariant                    before
//     Tell, GetLength, GetName                                  not at all
//
// So a stopped read has moved its bytes, while a stopped value has not been written; a stopped
// Write has. A variant counts as one operation, however much it holds. An operation that itself
// fails does not ask.
//
// A wrapped stream answers IQXUnknown, IXStream, IRegisterIface and IDocStrorageInfo itself and
// passes IXStorage and IProgress on to the document. Further interfaces are attached through
// IRegisterIface: with them code that sees only the stream reaches what belongs to its document.
//
// REQUIRES: neither stream nor out is null.
QXCORE_API int new_CIXDocStream(IXStorage* storage, IXStream* stream, IXStream** out, int flag);

#endif
