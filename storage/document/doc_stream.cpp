// The stream that asks its document's sink whether to go on.
#include "storage/document/doc_storage.h"
#include "storage/forwarding/forwarding_stream.h"

#include <qxcore/attached.h>
#include <qxcore/document.h>
#include <qxcore/exception.h>

#include <algorithm>
#include <cassert>
#include <iterator>
#include <new>

namespace qx {

namespace {

// When an operation asks the sink: beside the inner stream's work, or not at all.
enum class Asks { Never, After, Before };

struct AskRow {
    StreamOperation operation;
    Asks when;
    bool tellsFirst = false;  // takes its own position before anything else
};

constexpr AskRow kAskRows[] = {
    {StreamOperation::Read, Asks::After},
    {StreamOperation::Write, Asks::After},
    {StreamOperation::Seek, Asks::After},
    {StreamOperation::Tell, Asks::Never},
    {StreamOperation::TypedRead, Asks::After},
    {StreamOperation::ReadString, Asks::After},
    {StreamOperation::ReadVariant, Asks::After, true},
    {StreamOperation::WriteVariant, Asks::Before, true},
    {StreamOperation::TypedWrite, Asks::Before},
    {StreamOperation::WriteString, Asks::Before},
    {StreamOperation::GetLength, Asks::Never},
    {StreamOperation::GetName, Asks::Never},
};

constexpr AskRow RowOf(StreamOperation operation) {
    return *std::find_if(std::begin(kAskRows), std::end(kAskRows),
                         [&](const AskRow& row) { return row.operation == operation; });
}

// An object for a caller, or null where there is none.
template <class I>
int HandOut(I* object, I** out) {
    assert(out);
    *out = Hold(object).Detach();
    return 1;
}

class CIXDocStream final : public CForwardingStream<CIXDocStream>,
                           public IDocStrorageInfo,
                           public IRegisterIface {
public:
    CIXDocStream(CIXDocStorage* storage, Reference<IXStream> inner, int flag);

    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;

    int GetInnerStorage(IXStorage** out) override {
        return HandOut(m_storage ? m_storage->Inner() : nullptr, out);
    }
    int Reserved1(void*) override { return 0; }
    int GetDocStorage(IXStorage** out) override { return HandOut<IXStorage>(m_storage.Get(), out); }
    int Reserved2(void*) override { return 0; }
    int GetInnerStream(IXStream** out) override { return HandOut(m_inner.Get(), out); }
    int Reserved3(void*) override { return 0; }
    int GetFlag() override { return m_flag; }

    int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) override {
        return m_attached.Register(object, id, counted);
    }

    unsigned InternalRelease() override;

    template <StreamOperation operation, class Call>
    auto Forward(Call call) {
        constexpr AskRow kRow = RowOf(operation);
        if constexpr (kRow.when == Asks::Never) {
            return call();
        } else {
            Work work(*this);
            if constexpr (kRow.tellsFirst) Tell();
            if constexpr (kRow.when == Asks::Before) {
                Poll();
                return call();
            } else {
                auto result = call();
                Poll();
                return result;
            }
        }
    }

private:
    enum class State : unsigned char {
        Idle,
        Working,
        LetGo,  // while it was working, and holding itself since
    };

    // An operation under way, which the object outlives: whom it calls may let go of the stream.
    // Counting references for that in each operation would be half its price.
    class Work {
    public:
        explicit Work(CIXDocStream& stream)
            : m_stream(stream), m_outermost(stream.m_state == State::Idle) {
            if (m_outermost) stream.m_state = State::Working;
        }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;
        ~Work() {
            if (!m_outermost) return;
            bool letGo = m_stream.m_state == State::LetGo;
            m_stream.m_state = State::Idle;
            if (letGo) m_stream.InternalRelease();
        }

    private:
        CIXDocStream& m_stream;
        bool m_outermost;
    };

    void Poll() {
        if (!m_sink || m_sink->IsCancelled()) Stop();
    }
    [[noreturn]] QXCORE_NOINLINE void Stop() {
        throw CXException(m_sink ? QXERR_CANCELLED : QXERR_BAD_USE);
    }

    // The table goes first, then the storage.
    Reference<CIXDocStorage> m_storage;  // null without a document
    CAttachedInterfaces m_attached;
    IProgress* m_sink;  // the document's, which holds it; null without one
    int m_flag;
    State m_state = State::Idle;
};

unsigned CIXDocStream::InternalRelease() {
    if (m_state == State::Working) {
        InternalAddRef();
        m_state = State::LetGo;
    }
    return CForwardingStream::InternalRelease();
}

CIXDocStream::CIXDocStream(CIXDocStorage* storage, Reference<IXStream> inner, int flag)
    : CForwardingStream(std::move(inner)),
      m_storage(Hold(storage)),
      m_sink(storage ? storage->Sink() : nullptr),
      m_flag(flag) {
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
}

int CIXDocStream::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (InternalQueryInterface(id, out)) return 1;
    if (id == qx_typeid<IRegisterIface>())
        return QXAnswerQuery(static_cast<IRegisterIface*>(this), out);
    if (id == qx_typeid<IXStorage>() || id == qx_typeid<IProgress>())
        return m_storage ? m_storage->QueryInterface(id, out) : QXAnswerQuery(nullptr, out);
    if (id == qx_typeid<IDocStrorageInfo>())
        return QXAnswerQuery(static_cast<IDocStrorageInfo*>(this), out);
    return m_attached.Query(id, out);
}

}  // namespace

IXStream* NewDocStream(CIXDocStorage* storage, Reference<IXStream> stream, int flag) {
    try {
        return new CIXDocStream(storage, std::move(stream), flag);
    } catch (CXMemException&) {
        return nullptr;
    }
}

}  // namespace qx

int new_CIXDocStream(IXStorage* storage, IXStream* stream, IXStream** out, int flag) {
    assert(stream && out);
    *out = qx::NewDocStream(qx::CIXDocStorage::From(storage), qx::Hold(stream), flag);
    return 1;
}
