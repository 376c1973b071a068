// Files that put another file behind a path of their own.
#ifndef QXCORE_FILE_SHAPES_FORWARDING_FILE_H
#define QXCORE_FILE_SHAPES_FORWARDING_FILE_H

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

// Every data operation of interface I goes to the inner file; only GetPath is the object's own.
// Exceptions pass through with the inner file's path. Without an inner file data operations raise
// code 10.
template <class I, class InnerFile>
class CForwardingFile : public CQXUnknownImpl<I> {
public:
    unsigned Read(void* buffer, unsigned count) override { return Inner().Read(buffer, count); }
    void Write(const void* buffer, unsigned count) override { Inner().Write(buffer, count); }
    unsigned long long Seek(long long offset, int origin) override {
        return Inner().Seek(offset, origin);
    }
    unsigned long long Tell() override { return Inner().Tell(); }
    int Flush() override { return Inner().Flush(); }
    unsigned char ReadByte() override { return Inner().ReadByte(); }
    unsigned short ReadShort() override { return Inner().ReadShort(); }
    unsigned ReadLong() override { return Inner().ReadLong(); }
    double ReadDouble() override { return Inner().ReadDouble(); }
    int ReadLine(char* buffer, int count) override { return Inner().ReadLine(buffer, count); }
    void WriteByte(unsigned char value) override { Inner().WriteByte(value); }
    void WriteShort(unsigned short value) override { Inner().WriteShort(value); }
    void WriteLong(unsigned value) override { Inner().WriteLong(value); }
    void WriteDouble(double value) override { Inner().WriteDouble(value); }
    void WriteString(const char* text) override { Inner().WriteString(text); }
    unsigned long long GetLength() override { return Inner().GetLength(); }
    const char* GetPath() override { return m_path; }

protected:
    explicit CForwardingFile(const char* path) : m_path(path) {}

    InnerFile& Inner() {
        if (!m_inner) throw CXException(QXERR_BAD_USE);
        return *m_inner.Get();
    }

    CXString m_path;
    Reference<InnerFile> m_inner;
};

}  // namespace qx

#endif
