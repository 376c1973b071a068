#include "support/allocation_failure.h"
#include "translate/dictionary/dictionary_fixture.h"

#include <objidl.h>
#include <qxcore/exception.h>
#include <qxcore/storage.h>

#include <cstring>
#include <memory>

namespace {

// A storage in memory, also reached through the raw OLE interface.
class TestStorage {
public:
    TestStorage()
        : m_storage(new_Storage(nullptr, 0)),
          m_ole(static_cast<IStorage*>(Storage_GetOLEStorage(m_storage))) {}
    TestStorage(const TestStorage&) = delete;
    TestStorage& operator=(const TestStorage&) = delete;
    ~TestStorage() {
        m_ole->Release();
        m_storage->Release();
    }

    IXStorage* Get() const { return m_storage; }

    // The bytes of a stream; "(none)" when it is missing.
    std::string Bytes(const wchar_t* name) const {
        IStream* stream = nullptr;
        if (FAILED(m_ole->OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream)))
            return "(none)";
        std::string bytes(100000, 0);
        ULONG read = 0;
        stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read);
        stream->Release();
        return bytes.substr(0, read);
    }
    void Write(const wchar_t* name, const std::string& bytes) const {
        IStream* stream = nullptr;
        ASSERT_EQ(S_OK,
                  m_ole->CreateStream(name, STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                      0, &stream));
        stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
        stream->Release();
    }

private:
    IXStorage* m_storage;
    IStorage* m_ole;
};

// Takes so many streams and no more.
class LimitedStorage : public CQXUnknownImpl<IXStorage> {
public:
    LimitedStorage(IXStorage* storage, int streams) : m_storage(storage), m_streams(streams) {}
    IXStream* CreateStream(const char* name) override {
        return m_streams-- ? m_storage->CreateStream(name) : nullptr;
    }

    IXStorage* CreateStorage(const char*, int) override { return nullptr; }
    IXStorage* OpenStorage(const char*) override { return nullptr; }
    HRESULT DeleteStorage(const char*) override { return E_NOTIMPL; }
    IXStorage* GetParent() override { return nullptr; }
    CTEnum<const char*>* EnumStorages() override { return nullptr; }
    IXStream* OpenStream(const char*) override { return nullptr; }
    HRESULT DeleteStream(const char*) override { return E_NOTIMPL; }
    void Commit() override {}
    CTEnum<const char*>* EnumStreams() override { return nullptr; }
    const char* GetPath() override { return ""; }

private:
    IXStorage* m_storage;
    int m_streams;
};

std::string Long(unsigned value) {
    std::string bytes(4, 0);
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>(value >> 8 * i);
    return bytes;
}

// A length that counts the NUL, and the bytes with it.
std::string Text(const std::string& text) {
    return Long(static_cast<unsigned>(text.size()) + 1) + text + '\0';
}

std::string Header(unsigned count, const std::string& font, unsigned script, unsigned size) {
    return Long(count) + Text(font) + Long(script) + Long(size);
}

std::string Entry(const std::string& source, const std::string& target, unsigned count = 1) {
    return Text(source) + Text(target) + Long(count);
}

// What a failing call throws: its code and, of a file exception, the name.
template <class Call>
std::string Thrown(Call call) {
    try {
        call();
    } catch (CXFileException& e) {
        return std::to_string(e.GetCode()) + " " + e.name;
    } catch (CXException& e) {
        return std::to_string(e.GetCode());
    }
    return "nothing";
}

}  // namespace

TEST(DictionaryStorageTest, HeaderIsCountFontScriptAndSize) {
    TestStorage storage;
    CWld d;
    strcpy(d.m_szFontName, "Arial");
    d.m_nFontScript = 204;
    d.m_nFontSize = 9;
    Enter(d, "Open", "Auf");
    d.Save(storage.Get());
    EXPECT_EQ(Header(1, "Arial", 204, 9), storage.Bytes(L"ContextHeader"));
    EXPECT_EQ(Entry("Open", "Auf"), storage.Bytes(L"C0"));
    EXPECT_EQ("(none)", storage.Bytes(L"C1"));
    EXPECT_EQ(1, d.m_nContexts);
}

TEST(DictionaryStorageTest, EmptyDictionaryIsAHeaderAlone) {
    TestStorage storage;
    CWld d;
    d.m_szFontName[0] = 0;
    d.m_nFontSize = 8;
    d.m_nContexts = 77;
    d.Save(storage.Get());
    EXPECT_EQ(Header(0, "", 0, 8), storage.Bytes(L"ContextHeader"));
    EXPECT_EQ("(none)", storage.Bytes(L"C0"));
    EXPECT_EQ(0, d.m_nContexts);
}

TEST(DictionaryStorageTest, EntriesAreNumberedInBucketOrderNewestFirst) {
    // The hashes are 258, 4 and 2; of 127 buckets the first two share number 4.
    TestStorage storage;
    CWld d;
    Enter(d, "\1\1", "older");
    Enter(d, "\4", "newer");
    Enter(d, "\2", "lower");
    d.Save(storage.Get());
    EXPECT_EQ(Entry("\2", "lower"), storage.Bytes(L"C0"));
    EXPECT_EQ(Entry("\4", "newer"), storage.Bytes(L"C1"));
    EXPECT_EQ(Entry("\1\1", "older"), storage.Bytes(L"C2"));
}

TEST(DictionaryStorageTest, EmptyTextsAreWrittenWithTheirNul) {
    TestStorage storage;
    CWld d;
    Enter(d, "", "");
    d.Save(storage.Get());
    EXPECT_EQ(Long(1) + std::string(1, 0) + Long(1) + std::string(1, 0) + Long(1),
              storage.Bytes(L"C0"));
}

TEST(DictionaryStorageTest, CountOfAnEntryIsStoredAndRestored) {
    TestStorage storage;
    CWld d;
    auto entry = new CContext("Open", "Auf");
    entry->count = 0x01020304;
    d.m_Contexts.SetAt("Open", entry);
    d.Save(storage.Get());
    EXPECT_EQ(Entry("Open", "Auf", 0x01020304), storage.Bytes(L"C0"));
    CWld restored;
    restored.Restore(storage.Get());
    EXPECT_EQ(0x01020304, (*restored.m_Contexts.Find("Open"))->count);
}

TEST(DictionaryStorageTest, WhatTheFormatSaysIsRestored) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(2, "Tahoma", 128, 30));
    storage.Write(L"C0", Entry("Open", "Auf", 5));
    storage.Write(L"C1", Entry("view.dll#1#130\xFD\xFDOpen", "hier"));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_EQ(2, d.m_nContexts);
    EXPECT_EQ(2u, d.m_Contexts.count);
    EXPECT_STREQ("Tahoma", d.m_szFontName);
    EXPECT_EQ(128, d.m_nFontScript);
    EXPECT_EQ(30, d.m_nFontSize) << "a stored size is not clamped";
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
    EXPECT_STREQ("Open", (*d.m_Contexts.Find("Open"))->source);
    EXPECT_STREQ("hier", d.Translate("view.dll#1#130\xFD\xFDOpen", 1));
}

TEST(DictionaryStorageTest, SavedDictionaryIsRestoredWhole) {
    TestStorage storage;
    CWld d;
    for (int i = 0; i < 300; ++i) {
        Enter(d, ("text " + std::to_string(i)).c_str(), ("T" + std::to_string(i)).c_str());
    }
    Enter(d, "lines\\n", "Zeilen\\n");
    d.Save(storage.Get());
    CWld restored;
    restored.Restore(storage.Get());
    EXPECT_EQ(301u, restored.m_Contexts.count);
    EXPECT_STREQ("T250", restored.Translate("text 250", 1));
    EXPECT_STREQ("Zeilen\n", restored.Translate("lines\n", 1));
}

TEST(DictionaryStorageTest, BackslashBeforeNDoesNotSurviveTheRoundTrip) {
    TestStorage storage;
    CWld d;
    auto entry = new CContext("Path", "");
    entry->target = "C:\\new";
    d.m_Contexts.SetAt("Path", entry);
    d.Save(storage.Get());
    EXPECT_EQ(Entry("Path", "C:\\new"), storage.Bytes(L"C0"));
    CWld restored;
    restored.Restore(storage.Get());
    EXPECT_STREQ("C:\new", restored.Translate("Path", 1));
}

TEST(DictionaryStorageTest, RestoreIsEnteredUnderTheUnescapedSource) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(1, "Arial", 0, 8));
    storage.Write(L"C0", Entry("a\\tb", "c\\td"));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_STREQ("c\td", d.Translate("a\tb", 1));
}

TEST(DictionaryStorageTest, RestoreAddsAndReplacesAndLeavesTheRest) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(1, "Arial", 0, 8));
    storage.Write(L"C0", Entry("Open", "stored"));
    CWld d;
    Enter(d, "Open", "own");
    Enter(d, "Close", "Zu");
    d.m_DlgPos.SetAt(7, new QXDlgPos);
    HFONT font = d.m_hFont;
    d.Restore(storage.Get());
    EXPECT_STREQ("stored", d.Translate("Open", 1));
    EXPECT_STREQ("Zu", d.Translate("Close", 1));
    EXPECT_EQ(2u, d.m_Contexts.count);
    EXPECT_EQ(1, d.m_nContexts);
    EXPECT_EQ(1u, d.m_DlgPos.count);
    EXPECT_EQ(font, d.m_hFont);
    EXPECT_EQ(1, d.m_bDialogFont);
    EXPECT_EQ(0, d.m_bInit);
}

TEST(DictionaryStorageTest, TextOfLengthZeroIsEmpty) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Long(1) + Long(0) + Long(1) + Long(2));
    storage.Write(L"C0", Text("Open") + Long(0) + Long(3));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_STREQ("", d.m_szFontName);
    EXPECT_EQ(1, d.m_nFontScript);
    EXPECT_EQ(2, d.m_nFontSize);
    EXPECT_STREQ("", (*d.m_Contexts.Find("Open"))->target);
    EXPECT_EQ(3, (*d.m_Contexts.Find("Open"))->count);
}

TEST(DictionaryStorageTest, TextsWithoutNulOrWithOneInsideEndWhereTheyEnd) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(1, "Arial", 0, 8));
    storage.Write(L"C0", Long(4) + "Open" + Long(6) + std::string("Au\0xyz", 6) + Long(1));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_STREQ("Au", d.Translate("Open", 1));
}

TEST(DictionaryStorageTest, TextsBeyond1023BytesAreRestoredWhole) {
    TestStorage storage;
    CWld d;
    for (size_t size : {1022u, 1023u, 1024u, 1025u, 2047u, 2048u, 5000u}) {
        Enter(d, std::string(size, 's').c_str(), std::string(size, 't').c_str());
    }
    d.Save(storage.Get());
    CWld restored;
    restored.Restore(storage.Get());
    for (size_t size : {1022u, 1023u, 1024u, 1025u, 2047u, 2048u, 5000u}) {
        EXPECT_EQ(std::string(size, 't'),
                  Shown(restored.Translate(std::string(size, 's').c_str(), 1)))
            << size;
    }
}

TEST(DictionaryStorageTest, LongFontNameIsCutToItsField) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(0, std::string(3000, 'f'), 5, 6));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_EQ(std::string(255, 'f'), d.m_szFontName);
    EXPECT_EQ(5, d.m_nFontScript);
    EXPECT_EQ(6, d.m_nFontSize);
}

TEST(DictionaryStorageTest, MissingHeaderThrowsCode6WithItsName) {
    TestStorage storage;
    CWld d;
    EXPECT_EQ("6 ContextHeader", Thrown([&] { d.Restore(storage.Get()); }));
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
}

TEST(DictionaryStorageTest, MissingEntryThrowsCode6AndKeepsWhatWasRead) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(3, "Arial", 0, 9));
    storage.Write(L"C0", Entry("Open", "Auf"));
    storage.Write(L"C2", Entry("Close", "Zu"));
    CWld d;
    EXPECT_EQ("6 C1", Thrown([&] { d.Restore(storage.Get()); }));
    EXPECT_EQ(3, d.m_nContexts);
    EXPECT_STREQ("Arial", d.m_szFontName);
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
    EXPECT_EQ(nullptr, d.Translate("Close", 1));
}

TEST(DictionaryStorageTest, TruncatedEntryThrowsCode4AndKeepsTheOnesBefore) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(2, "Arial", 0, 9));
    storage.Write(L"C0", Entry("Open", "Auf"));
    storage.Write(L"C1", Text("Close") + Long(10) + "Zu");
    CWld d;
    EXPECT_EQ("4", Thrown([&] { d.Restore(storage.Get()); }));
    EXPECT_EQ(1u, d.m_Contexts.count);
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
}

TEST(DictionaryStorageTest, LengthThatLiesCostsNoMemory) {
    for (unsigned length : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu}) {
        TestStorage storage;
        storage.Write(L"ContextHeader", Header(1, "Arial", 0, 9));
        storage.Write(L"C0", Long(length) + "Open");
        CWld d;
        EXPECT_EQ("4", Thrown([&] { d.Restore(storage.Get()); })) << length;
    }
}

TEST(DictionaryStorageTest, NegativeCountRestoresNoEntry) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(0xFFFFFFFF, "Arial", 0, 9));
    storage.Write(L"C0", Entry("Open", "Auf"));
    CWld d;
    d.Restore(storage.Get());
    EXPECT_EQ(-1, d.m_nContexts);
    EXPECT_EQ(0u, d.m_Contexts.count);
}

TEST(DictionaryStorageTest, StorageThatTakesNoStreamMakesSaveThrowWithItsName) {
    ScratchDirectory directory;
    std::string path = directory.PathOf("a.stg");
    new_Storage(path.c_str(), 0)->Release();
    IXStorage* storage = open_Storage(path.c_str(), 1);
    CWld d;
    Enter(d, "Open", "Auf");
    EXPECT_EQ("2 C0", Thrown([&] { d.Save(storage); }));
    EXPECT_EQ(0, d.m_nContexts) << "the number is stored after the entries";
    storage->Release();
}

TEST(DictionaryStorageTest, FailureInTheMiddleOfSavingKeepsTheStreamsBeforeIt) {
    struct {
        int streams;
        const char* thrown;
        int contexts;
    } const rows[] = {{1, "2 C1", 7}, {2, "2 ContextHeader", 2}};
    for (auto& row : rows) {
        TestStorage storage;
        LimitedStorage limited(storage.Get(), row.streams);
        CWld d;
        d.m_nContexts = 7;
        Enter(d, "\1", "first");
        Enter(d, "\2", "second");
        EXPECT_EQ(row.thrown, Thrown([&] { d.Save(&limited); }));
        EXPECT_EQ(Entry("\1", "first"), storage.Bytes(L"C0"));
        EXPECT_EQ(row.streams > 1 ? Entry("\2", "second") : "(none)", storage.Bytes(L"C1"));
        EXPECT_EQ("(none)", storage.Bytes(L"ContextHeader"));
        EXPECT_EQ(row.contexts, d.m_nContexts);
    }
}

TEST(DictionaryStorageTest, SaveOverAnOlderOneReplacesItsStreamsAndLeavesTheRest) {
    TestStorage storage;
    storage.Write(L"C0", std::string(500, 'o'));
    storage.Write(L"C7", "old");
    CWld d;
    Enter(d, "Open", "Auf");
    d.Save(storage.Get());
    EXPECT_EQ(Entry("Open", "Auf"), storage.Bytes(L"C0"));
    EXPECT_EQ("old", storage.Bytes(L"C7"));
}

TEST(DictionaryStorageTest, NumberCutOffByTheEndCountsAsFarAsItGoes) {
    TestStorage storage;
    storage.Write(L"ContextHeader",
                  Long(1) + Text("Arial") + Long(0) + Long(0x01020304).substr(0, 2));
    storage.Write(L"C0", Text("Open") + Text("Auf") + "\5");
    CWld d;
    d.Restore(storage.Get());
    EXPECT_EQ(0x0304, d.m_nFontSize);
    EXPECT_EQ(5, (*d.m_Contexts.Find("Open"))->count);
}

TEST(DictionaryStorageTest, SaveSurvivesEveryFailingAllocation) {
    struct Subject {
        Subject() {
            strcpy(dictionary.m_szFontName, "Arial");
            Enter(dictionary, "\1", "first");
            Enter(dictionary, "\2", "second");
        }
        TestStorage storage;
        CWld dictionary;
    };
    auto make = [] { return std::make_unique<Subject>(); };
    auto save = [](auto& subject) {
        // Without memory for a stream a storage answers as for one that it does not take.
        try {
            subject->dictionary.Save(subject->storage.Get());
        } catch (CXFileException&) {
            throw CXMemException();
        }
    };
    auto isUsable = [](auto& subject) {
        subject->dictionary.Save(subject->storage.Get());
        EXPECT_EQ(Entry("\1", "first"), subject->storage.Bytes(L"C0"));
        EXPECT_EQ(Entry("\2", "second"), subject->storage.Bytes(L"C1"));
        EXPECT_EQ(Header(2, "Arial", 0, 8), subject->storage.Bytes(L"ContextHeader"));
    };
    EXPECT_GE(FailEachAllocation(make, save, isUsable), 3u)
        << "a stream an entry and one for the header";
}

TEST(DictionaryStorageTest, RestoreSurvivesEveryFailingAllocation) {
    TestStorage storage;
    storage.Write(L"ContextHeader", Header(2, "Arial", 0, 9));
    storage.Write(L"C0", Entry("Open\\n", std::string(3000, 't')));
    storage.Write(L"C1", Entry("Close", "Zu"));
    auto make = [] { return std::make_unique<CWld>(); };
    auto restore = [&](auto& d) {
        // Without memory for a stream a storage answers as for a missing one.
        try {
            d->Restore(storage.Get());
        } catch (CXFileException&) {
            throw CXMemException();
        }
    };
    auto isUsable = [&](auto& d) {
        d->Restore(storage.Get());
        EXPECT_EQ(2u, d->m_Contexts.count);
        EXPECT_STREQ("Zu", d->Translate("Close", 1));
    };
    EXPECT_GT(FailEachAllocation(make, restore, isUsable), 10u);
}
