#include "storage/streams/memory_block.h"
#include "storage/streams/typed_stream.h"

#include <qxcore/progress.h>
#include <qxcore/reference.h>

#include <new>

namespace qx {

namespace {

// The stream over a growing block of memory.
class CMemStream final : public CTypedStream<CMemStream>, public IMemBlock {
public:
    // The sink may be null.
    explicit CMemStream(IProgress* progress) : m_progress(Hold(progress)) {}

    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;

    // At the end the sink is not asked.
    int Read(void* buffer, int count) override {
        int left = GetLength() - m_position;
        if (left <= 0) return 0;
        if (count < 0) count = 0;
        return count <= left ? Deliver(buffer, count) : DeliverRest(buffer, left);
    }
    int Write(const void* buffer, int count) override {
        if (count < 0) count = 0;
        long long start = m_position, end = start + count;
        if (!m_block.Holds(end)) return WriteGrowing(buffer, count);
        if (count > 0) memmove(m_block.data.get() + start, buffer, count);
        m_position = static_cast<int>(end);
        if (end > m_block.used) m_block.used = static_cast<unsigned>(end);
        return Polled(count);
    }
    int Seek(int offset, int origin) override {
        return m_position = ClampedSeek(this, m_position, GetLength(), offset, origin);
    }
    int Tell() override { return m_position; }
    // A full buffer is terminated one byte behind count, and the answer is count + 1.
    int ReadString(char* buffer, int count) override {
        int last = ReadLine(buffer, count) + 1;
        buffer[last] = 0;
        return last;
    }
    int GetLength() override { return static_cast<int>(m_block.used); }
    const char* GetName() override { return "Memory stream"; }

    unsigned GetSize() override { return m_block.used; }
    void* GetData() override { return m_block.capacity ? m_block.data.get() : nullptr; }
    void SetData(const void* bytes, unsigned size) override { m_block.Set(bytes, size); }

private:
    // What is rare stands apart, so that a typed read stays one load and a typed write one store. A
    // caller's buffer may be a part of the block itself.

    int Deliver(void* buffer, int count) {
        memmove(buffer, m_block.data.get() + m_position, count);
        m_position += count;
        return Polled(count);
    }
    QXCORE_NOINLINE int DeliverRest(void* buffer, int left) { return Deliver(buffer, left); }

    QXCORE_NOINLINE int WriteGrowing(const void* buffer, int count) {
        CMemoryBlock::Bytes old = m_block.Grow(static_cast<long long>(m_position) + count);
        return Write(buffer, count);
    }
    // What the call moved stays moved.
    int Polled(int count) { return m_progress ? AskSink(count) : count; }
    // The sink may let go of the stream in its answer.
    QXCORE_NOINLINE int AskSink(int count) {
        Reference<CMemStream> alive = Hold(this);
        if (m_progress->IsCancelled()) throw CXException(QXERR_CANCELLED);
        return count;
    }

    CMemoryBlock m_block;
    int m_position = 0;
    Reference<IProgress> m_progress;
};

int CMemStream::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (InternalQueryInterface(id, out)) return 1;
    IMemBlock* block = id == qx_typeid<IMemBlock>() ? this : nullptr;
    return QXAnswerQuery(block, out);
}

}  // namespace

}  // namespace qx

IXStream* new_StreamOnMemory() {
    return new_StreamOnMemory(nullptr);
}

IXStream* new_StreamOnMemory(IProgress* progress) {
    return new (std::nothrow) qx::CMemStream(progress);
}
