// Where each operation of a wrapped stream asks the sink, and what the stream answers to queries.
#include "storage/document/document_kinds.h"
#include "support/slot.h"

using qx::Ask;
using qx::Make;
using qx::Reference;

namespace {

struct Operation {
    const char* name;
    // Calls the operation and answers what came back, as text.
    std::function<std::string(IXStream*)> call;
    const char* log;         // inner operations and questions, in order, while the sink lets go on
    const char* stoppedLog;  // and when it stops
    std::string result;
};

template <class T>
std::string Text(T value) {
    return std::to_string(value);
}

// The rule once more, written down from what a host relies on.
const std::vector<Operation>& Operations() {
    static char buffer[20];
    static tagQXVARIANT variant = {};
    static const std::vector<Operation> rows = {
        {"Read", [](IXStream* s) { return Text(s->Read(buffer, 4)); },  //
         "Read ask ", "Read ask ", "101"},
        {"Write", [](IXStream* s) { return Text(s->Write("data", 4)); },  //
         "Write ask ", "Write ask ", "102"},
        {"Seek", [](IXStream* s) { return Text(s->Seek(7, 2)); },  //
         "Seek ask ", "Seek ask ", "7002"},
        {"Tell", [](IXStream* s) { return Text(s->Tell()); },  //
         "Tell ", "Tell ", "104"},
        {"ReadByte", [](IXStream* s) { return Text(s->ReadByte()); },  //
         "ReadByte ask ", "ReadByte ask ", "105"},
        {"ReadShort", [](IXStream* s) { return Text(s->ReadShort()); },  //
         "ReadShort ask ", "ReadShort ask ", "106"},
        {"ReadLong", [](IXStream* s) { return Text(s->ReadLong()); },  //
         "ReadLong ask ", "ReadLong ask ", "107"},
        {"ReadDouble", [](IXStream* s) { return Text(s->ReadDouble()); },  //
         "ReadDouble ask ", "ReadDouble ask ", "108.500000"},
        {"ReadString", [](IXStream* s) { return Text(s->ReadString(buffer, 10)); },
         "ReadString ask ", "ReadString ask ", "109"},
        {"ReadVariant", [](IXStream* s) { return Text(s->ReadVariant(&variant)); },
         "Tell ReadVariant ask ", "Tell ReadVariant ask ", "110"},
        {"WriteVariant",
         [](IXStream* s) {
             s->WriteVariant(&variant);
             return std::string();
         },
         "Tell ask WriteVariant ", "Tell ask ", ""},
        {"WriteByte", [](IXStream* s) { return Text(s->WriteByte(1)); },  //
         "ask WriteByte ", "ask ", "2"},
        {"WriteShort", [](IXStream* s) { return Text(s->WriteShort(2)); },  //
         "ask WriteShort ", "ask ", "3"},
        {"WriteLong", [](IXStream* s) { return Text(s->WriteLong(3)); },  //
         "ask WriteLong ", "ask ", "4"},
        {"WriteDouble", [](IXStream* s) { return Text(s->WriteDouble(4)); },  //
         "ask WriteDouble ", "ask ", "5"},
        {"WriteString", [](IXStream* s) { return Text(s->WriteString("sixsix")); },  //
         "ask WriteString ", "ask ", "6"},
        {"GetLength", [](IXStream* s) { return Text(s->GetLength()); },  //
         "GetLength ", "GetLength ", "119"},
        {"GetName", [](IXStream* s) { return std::string(s->GetName()); },  //
         "GetName ", "GetName ", "noting"},
    };
    return rows;
}

bool Asks(const Operation& row) {
    return std::string(row.log).find("ask") != std::string::npos;
}

std::string WithoutAsking(std::string log) {
    size_t at = log.find("ask ");
    return at == std::string::npos ? log : log.erase(at, 4);
}

class DocStreamTest : public testing::Test {
protected:
    DocStreamTest() { sink->log = &log; }

    Log log;
    Reference<TestSink> sink = Make<TestSink>();
    Reference<NotingStream> inner = Make<NotingStream>(log);
    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    Reference<IXStorage> document = Watch(storage.Get(), sink.Get(), 5);
    Reference<IXStream> stream = WatchStream(document.Get(), inner.Get(), 7);
};

struct IUnheardOf : IQXUnknown {};
struct IService : IQXUnknown {};
struct Service final : CQXUnknownImpl<IQXUnknown> {};

}  // namespace

QX_DECLARE_TYPEID(IUnheardOf, ".?AUIUnheardOf@@");
QX_DECLARE_TYPEID(IService, ".?AUIService@@");

TEST_F(DocStreamTest, EachOperationAsksInItsPlace) {
    for (const Operation& row : Operations()) {
        log.clear();
        EXPECT_EQ(row.call(stream.Get()), row.result) << row.name;
        EXPECT_EQ(log, row.log) << row.name;
    }
}

TEST_F(DocStreamTest, ACancelStopsEachOperationInItsPlace) {
    sink->answer = [] { return -3; };
    for (const Operation& row : Operations()) {
        log.clear();
        EXPECT_EQ(Thrown([&] { row.call(stream.Get()); }), Asks(row) ? "1" : "nothing") << row.name;
        EXPECT_EQ(log, row.stoppedLog) << row.name;
    }
}

TEST_F(DocStreamTest, ACancelIsAPlainException) {
    sink->answer = [] { return 1; };
    try {
        stream->ReadByte();
        FAIL();
    } catch (CXFileException&) {
        FAIL();
    } catch (CXException& e) {
        EXPECT_EQ(e.GetCode(), QXERR_CANCELLED);
    }
}

// A document without a sink, a stream without a document, and one in front of a foreign storage.
TEST_F(DocStreamTest, WithoutAnyoneToAskEachAskingOperationRaisesBadUse) {
    Reference<IXStorage> deaf = Watch(storage.Get(), nullptr);
    for (IXStorage* place : {deaf.Get(), static_cast<IXStorage*>(nullptr), storage.Get()}) {
        Reference<IXStream> alone = WatchStream(place, inner.Get());
        for (const Operation& row : Operations()) {
            log.clear();
            EXPECT_EQ(Thrown([&] { row.call(alone.Get()); }), Asks(row) ? "10" : "nothing")
                << row.name;
            EXPECT_EQ(log, WithoutAsking(row.stoppedLog)) << row.name;
        }
    }
}

TEST_F(DocStreamTest, AnOperationThatFailsDoesNotAsk) {
    Reference<IXStream> empty{new_StreamOnMemory()};
    Reference<IXStream> watched = WatchStream(document.Get(), empty.Get());
    EXPECT_THROW(watched->ReadLong(), CXEofException);
    char line[3];
    EXPECT_THROW(watched->ReadString(line, 1), CXEofException);
    EXPECT_EQ(Thrown([&] { watched->Seek(0, 9); }), "10 3 Memory stream");
    EXPECT_EQ(sink->polls, 0);
}

TEST_F(DocStreamTest, AStoppedValueIsNotWrittenAndAStoppedReadHasMoved) {
    Reference<IXStream> memory{new_StreamOnMemory()};
    Reference<IXStream> watched = WatchStream(document.Get(), memory.Get());
    watched->WriteLong(0x11223344);
    watched->WriteLong(0x55667788);
    sink->answer = [] { return 1; };
    EXPECT_EQ(Thrown([&] { watched->WriteLong(9); }), "1");
    EXPECT_EQ(memory->GetLength(), 8);
    EXPECT_EQ(Thrown([&] { watched->WriteString("never"); }), "1");
    EXPECT_EQ(memory->GetLength(), 8);
    EXPECT_EQ(Thrown([&] { watched->Write("raw", 3); }), "1");
    EXPECT_EQ(memory->GetLength(), 11);
    memory->Seek(0, 0);
    EXPECT_EQ(Thrown([&] { watched->ReadLong(); }), "1");
    EXPECT_EQ(memory->Tell(), 4);
    EXPECT_EQ(Thrown([&] { watched->Seek(2, 0); }), "1");
    EXPECT_EQ(memory->Tell(), 2);
}

// What the inner stream does while it reads an object goes past the wrapper.
TEST_F(DocStreamTest, AVariantCountsAsOneOperation) {
    Reference<IXStream> memory{new_StreamOnMemory()};
    Reference<IXStream> watched = WatchStream(document.Get(), memory.Get());
    CQXVariant text("a long text, in several writes"), read;
    watched->WriteVariant(&text);
    EXPECT_EQ(sink->polls, 1);
    memory->Seek(0, 0);
    EXPECT_EQ(watched->ReadVariant(&read), 1);
    EXPECT_EQ(sink->polls, 2);
    EXPECT_TRUE(read == text);
}

TEST_F(DocStreamTest, AStreamOfAWrapperIsAskedByBothSinks) {
    Reference<TestSink> outerSink = Make<TestSink>();
    Reference<IXStorage> outer = Watch(document.Get(), outerSink.Get());
    Reference<IXStream> both(outer->CreateStream("both"));
    sink->ranges.clear();
    both->WriteByte(1);
    EXPECT_EQ(sink->polls, 1);
    EXPECT_EQ(outerSink->polls, 1);
    sink->answer = [] { return 1; };
    EXPECT_EQ(Thrown([&] { both->WriteByte(2); }), "1");
    EXPECT_EQ(outerSink->polls, 2);
    both->GetLength();
    EXPECT_EQ(sink->polls, 2);
}

TEST_F(DocStreamTest, AQueryFindsTheFourInterfacesOfTheStream) {
    auto ask = [&](qx_type_info const& id) {
        IQXUnknown* out = nullptr;
        EXPECT_EQ(stream->QueryInterface(id, nullptr), 1);
        EXPECT_EQ(stream->QueryInterface(id, &out), 1);
        EXPECT_EQ(CountOf(stream.Get()), 2u);
        if (out) out->Release();
        return out;
    };
    EXPECT_EQ(ask(qx_typeid<IQXUnknown>()), stream.Get());
    EXPECT_EQ(ask(qx_typeid<IXStream>()), stream.Get());
    IQXUnknown* info = ask(qx_typeid<IDocStrorageInfo>());
    IQXUnknown* table = ask(qx_typeid<IRegisterIface>());
    EXPECT_NE(info, stream.Get());
    EXPECT_NE(table, stream.Get());
    EXPECT_NE(table, info);
    for (IQXUnknown* part : {info, table}) {
        IQXUnknown* back = nullptr;
        EXPECT_EQ(part->QueryInterface(qx_typeid<IXStream>(), &back), 1);
        EXPECT_EQ(back, stream.Get());
        EXPECT_EQ(part->AddRef(), 3u);
        EXPECT_EQ(part->Release(), 2u);
        back->Release();
    }
}

TEST_F(DocStreamTest, AQueryForTheDocumentOrItsSinkGoesToTheDocument) {
    EXPECT_EQ(Ask<IXStorage>(stream.Get()).Get(), document.Get());
    EXPECT_EQ(Ask<IProgress>(stream.Get()).Get(), sink.Get());
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IProgress>(), nullptr), 1);
}

TEST_F(DocStreamTest, WithoutADocumentThereIsNeitherStorageNorSink) {
    Reference<IXStorage> deaf = Watch(storage.Get(), nullptr);
    Reference<IXStream> alone = WatchStream(nullptr, inner.Get());
    Reference<IXStream> foreign = WatchStream(storage.Get(), inner.Get());
    Reference<IXStream> unwatched = WatchStream(deaf.Get(), inner.Get());
    auto refused = [](IXStream* asked, qx_type_info const& id) {
        IQXUnknown* out = asked;
        int answer = asked->QueryInterface(id, &out);
        return answer == 0 && !out && asked->QueryInterface(id, nullptr) == 0;
    };
    for (IXStream* none : {alone.Get(), foreign.Get()}) {
        EXPECT_TRUE(refused(none, qx_typeid<IXStorage>()));
        EXPECT_TRUE(refused(none, qx_typeid<IProgress>()));
    }
    EXPECT_TRUE(refused(unwatched.Get(), qx_typeid<IProgress>()));
    EXPECT_EQ(Ask<IXStorage>(unwatched.Get()).Get(), deaf.Get());
}

// The fixed interfaces are answered before the table is looked at.
TEST_F(DocStreamTest, AnAttachedInterfaceDoesNotHideAFixedOne) {
    Reference<IRegisterIface> table = Ask<IRegisterIface>(stream.Get());
    Reference<Service> service = Make<Service>();
    Reference<IXStream> alone = WatchStream(nullptr, inner.Get());
    Reference<IRegisterIface> aloneTable = Ask<IRegisterIface>(alone.Get());
    for (auto* id : {&qx_typeid<IXStream>(), &qx_typeid<IXStorage>(), &qx_typeid<IProgress>(),
                     &qx_typeid<IDocStrorageInfo>(), &qx_typeid<IQXUnknown>()}) {
        table->RegisterInterface(service.Get(), *id, 1);
        aloneTable->RegisterInterface(service.Get(), *id, 1);
    }
    EXPECT_EQ(Ask<IXStream>(stream.Get()).Get(), stream.Get());
    EXPECT_EQ(Ask<IXStorage>(stream.Get()).Get(), document.Get());
    EXPECT_EQ(Ask<IProgress>(stream.Get()).Get(), sink.Get());
    EXPECT_EQ(Ask<IXStorage>(alone.Get()).Get(), nullptr);
    EXPECT_EQ(Ask<IProgress>(alone.Get()).Get(), nullptr);
}

TEST_F(DocStreamTest, AnAttachedObjectIsAnsweredWhateverItsClass) {
    Reference<IRegisterIface> table = Ask<IRegisterIface>(stream.Get());
    Reference<Service> service = Make<Service>();
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IService>(), nullptr), 0);
    EXPECT_EQ(table->RegisterInterface(service.Get(), qx_typeid<IService>(), 1), 1);
    EXPECT_EQ(CountOf(service.Get()), 2u);
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IService>(), nullptr), 1);
    EXPECT_EQ(CountOf(service.Get()), 2u);
    IQXUnknown* out = nullptr;
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IService>(), &out), 1);
    EXPECT_EQ(out, static_cast<IQXUnknown*>(service.Get()));
    EXPECT_EQ(CountOf(service.Get()), 3u);
    out->Release();
    out = stream.Get();
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IUnheardOf>(), &out), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DocStreamTest, ASecondRegistrationReplacesTheFirst) {
    Reference<IRegisterIface> table = Ask<IRegisterIface>(stream.Get());
    Reference<Service> first = Make<Service>(), second = Make<Service>();
    table->RegisterInterface(first.Get(), qx_typeid<IService>(), 1);
    EXPECT_EQ(table->RegisterInterface(second.Get(), qx_typeid<IService>(), 0), 1);
    EXPECT_EQ(CountOf(first.Get()), 1u);
    EXPECT_EQ(CountOf(second.Get()), 1u);
    EXPECT_EQ(Ask<IService>(stream.Get()).Get(), static_cast<IQXUnknown*>(second.Get()));
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IService>(), 0), 1);
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IService>(), 0), 0);
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IService>(), nullptr), 0);
}

TEST_F(DocStreamTest, TheTableGoesWithTheStream) {
    Reference<Service> service = Make<Service>();
    Ask<IRegisterIface>(stream.Get())->RegisterInterface(service.Get(), qx_typeid<IService>(), 1);
    stream.Release();
    EXPECT_EQ(CountOf(service.Get()), 1u);
}

// The stream attaches its own table like every class that carries one, and answers it also without.
TEST_F(DocStreamTest, TheTableItselfIsAttachedUncounted) {
    Reference<IRegisterIface> table = Ask<IRegisterIface>(stream.Get());
    EXPECT_EQ(CountOf(stream.Get()), 2u);
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IRegisterIface>(), 0), 1);
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IRegisterIface>(), 0), 0);
    EXPECT_EQ(Ask<IRegisterIface>(stream.Get()).Get(), table.Get());
}

TEST_F(DocStreamTest, TheInformationTellsOfTheDocument) {
    Reference<IDocStrorageInfo> info = Ask<IDocStrorageInfo>(stream.Get());
    Reference<IXStorage> out;
    EXPECT_EQ(info->GetInnerStorage(out.Receive()), 1);
    EXPECT_EQ(out.Get(), storage.Get());
    EXPECT_EQ(info->GetDocStorage(out.Receive()), 1);
    EXPECT_EQ(out.Get(), document.Get());
    Reference<IXStream> innerOut;
    EXPECT_EQ(info->GetInnerStream(innerOut.Receive()), 1);
    EXPECT_EQ(innerOut.Get(), inner.Get());
    EXPECT_EQ(info->GetFlag(), 7);
    void* untouched = &log;
    EXPECT_EQ(info->Reserved1(&untouched), 0);
    EXPECT_EQ(info->Reserved2(&untouched), 0);
    EXPECT_EQ(info->Reserved3(&untouched), 0);
    EXPECT_EQ(untouched, &log);
    EXPECT_EQ(sink->polls, 0);
}

TEST_F(DocStreamTest, TheInformationAndTheTableHaveTheirOperationsInOrder) {
    Reference<IDocStrorageInfo> info = Ask<IDocStrorageInfo>(stream.Get());
    Reference<IXStorage> place;
    Reference<IXStream> beneath;
    IDocStrorageInfo* i = info.Get();
    EXPECT_EQ(Slot<int(void*, IXStorage**)>(i, 3)(i, place.Receive()), 1);
    EXPECT_EQ(place.Get(), storage.Get());
    EXPECT_EQ(Slot<int(void*, IXStorage**)>(i, 5)(i, place.Receive()), 1);
    EXPECT_EQ(place.Get(), document.Get());
    EXPECT_EQ(Slot<int(void*, IXStream**)>(i, 7)(i, beneath.Receive()), 1);
    EXPECT_EQ(beneath.Get(), inner.Get());
    for (int reserved : {4, 6, 8}) EXPECT_EQ(Slot<int(void*, void*)>(i, reserved)(i, nullptr), 0);
    EXPECT_EQ(Slot<int(void*)>(i, 9)(i), 7);  // GetFlag

    Reference<IRegisterIface> table = Ask<IRegisterIface>(stream.Get());
    IRegisterIface* t = table.Get();
    auto attach = Slot<int(void*, IQXUnknown*, qx_type_info const&, int)>(t, 3);
    EXPECT_EQ(attach(t, inner.Get(), qx_typeid<IService>(), 0), 1);
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IService>(), nullptr), 1);
}

TEST_F(DocStreamTest, WhatTheInformationHandsOutIsReferenced) {
    Reference<IDocStrorageInfo> info = Ask<IDocStrorageInfo>(stream.Get());
    unsigned storages = CountOf(storage.Get()), documents = CountOf(document.Get()),
             streams = CountOf(inner.Get());
    Reference<IXStorage> a, b;
    Reference<IXStream> c;
    info->GetInnerStorage(a.Receive());
    info->GetDocStorage(b.Receive());
    info->GetInnerStream(c.Receive());
    EXPECT_EQ(CountOf(storage.Get()), storages + 1);
    EXPECT_EQ(CountOf(document.Get()), documents + 1);
    EXPECT_EQ(CountOf(inner.Get()), streams + 1);
}

TEST_F(DocStreamTest, AStreamWithoutADocumentTellsOfNone) {
    Reference<IXStream> alone = WatchStream(storage.Get(), inner.Get(), 3);
    Reference<IDocStrorageInfo> info = Ask<IDocStrorageInfo>(alone.Get());
    IXStorage* out = storage.Get();
    EXPECT_EQ(info->GetInnerStorage(&out), 1);
    EXPECT_EQ(out, nullptr);
    out = storage.Get();
    EXPECT_EQ(info->GetDocStorage(&out), 1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(info->GetFlag(), 3);
}

TEST_F(DocStreamTest, AStreamMayBeWrappedForASubStorage) {
    Reference<IXStorage> child(document->CreateStorage("child", 0));
    Reference<IXStream> leaf = WatchStream(child.Get(), inner.Get());
    leaf->WriteByte(1);
    EXPECT_EQ(sink->polls, 1);
    Reference<IXStorage> out;
    Ask<IDocStrorageInfo>(leaf.Get())->GetDocStorage(out.Receive());
    EXPECT_EQ(out.Get(), child.Get());
}

TEST_F(DocStreamTest, TheStreamLetsGoOfItsTableThenTheDocumentThenTheInnerStream) {
    struct Attached final : CQXUnknownImpl<IQXUnknown> {
        explicit Attached(Log& log) : m_log(log) {}
        ~Attached() override { m_log += "~attached "; }
        Log& m_log;
    };
    Ask<IRegisterIface>(stream.Get())
        ->RegisterInterface(Make<Attached>(log).Get(), qx_typeid<IService>(), 1);
    document.Release();
    sink.Release();
    inner.Release();
    EXPECT_EQ(log, "");
    stream.Release();
    EXPECT_EQ(log, "~attached ~sink ~stream ");
}

// Nobody but the test holds the inner stream when the operation goes on.
TEST_F(DocStreamTest, EachOperationEndsAsItShouldWhenTheSinkLetsGoOfTheDocument) {
    for (int stop : {0, 1}) {
        for (const Operation& row : Operations()) {
            if (!Asks(row)) continue;
            Reference<IXStorage> held = Watch(storage.Get(), sink.Get());
            Reference<IXStream> last = WatchStream(held.Get(), inner.Get());
            sink->answer = [&] {
                held.Release();
                last.Release();
                return stop;
            };
            log.clear();
            std::string result;
            EXPECT_EQ(Thrown([&] { result = row.call(last.Get()); }), stop ? "1" : "nothing");
            EXPECT_EQ(result, stop ? "" : row.result) << row.name;
            EXPECT_EQ(log, stop ? row.stoppedLog : row.log) << row.name;
            EXPECT_EQ(CountOf(inner.Get()), 2u) << row.name;  // the fixture's stream has one
        }
    }
}

// The wrapper outside works on while the one inside asks.
TEST_F(DocStreamTest, TheSinkOfTheInnerWrapperMayLetGoOfTheOuterOne) {
    for (int stop : {0, 1}) {
        for (const Operation& row : Operations()) {
            if (!Asks(row)) continue;
            Reference<TestSink> outerSink = Make<TestSink>();
            Reference<IXStorage> held = Watch(document.Get(), outerSink.Get());
            Reference<IXStream> last = WatchStream(held.Get(), stream.Get());
            sink->answer = [&] {
                held.Release();
                last.Release();
                return stop;
            };
            EXPECT_EQ(Thrown([&] { row.call(last.Get()); }), stop ? "1" : "nothing") << row.name;
            EXPECT_EQ(CountOf(outerSink.Get()), 1u) << row.name;
            EXPECT_EQ(CountOf(stream.Get()), 1u) << row.name;
        }
    }
}

// A sink may use the stream that asks it, and count references on it.
TEST_F(DocStreamTest, ASinkMayUseTheStreamThatAsks) {
    unsigned depth = 0;
    sink->answer = [&] {
        Reference<IXStream> again = Ask<IXStream>(stream.Get());
        if (++depth < 3) again->WriteByte(1);
        return 0;
    };
    EXPECT_EQ(stream->ReadByte(), 105);
    EXPECT_EQ(log, "ReadByte ask ask ask WriteByte WriteByte ");
    EXPECT_EQ(CountOf(stream.Get()), 1u);
}

TEST_F(DocStreamTest, WhatTheSinkThrowsReachesTheCallerOfEachOperation) {
    struct Interruption {};
    sink->answer = []() -> int { throw Interruption(); };
    for (const Operation& row : Operations()) {
        if (!Asks(row)) continue;
        log.clear();
        EXPECT_THROW(row.call(stream.Get()), Interruption) << row.name;
        EXPECT_EQ(log, row.stoppedLog) << row.name;
        EXPECT_EQ(CountOf(stream.Get()), 1u) << row.name;
    }
}

// An object with nothing but its table: behind that there is no memory to read.
TEST_F(DocStreamTest, AForeignStorageNeedsNoTypeRecord) {
    auto page =
        static_cast<char*>(VirtualAlloc(nullptr, 0x2000, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD old;
    ASSERT_TRUE(VirtualProtect(page, 0x1000, PAGE_NOACCESS, &old));
    void** table = reinterpret_cast<void**>(page + 0x1000);
    void* object = table;
    {
        auto foreign = reinterpret_cast<IXStorage*>(&object);
        Reference<IXStream> alone = WatchStream(foreign, inner.Get());
        EXPECT_EQ(Thrown([&] { alone->ReadByte(); }), "10");
    }
    VirtualFree(page, 0, MEM_RELEASE);
}
