// The two streams over an IStream: an element of a storage, and a thin wrapper of a foreign one.
#ifndef QXCORE_STORAGE_COMPOUND_OLE_STREAM_H
#define QXCORE_STORAGE_COMPOUND_OLE_STREAM_H

#include "storage/streams/typed_stream.h"

#include <qxcore/platform.h>
#include <qxcore/reference.h>

#include <objidl.h>

namespace qx {

// Where both hold the stream, so that Stream_GetOLEStream finds it in either.
class COleStreamHolder : public CQXUnknownImpl<IXStream> {
public:
    explicit COleStreamHolder(IStream* ole) : m_ole(Hold(ole)) {}
    IStream* NewOleReference() { return m_ole.Share(); }

protected:
    Reference<IStream> m_ole;
};

// An element of a compound file. Nothing is committed here; that is the storage's business.
class CStream final : public CTypedStream<CStream, COleStreamHolder> {
public:
    CStream(const char* name, IStream* ole);

    int Read(void* buffer, int count) override;
    // Answers the status of the write, 0 for S_OK. A failure is reported with the operation of a
    // read.
    int Write(const void* buffer, int count) override;
    int Seek(int offset, int origin) override;
    int Tell() override { return Seek(0, STREAM_SEEK_CUR); }
    // The last byte of a full buffer gives way to the terminator; with no end found that stands
    // behind count.
    int ReadString(char* buffer, int count) override;
    // Moves the position for a moment.
    int GetLength() override;
    const char* GetName() override { return m_name; }

private:
    void Check(HRESULT status, int operation);

    char m_name[64];
};

// Reports no failure of the stream beneath but through its results.
class COLEBasedXStream final : public CTypedStream<COLEBasedXStream, COleStreamHolder> {
    friend class CTypedStream<COLEBasedXStream, COleStreamHolder>;

public:
    explicit COLEBasedXStream(IStream* ole);
    // The commit is what makes writes durable.
    ~COLEBasedXStream() override;

    // A success flag: 1 when everything was delivered. A short read answers 0 and still has moved
    // the position.
    int Read(void* buffer, int count) override;
    // A failing status, or the count asked for.
    int Write(const void* buffer, int count) override;
    // A negative offset is a huge positive one, and the origin goes through unchecked.
    int Seek(int offset, int origin) override;
    int Tell() override;
    // A line feed does not stop it, and nothing terminates a full buffer.
    int ReadString(char* buffer, int count) override;
    // A null text is written as an empty one.
    int WriteString(const char* text) override;
    // This class never knows its length.
    int GetLength() override { return 0; }
    const char* GetName() override { return ""; }

private:
    template <class T>
    T ReadValue() {
        T value = 0;
        ULONG delivered;
        m_ole->Read(&value, sizeof value, &delivered);
        return value;
    }
    // A failing status, or the count written.
    int WriteBytes(const void* bytes, int count);
};

}  // namespace qx

#endif
