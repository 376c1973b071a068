// What a wrapped storage forwards, what it wraps, and who keeps whom alive.
#include "storage/document/document_kinds.h"
#include "support/allocation_failure.h"

using qx::Ask;
using qx::Make;
using qx::Reference;

namespace {

class DocStorageTest : public testing::Test {
protected:
    DocStorageTest() {
        inner->child = Make<NotingStorage>(childLog);
        inner->stream = Make<NotingStream>(streamLog);
    }

    Log log, childLog, streamLog;
    Reference<TestSink> sink = Make<TestSink>();
    Reference<NotingStorage> inner = Make<NotingStorage>(log);
    Reference<IXStorage> document = Watch(inner.Get(), sink.Get(), 5);
};

Reference<IXStorage> DocumentOf(IXStream* stream) {
    Reference<IXStorage> document;
    Ask<IDocStrorageInfo>(stream)->GetDocStorage(document.Receive());
    return document;
}

Reference<IXStream> InnerOf(IXStream* stream) {
    Reference<IXStream> inner;
    Ask<IDocStrorageInfo>(stream)->GetInnerStream(inner.Receive());
    return inner;
}

}  // namespace

TEST_F(DocStorageTest, EveryOperationReachesTheInnerStorage) {
    inner->parent = Make<NotingStorage>(childLog);
    inner->names = Reference<CTEnum<const char*>>(
        Reference<CTListEnum<const char*>>(new CTListEnum<const char*>)->CreateEnum());
    Reference<IXStorage>(document->CreateStorage("a", 17));
    Reference<IXStorage>(document->OpenStorage("b"));
    EXPECT_EQ(document->DeleteStorage("c"), 21);
    EXPECT_EQ(Reference<IXStorage>(document->GetParent()).Get(), inner->parent.Get());
    EXPECT_EQ(Reference<CTEnum<const char*>>(document->EnumStorages()).Get(), inner->names.Get());
    Reference<IXStream>(document->CreateStream("d"));
    Reference<IXStream>(document->OpenStream("e"));
    EXPECT_EQ(document->DeleteStream("f"), 22);
    document->Commit();
    EXPECT_EQ(Reference<CTEnum<const char*>>(document->EnumStreams()).Get(), inner->names.Get());
    EXPECT_STREQ(document->GetPath(), "a path");
    EXPECT_EQ(log,
              "CreateStorage a 17 OpenStorage b DeleteStorage c GetParent EnumStorages "
              "CreateStream d OpenStream e DeleteStream f Commit EnumStreams GetPath ");
    EXPECT_EQ(sink->polls, 0);
}

TEST_F(DocStorageTest, ANullFromTheInnerStorageStaysNull) {
    inner->child.Release();
    inner->stream.Release();
    EXPECT_EQ(document->CreateStorage("a", 0), nullptr);
    EXPECT_EQ(document->OpenStorage("a"), nullptr);
    EXPECT_EQ(document->CreateStream("a"), nullptr);
    EXPECT_EQ(document->OpenStream("a"), nullptr);
    EXPECT_EQ(document->GetParent(), nullptr);
}

TEST_F(DocStorageTest, WhatTheInnerStorageRaisesPassesThrough) {
    Reference<IXStorage> real{new_Storage(nullptr, 0)};
    Reference<IXStorage> watched = Watch(real.Get(), sink.Get());
    EXPECT_EQ(Thrown([&] { watched->OpenStorage("none"); }), "6 0 none");
    EXPECT_EQ(Thrown([&] { watched->DeleteStream("none"); }), "6 4 ");
    EXPECT_EQ(watched->OpenStream("none"), nullptr);
}

TEST_F(DocStorageTest, ANullNameComesToWhatItDoesBeneath) {
    Reference<IXStorage> real{new_Storage(nullptr, 0)};
    Reference<IXStorage> watched = Watch(real.Get(), sink.Get());
    auto outcomes = [](IXStorage* s) {
        auto answer = [](auto made) { return made ? "an object" : "null"; };
        const char* none = nullptr;
        std::string all;
        all += Thrown([&] { all += answer(Reference<IXStorage>(s->CreateStorage(none, 0))); });
        all += Thrown([&] { all += answer(Reference<IXStorage>(s->OpenStorage(none))); });
        all += Thrown([&] { all += answer(Reference<IXStream>(s->CreateStream(none))); });
        all += Thrown([&] { all += answer(Reference<IXStream>(s->OpenStream(none))); });
        all += Thrown([&] { s->DeleteStorage(none); });
        all += Thrown([&] { s->DeleteStream(none); });
        return all;
    };
    EXPECT_EQ(outcomes(watched.Get()), outcomes(real.Get()));
    EXPECT_EQ(CountOf(real.Get()), 2u);
}

// What the wrapper took from the inner storage it gave back: the child is held by its wrapper
// alone.
TEST_F(DocStorageTest, AChildIsHeldByItsWrapperAlone) {
    Reference<IXStorage> child(document->OpenStorage("a"));
    Reference<IXStream> stream(document->OpenStream("a"));
    EXPECT_NE(child.Get(), inner->child.Get());
    EXPECT_NE(stream.Get(), inner->stream.Get());
    EXPECT_EQ(InnerOf(stream.Get()).Get(), inner->stream.Get());
    EXPECT_EQ(CountOf(inner->child.Get()), 2u);
    EXPECT_EQ(CountOf(inner->stream.Get()), 2u);
    child.Release();
    stream.Release();
    EXPECT_EQ(CountOf(inner->child.Get()), 1u);
    EXPECT_EQ(CountOf(inner->stream.Get()), 1u);
}

TEST_F(DocStorageTest, ARootTellsTheSinkItsRangeOnce) {
    EXPECT_EQ(sink->ranges, "SetRange(0, 100) ");
    Reference<IXStorage> child(document->CreateStorage("a", 0));
    Reference<IXStream> stream(child->OpenStream("b"));
    EXPECT_EQ(sink->ranges, "SetRange(0, 100) ");
    EXPECT_EQ(sink->polls, 0);
}

TEST_F(DocStorageTest, ARootMayHaveNoSink) {
    Reference<IXStorage> deaf = Watch(inner.Get(), nullptr);
    ASSERT_TRUE(deaf);
    EXPECT_STREQ(deaf->GetPath(), "a path");
    IQXUnknown* out = deaf.Get();
    EXPECT_EQ(deaf->QueryInterface(qx_typeid<IProgress>(), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(deaf->QueryInterface(qx_typeid<IProgress>(), nullptr), 0);
    Reference<IXStream> stream(deaf->OpenStream("a"));
    EXPECT_EQ(Thrown([&] { stream->ReadByte(); }), "10");
}

TEST_F(DocStorageTest, AQueryFindsTheStorageAndTheSink) {
    EXPECT_EQ(Ask<IQXUnknown>(document.Get()).Get(), document.Get());
    EXPECT_EQ(Ask<IXStorage>(document.Get()).Get(), document.Get());
    EXPECT_EQ(Ask<IProgress>(document.Get()).Get(), sink.Get());
    EXPECT_EQ(document->QueryInterface(qx_typeid<IProgress>(), nullptr), 1);
    IQXUnknown* out = document.Get();
    for (auto* id : {&qx_typeid<IQXProperty>(), &qx_typeid<IXStream>(),
                     &qx_typeid<IDocStrorageInfo>(), &qx_typeid<IRegisterIface>()}) {
        EXPECT_EQ(document->QueryInterface(*id, nullptr), 0);
        EXPECT_EQ(document->QueryInterface(*id, &out), 0);
        EXPECT_EQ(out, nullptr);
    }
}

TEST_F(DocStorageTest, TheSinkItselfAnswersTheQueryForIt) {
    struct Shy final : CQXUnknownImpl<IProgress> {
        int IsCancelled() override { return 0; }
        void SetRange(int, int) override {}
        int QueryInterface(qx_type_info const&, IQXUnknown** out) override {
            return QXAnswerQuery(nullptr, out);
        }
    };
    Reference<IXStorage> shy = Watch(inner.Get(), Make<Shy>().Get());
    EXPECT_EQ(Ask<IProgress>(shy.Get()).Get(), nullptr);
}

TEST_F(DocStorageTest, EveryLevelHasTheOutermostWrapperAsItsRoot) {
    Reference<IXStorage> real{new_Storage(nullptr, 0)};
    Reference<IXStorage> root = Watch(real.Get(), sink.Get(), 9);
    Reference<IXStorage> child(root->CreateStorage("child", 0));
    Reference<IXStorage> grandchild(child->CreateStorage("grandchild", 0));
    for (IXStorage* level : {root.Get(), child.Get(), grandchild.Get()}) {
        Reference<IXStream> created(level->CreateStream("leaf"));
        EXPECT_EQ(DocumentOf(created.Get()).Get(), root.Get());
        EXPECT_EQ(Ask<IDocStrorageInfo>(created.Get())->GetFlag(), 9);
        created->WriteLong(1);
        created.Release();
        Reference<IXStream> opened(level->OpenStream("leaf"));
        EXPECT_EQ(DocumentOf(opened.Get()).Get(), root.Get());
        EXPECT_EQ(opened->ReadLong(), 1u);
    }
    EXPECT_EQ(sink->polls, 6);
}

TEST_F(DocStorageTest, GetParentHandsOutTheUnwrappedParent) {
    Reference<IXStorage> real{new_Storage(nullptr, 0)};
    Reference<IXStorage> root = Watch(real.Get(), sink.Get());
    EXPECT_EQ(root->GetParent(), nullptr);
    Reference<IXStorage> child(root->CreateStorage("child", 0));
    Reference<IXStorage> parent(child->GetParent());
    EXPECT_EQ(parent.Get(), real.Get());
}

// A sub-storage may be wrapped as a root of its own.
TEST_F(DocStorageTest, AWrappedSubStorageIsARootWithAParent) {
    Reference<IXStorage> real{new_Storage(nullptr, 0)};
    Reference<IXStorage> part(real->CreateStorage("part", 0));
    Reference<IXStorage> root = Watch(part.Get(), sink.Get());
    EXPECT_EQ(Reference<IXStorage>(root->GetParent()).Get(), real.Get());
    Reference<IXStream> stream(root->CreateStream("leaf"));
    EXPECT_EQ(DocumentOf(stream.Get()).Get(), root.Get());
}

TEST_F(DocStorageTest, AWrapperOfAWrapperWrapsTwice) {
    Reference<TestSink> outerSink = Make<TestSink>();
    Reference<IXStorage> outer = Watch(document.Get(), outerSink.Get(), 6);
    EXPECT_EQ(outerSink->ranges, "SetRange(0, 100) ");
    EXPECT_EQ(sink->ranges, "SetRange(0, 100) ");
    EXPECT_EQ(Ask<IProgress>(outer.Get()).Get(), outerSink.Get());
    Reference<IXStorage> child(outer->OpenStorage("a"));
    Reference<IXStream> stream(outer->OpenStream("a"));
    EXPECT_EQ(DocumentOf(stream.Get()).Get(), outer.Get());
    Reference<IXStream> middle = InnerOf(stream.Get());
    EXPECT_EQ(DocumentOf(middle.Get()).Get(), document.Get());
    EXPECT_EQ(Ask<IDocStrorageInfo>(stream.Get())->GetFlag(), 6);
    EXPECT_EQ(Ask<IDocStrorageInfo>(middle.Get())->GetFlag(), 5);
    EXPECT_EQ(InnerOf(middle.Get()).Get(), inner->stream.Get());
}

TEST_F(DocStorageTest, AChildKeepsTheRootAndTheSinkAlive) {
    Reference<IXStream> stream(document->OpenStream("a"));
    document.Release();
    EXPECT_EQ(CountOf(sink.Get()), 2u);
    stream->ReadByte();
    EXPECT_EQ(sink->polls, 1);
    stream.Release();
    EXPECT_EQ(CountOf(sink.Get()), 1u);
}

TEST_F(DocStorageTest, ARootLetsGoOfItsSinkBeforeTheInnerStorage) {
    sink->log = &log;
    sink.Release();
    inner.Release();
    EXPECT_EQ(log, "");
    document.Release();
    EXPECT_EQ(log, "~sink ~storage ");
}

// The sink of a child goes first, then its root, then what it wraps.
TEST_F(DocStorageTest, AChildLetsGoOfTheRootBeforeItsOwnInnerStorage) {
    Log all;
    Reference<NotingStorage> first = Make<NotingStorage>(all);
    first->child = Make<NotingStorage>(all);
    Reference<TestSink> own = Make<TestSink>();
    own->log = &all;
    Reference<IXStorage> root = Watch(first.Get(), own.Get());
    Reference<IXStorage> child(root->OpenStorage("a"));
    first->child.Release();
    first.Release();
    own.Release();
    root.Release();
    all.clear();
    child.Release();
    EXPECT_EQ(all, "~sink ~storage ~storage ");
}

TEST_F(DocStorageTest, WhatTheSinkThrowsAtItsRangeReachesTheCaller) {
    sink->onRange = [] { throw CXException(QXERR_DEVICE); };
    unsigned storages = CountOf(inner.Get()), sinks = CountOf(sink.Get());
    IXStorage* out = inner.Get();
    EXPECT_EQ(Thrown([&] { new_CIXDocStorage(inner.Get(), sink.Get(), &out, 0); }), "12");
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(CountOf(inner.Get()), storages);
    EXPECT_EQ(CountOf(sink.Get()), sinks);
}

TEST(DocMemoryTest, WithoutMemoryAWrapperIsNullAndNothingLeaks) {
    struct Quiet final : CQXUnknownImpl<IProgress> {
        int IsCancelled() override { return 0; }
        void SetRange(int, int) override {}
    };
    Reference<Quiet> sink = Make<Quiet>();
    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    Reference<IXStorage>(storage->CreateStorage("child", 0));
    Reference<IXStream> stream(storage->CreateStream("leaf"));
    Reference<IXStorage> document = Watch(storage.Get(), sink.Get());
    unsigned failures = FailEachAllocation(
        [] { return 0; },
        [&](int) {
            Reference<IXStorage> root;
            Reference<IXStream> leaf;
            if (new_CIXDocStorage(storage.Get(), sink.Get(), root.Receive(), 0) != 1) return;
            if (new_CIXDocStream(document.Get(), stream.Get(), leaf.Receive(), 0) != 1) return;
            Reference<IXStorage> child(document->OpenStorage("child"));
            if (!root || !leaf || !child) throw CXMemException();
        },
        [](int) {});
    EXPECT_GE(failures, 4u);  // the three wrappers, and the table of the stream
    EXPECT_EQ(CountOf(stream.Get()), 1u);
    EXPECT_EQ(CountOf(storage.Get()), 2u);
}
