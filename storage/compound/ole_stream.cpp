#include "storage/compound/ole_stream.h"

#include "storage/compound/ole_failure.h"

#include <new>

namespace qx {

namespace {

// The platform counts without a sign: a negative count is none.
ULONG OleCount(int count) {
    return count > 0 ? count : 0;
}

LARGE_INTEGER OleOffset(long long offset) {
    LARGE_INTEGER distance;
    distance.QuadPart = offset;
    return distance;
}

}  // namespace

CStream::CStream(const char* name, IStream* ole) : CTypedStream(ole) {
    strncpy(m_name, name, sizeof m_name - 1);
    m_name[sizeof m_name - 1] = 0;
}

void CStream::Check(HRESULT status, int operation) {
    if (FAILED(status)) throw CXFileException(CodeOfStatus(status), m_name, operation);
}

int CStream::Read(void* buffer, int count) {
    ULONG delivered = 0;
    Check(m_ole->Read(buffer, OleCount(count), &delivered), QXOP_READ);
    return delivered;
}

int CStream::Write(const void* buffer, int count) {
    ULONG written = 0;
    HRESULT status = m_ole->Write(buffer, OleCount(count), &written);
    Check(status, QXOP_READ);
    return status;
}

int CStream::Seek(int offset, int origin) {
    CheckOrigin(this, origin);
    ULARGE_INTEGER before = {}, position = {};
    if (offset < 0) Check(m_ole->Seek(OleOffset(0), STREAM_SEEK_CUR, &before), QXOP_SEEK);
    Check(m_ole->Seek(OleOffset(offset), origin, &position), QXOP_SEEK);
    // Not every platform refuses a position before the start, where a write would do harm.
    if (static_cast<long long>(position.QuadPart) < 0) {
        m_ole->Seek(OleOffset(before.QuadPart), STREAM_SEEK_SET, nullptr);
        Check(STG_E_INVALIDFUNCTION, QXOP_SEEK);
    }
    return static_cast<int>(position.LowPart);
}

int CStream::ReadString(char* buffer, int count) {
    int last = ReadLine(buffer, count);
    if (last < count - 1) ++last;
    buffer[last] = 0;
    return last;
}

int CStream::GetLength() {
    int saved = Tell();
    int length = Seek(0, STREAM_SEEK_END);
    Seek(saved, STREAM_SEEK_SET);
    return length;
}

COLEBasedXStream::COLEBasedXStream(IStream* ole) : CTypedStream(ole) {
    m_ole->Seek(OleOffset(0), STREAM_SEEK_SET, nullptr);
}

COLEBasedXStream::~COLEBasedXStream() {
    m_ole->Commit(STGC_DEFAULT);
}

int COLEBasedXStream::Read(void* buffer, int count) {
    ULONG delivered = 0;
    HRESULT status = m_ole->Read(buffer, OleCount(count), &delivered);
    return status == S_OK && delivered == OleCount(count);
}

int COLEBasedXStream::Write(const void* buffer, int count) {
    ULONG written = 0;
    HRESULT status = m_ole->Write(buffer, OleCount(count), &written);
    return FAILED(status) ? status : count;
}

int COLEBasedXStream::WriteBytes(const void* bytes, int count) {
    ULONG written = 0;
    HRESULT status = m_ole->Write(bytes, OleCount(count), &written);
    return FAILED(status) ? status : static_cast<int>(written);
}

int COLEBasedXStream::Seek(int offset, int origin) {
    ULARGE_INTEGER position = {};
    m_ole->Seek(OleOffset(static_cast<unsigned>(offset)), origin, &position);
    return static_cast<int>(position.LowPart);
}

int COLEBasedXStream::Tell() {
    return Seek(0, STREAM_SEEK_CUR);
}

int COLEBasedXStream::ReadString(char* buffer, int count) {
    int i = 0;
    while (i < count) {
        buffer[i] = static_cast<char>(ReadByte());
        if (buffer[i++] == 0) break;
    }
    return i;
}

int COLEBasedXStream::WriteString(const char* text) {
    return text ? CTypedStream::WriteString(text) : WriteByte(0);
}

}  // namespace qx

IXStream* new_StreamByOleStream(void* oleStream) {
    return new (std::nothrow) qx::COLEBasedXStream(static_cast<IStream*>(oleStream));
}

void* Stream_GetOLEStream(IXStream* stream) {
    return static_cast<qx::COleStreamHolder*>(stream)->NewOleReference();
}
