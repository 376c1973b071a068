// Streams that stand in front of another one.
#ifndef QXCORE_STORAGE_FORWARDING_FORWARDING_STREAM_H
#define QXCORE_STORAGE_FORWARDING_FORWARDING_STREAM_H

#include <qxcore/reference.h>
#include <qxcore/stream.h>

#include <utility>

namespace qx {

// The operations of a stream, as far as a class tells them apart.
enum class StreamOperation {
    Read,
    Write,
    Seek,
    Tell,
    TypedRead,
    ReadString,
    ReadVariant,
    WriteVariant,
    TypedWrite,
    WriteString,
    GetLength,
    GetName,
};

// Every operation goes to the inner stream with unchanged arguments and results, by way of
//     template <StreamOperation operation, class Call> auto Forward(Call call);
// of the final class Stream, which calls `call` and may do something before and after it.
template <class Stream>
class CForwardingStream : public CQXUnknownImpl<IXStream> {
    using Operation = StreamOperation;

public:
    int Read(void* buffer, int count) override {
        return By<Operation::Read>([&] { return m_inner->Read(buffer, count); });
    }
    int Write(const void* buffer, int count) override {
        return By<Operation::Write>([&] { return m_inner->Write(buffer, count); });
    }
    int Seek(int offset, int origin) override {
        return By<Operation::Seek>([&] { return m_inner->Seek(offset, origin); });
    }
    int Tell() override {
        return By<Operation::Tell>([&] { return m_inner->Tell(); });
    }

    unsigned char ReadByte() override {
        return By<Operation::TypedRead>([&] { return m_inner->ReadByte(); });
    }
    unsigned short ReadShort() override {
        return By<Operation::TypedRead>([&] { return m_inner->ReadShort(); });
    }
    unsigned ReadLong() override {
        return By<Operation::TypedRead>([&] { return m_inner->ReadLong(); });
    }
    double ReadDouble() override {
        return By<Operation::TypedRead>([&] { return m_inner->ReadDouble(); });
    }
    int ReadString(char* buffer, int count) override {
        return By<Operation::ReadString>([&] { return m_inner->ReadString(buffer, count); });
    }
    int ReadVariant(tagQXVARIANT* variant) override {
        return By<Operation::ReadVariant>([&] { return m_inner->ReadVariant(variant); });
    }
    void WriteVariant(const tagQXVARIANT* variant) override {
        By<Operation::WriteVariant>([&] { m_inner->WriteVariant(variant); });
    }

    int WriteByte(unsigned char value) override {
        return By<Operation::TypedWrite>([&] { return m_inner->WriteByte(value); });
    }
    int WriteShort(unsigned short value) override {
        return By<Operation::TypedWrite>([&] { return m_inner->WriteShort(value); });
    }
    int WriteLong(unsigned value) override {
        return By<Operation::TypedWrite>([&] { return m_inner->WriteLong(value); });
    }
    int WriteDouble(double value) override {
        return By<Operation::TypedWrite>([&] { return m_inner->WriteDouble(value); });
    }
    int WriteString(const char* text) override {
        return By<Operation::WriteString>([&] { return m_inner->WriteString(text); });
    }

    int GetLength() override {
        return By<Operation::GetLength>([&] { return m_inner->GetLength(); });
    }
    const char* GetName() override {
        return By<Operation::GetName>([&] { return m_inner->GetName(); });
    }

protected:
    explicit CForwardingStream(Reference<IXStream> inner) : m_inner(std::move(inner)) {}

    // Goes after everything that a derived class holds.
    Reference<IXStream> m_inner;

private:
    template <Operation operation, class Call>
    auto By(Call call) {
        return static_cast<Stream*>(this)->template Forward<operation>(call);
    }
};

}  // namespace qx

#endif
