// A storage that notes what it is asked and fails where a test says so.
#ifndef QXCORE_TESTS_PARAM_STORAGE_FAKES_H
#define QXCORE_TESTS_PARAM_STORAGE_FAKES_H

#include <qxcore.h>

#include <string>

// Hands out itself as any sub-storage it is asked for, unless a child is set.
class FakeXStorage : public CQXUnknownImpl<IXStorage> {
public:
    FakeXStorage(const char* name, std::string& log, FakeXStorage* parent = nullptr)
        : m_name(name), m_log(log), m_parent(parent) {}

    IXStorage* CreateStorage(const char* name, int mode) override {
        Note("create " + std::string(name) + " " + std::to_string(mode));
        return Share(child);
    }
    IXStorage* OpenStorage(const char* name) override {
        Note("open " + std::string(name));
        if (missing) throw CXFileException(6, name, 0);
        return Share(child);
    }
    HRESULT DeleteStorage(const char* name) override {
        Note("delete storage " + std::string(name));
        return 0;
    }
    IXStorage* GetParent() override { return Share(m_parent); }
    CTEnum<const char*>* EnumStorages() override {
        Note("list storages");
        return List("one;two");
    }
    IXStream* CreateStream(const char* name) override {
        Note("create stream " + std::string(name));
        return nullptr;
    }
    IXStream* OpenStream(const char* name) override {
        Note("open stream " + std::string(name));
        return nullptr;
    }
    HRESULT DeleteStream(const char* name) override {
        Note("delete stream " + std::string(name));
        return 0;
    }
    void Commit() override { Note("commit"); }
    CTEnum<const char*>* EnumStreams() override {
        Note("list streams");
        return List("value");
    }
    const char* GetPath() override { return ""; }

    FakeXStorage* child = nullptr;
    bool missing = false;  // of every sub-storage
    bool failing = false;  // every noted call throws

private:
    std::string m_name;
    std::string& m_log;
    FakeXStorage* m_parent;

    void Note(const std::string& what) {
        m_log += (m_log.empty() ? "" : ", ") + m_name + " " + what;
        if (failing) throw CXException(12);
    }
    static IXStorage* Share(FakeXStorage* storage) {
        if (storage) storage->AddRef();
        return storage;
    }
    static CTEnum<const char*>* List(const char* names) {
        return new _CCharSeparatedStringsEnum<char>(";", names);
    }
};

#endif
