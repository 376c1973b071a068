// Sinks, streams and storages of a test's own, which note in one log what they are asked.
#ifndef QXCORE_TESTS_STORAGE_DOCUMENT_KINDS_H
#define QXCORE_TESTS_STORAGE_DOCUMENT_KINDS_H

#include "storage/compound/storage_fixture.h"

#include <functional>
#include <string>

using Log = std::string;

// Answers what the test's function says; without one, 0.
class TestSink final : public CQXUnknownImpl<IProgress> {
public:
    explicit TestSink(std::function<int()> answer = nullptr) : answer(std::move(answer)) {}
    ~TestSink() override {
        if (log) *log += "~sink ";
    }

    int IsCancelled() override {
        ++polls;
        if (log) *log += "ask ";
        return answer ? answer() : 0;
    }
    void Unused1() override { ADD_FAILURE() << "nobody calls this"; }
    void Unused2() override { ADD_FAILURE() << "nobody calls this"; }
    void SetRange(int low, int high) override {
        ranges += "SetRange(" + std::to_string(low) + ", " + std::to_string(high) + ") ";
        if (onRange) onRange();
    }

    std::function<int()> answer;
    std::function<void()> onRange;
    int polls = 0;
    std::string ranges;
    Log* log = nullptr;
};

// Notes each operation and answers numbers that tell it from the others.
class NotingStream final : public CQXUnknownImpl<IXStream> {
public:
    explicit NotingStream(Log& log) : m_log(log) {}
    ~NotingStream() override { m_log += "~stream "; }

    int Read(void* buffer, int count) override {
        memset(buffer, 'r', count);
        return Note("Read", 101);
    }
    int Write(const void*, int) override { return Note("Write", 102); }
    int Seek(int offset, int origin) override { return Note("Seek", 1000 * offset + origin); }
    int Tell() override { return Note("Tell", 104); }
    unsigned char ReadByte() override { return Note("ReadByte", 105); }
    unsigned short ReadShort() override { return Note("ReadShort", 106); }
    unsigned ReadLong() override { return Note("ReadLong", 107u); }
    double ReadDouble() override { return Note("ReadDouble", 108.5); }
    int ReadString(char* buffer, int count) override {
        strncpy(buffer, "text", count);
        return Note("ReadString", 109);
    }
    int ReadVariant(tagQXVARIANT*) override { return Note("ReadVariant", 110); }
    void WriteVariant(const tagQXVARIANT*) override { Note("WriteVariant", 0); }
    int WriteByte(unsigned char value) override { return Note("WriteByte", value + 1); }
    int WriteShort(unsigned short value) override { return Note("WriteShort", value + 1); }
    int WriteLong(unsigned value) override {
        return Note("WriteLong", static_cast<int>(value + 1));
    }
    int WriteDouble(double value) override {
        return Note("WriteDouble", static_cast<int>(value + 1));
    }
    int WriteString(const char* text) override {
        return Note("WriteString", static_cast<int>(strlen(text)));
    }
    int GetLength() override { return Note("GetLength", 119); }
    const char* GetName() override { return Note("GetName", "noting"); }

private:
    template <class T>
    T Note(const char* what, T result) {
        m_log += std::string(what) + " ";
        return result;
    }

    Log& m_log;
};

// Notes each operation and hands out what it was given.
class NotingStorage final : public CQXUnknownImpl<IXStorage> {
public:
    explicit NotingStorage(Log& log) : m_log(log) {}
    ~NotingStorage() override { m_log += "~storage "; }

    IXStorage* CreateStorage(const char* name, int unused) override {
        return Note(std::string("CreateStorage ") + name + " " + std::to_string(unused), child);
    }
    IXStorage* OpenStorage(const char* name) override {
        return Note(std::string("OpenStorage ") + name, child);
    }
    HRESULT DeleteStorage(const char* name) override {
        return Note(std::string("DeleteStorage ") + name, 21);
    }
    IXStorage* GetParent() override { return Note("GetParent", parent); }
    CTEnum<const char*>* EnumStorages() override { return Note("EnumStorages", names); }
    IXStream* CreateStream(const char* name) override {
        return Note(std::string("CreateStream ") + name, stream);
    }
    IXStream* OpenStream(const char* name) override {
        return Note(std::string("OpenStream ") + name, stream);
    }
    HRESULT DeleteStream(const char* name) override {
        return Note(std::string("DeleteStream ") + name, 22);
    }
    void Commit() override { Note("Commit", 0); }
    CTEnum<const char*>* EnumStreams() override { return Note("EnumStreams", names); }
    const char* GetPath() override {
        Note("GetPath", 0);
        return "a path";
    }

    // Each handed out with a reference; null by default.
    qx::Reference<IXStorage> child, parent;
    qx::Reference<IXStream> stream;
    qx::Reference<CTEnum<const char*>> names;

private:
    int Note(const std::string& what, int result) {
        m_log += what + " ";
        return result;
    }
    template <class I>
    I* Note(const std::string& what, const qx::Reference<I>& result) {
        m_log += what + " ";
        return result.Share();
    }

    Log& m_log;
};

// The wrapper of a storage as a root.
inline qx::Reference<IXStorage> Watch(IXStorage* storage, IProgress* sink, int flag = 0) {
    qx::Reference<IXStorage> document;
    EXPECT_EQ(new_CIXDocStorage(storage, sink, document.Receive(), flag), 1);
    return document;
}

inline qx::Reference<IXStream> WatchStream(IXStorage* document, IXStream* stream, int flag = 0) {
    qx::Reference<IXStream> watched;
    EXPECT_EQ(new_CIXDocStream(document, stream, watched.Receive(), flag), 1);
    return watched;
}

#endif
