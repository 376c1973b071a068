// Platform objects that answer what a test tells them to, and note what they were asked.
#ifndef QXCORE_TESTS_STORAGE_OLE_FAKES_H
#define QXCORE_TESTS_STORAGE_OLE_FAKES_H

#include <qxcore/platform.h>

#include <objidl.h>

#include <string>
#include <vector>

// The counted part of an object on the test's stack.
template <class I>
class FakeObject : public I {
public:
    STDMETHOD_(ULONG, AddRef)() override { return ++references; }
    STDMETHOD_(ULONG, Release)() override {
        --references;
        Note("Release");
        return references;
    }
    STDMETHOD(QueryInterface)(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }

    // What happened, in order; set to share one list among several objects.
    void Note(const char* what) {
        if (log) *log += std::string(what) + name + " ";
    }

    ULONG references = 1;
    std::string* log = nullptr;
    std::string name;
};

class FakeStream : public FakeObject<IStream> {
public:
    STDMETHOD(Read)(void* buffer, ULONG count, ULONG* read) override {
        if (FAILED(readStatus)) return readStatus;
        ULONG left = static_cast<ULONG>(bytes.size()) - position;
        *read = count < left ? count : left;
        memcpy(buffer, bytes.data() + position, *read);
        position += *read;
        return readStatus;
    }
    STDMETHOD(Write)(const void* buffer, ULONG count, ULONG* written) override {
        if (FAILED(writeStatus)) return writeStatus;
        if (count > writeLimit) count = writeLimit;
        bytes.replace(position, count, static_cast<const char*>(buffer), count);
        position += count;
        *written = count;
        return writeStatus;
    }
    STDMETHOD(Seek)(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* result) override {
        lastMove = move.QuadPart;
        lastOrigin = origin;
        if (FAILED(seekStatus)) return seekStatus;
        if (origin == STREAM_SEEK_SET) position = static_cast<ULONG>(move.QuadPart);
        if (result) result->QuadPart = seekResult ? seekResult : position;
        Note("Seek");
        return seekStatus;
    }
    STDMETHOD(Commit)(DWORD flags) override {
        lastCommitFlags = flags;
        Note("Commit");
        return S_OK;
    }
    STDMETHOD(SetSize)(ULARGE_INTEGER) override { return E_NOTIMPL; }
    STDMETHOD(CopyTo)(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    STDMETHOD(Revert)() override { return E_NOTIMPL; }
    STDMETHOD(LockRegion)(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(UnlockRegion)(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(Stat)(STATSTG*, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(Clone)(IStream**) override { return E_NOTIMPL; }

    std::string bytes;
    ULONG position = 0;
    HRESULT readStatus = S_OK, writeStatus = S_OK, seekStatus = S_OK;
    ULONG writeLimit = 0xFFFFFFFF;
    ULONGLONG seekResult = 0;  // what Seek reports, if not the position
    LONGLONG lastMove = -1;
    DWORD lastOrigin = 99;
    DWORD lastCommitFlags = 99;
};

// Hands out its stream and its child, or fails with its status. Any name will do.
class FakeStorage : public FakeObject<IStorage> {
public:
    STDMETHOD(CreateStream)(const OLECHAR* text, DWORD mode, DWORD, DWORD, IStream** out) override {
        return HandOut(text, mode, stream, out);
    }
    STDMETHOD(OpenStream)(const OLECHAR* text, void*, DWORD mode, DWORD, IStream** out) override {
        return HandOut(text, mode, stream, out);
    }
    STDMETHOD(CreateStorage)
    (const OLECHAR* text, DWORD mode, DWORD, DWORD, IStorage** out) override {
        return HandOut(text, mode, child, out);
    }
    STDMETHOD(OpenStorage)
    (const OLECHAR* text, IStorage*, DWORD mode, SNB, DWORD, IStorage** out) override {
        return HandOut(text, mode, child, out);
    }
    STDMETHOD(CopyTo)(DWORD, const IID*, SNB, IStorage*) override { return E_NOTIMPL; }
    STDMETHOD(MoveElementTo)(const OLECHAR*, IStorage*, const OLECHAR*, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHOD(Commit)(DWORD) override {
        Note("Commit");
        return status;
    }
    STDMETHOD(Revert)() override {
        Note("Revert");
        return status;
    }
    STDMETHOD(EnumElements)(DWORD, void*, DWORD, IEnumSTATSTG** out) override {
        *out = nullptr;
        return status;
    }
    STDMETHOD(DestroyElement)(const OLECHAR* text) override {
        lastName = text;
        return status;
    }
    STDMETHOD(RenameElement)(const OLECHAR*, const OLECHAR*) override { return E_NOTIMPL; }
    STDMETHOD(SetElementTimes)
    (const OLECHAR*, const FILETIME*, const FILETIME*, const FILETIME*) override {
        return E_NOTIMPL;
    }
    STDMETHOD(SetClass)(REFCLSID) override { return E_NOTIMPL; }
    STDMETHOD(SetStateBits)(DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(Stat)(STATSTG* facts, DWORD flags) override {
        lastStatFlags = flags;
        *facts = {};
        facts->grfMode = mode;
        return statStatus;
    }

    HRESULT status = S_OK;
    HRESULT statStatus = S_OK;
    DWORD mode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    FakeStream* stream = nullptr;
    FakeStorage* child = nullptr;
    std::wstring lastName;
    DWORD lastMode = 0;
    DWORD lastStatFlags = 99;

private:
    template <class Fake, class I>
    HRESULT HandOut(const OLECHAR* text, DWORD asked, Fake* object, I** out) {
        lastName = text;
        lastMode = asked;
        *out = nullptr;
        if (FAILED(status)) return status;
        if (!object) return STG_E_FILENOTFOUND;
        object->AddRef();
        *out = object;
        return status;
    }
};

struct StatusRow {
    unsigned status;
    int code;
};

// Written down once more from the rule, not taken from the library.
inline const std::vector<StatusRow>& FailingStatusRows() {
    static const std::vector<StatusRow> rows = {
        {0x80030002, 6},  {0x80030003, 6},  {0x80030004, 14}, {0x80030005, 8},  {0x80030020, 8},
        {0x80030021, 8},  {0x80030008, 2},  {0x80030012, 3},  {0x80030070, 3},  {0x80030013, 9},
        {0x80030019, 12}, {0x8003001D, 12}, {0x8003001E, 12}, {0x80030103, 12}, {0x800300F0, 11},
        {0x800300FA, 11}, {0x800300FD, 11}, {0x800300FE, 11}, {0x80030104, 11}, {0x80030105, 11},
        {0x80030108, 11}, {0x800300FC, 7},  {0x80030100, 8},  {0x80030106, 8},  {0x80030201, 13},
        {0x80030202, 13}, {0x80030001, 15}, {0x80030006, 15}, {0x80030050, 15}, {0x80030057, 15},
        {0x80030102, 15}, {0x8003010B, 15}, {0x80004005, 15}, {0x8007000E, 15}, {0x80070005, 15},
        {0xFFFFFFFF, 15},
    };
    return rows;
}

#endif
