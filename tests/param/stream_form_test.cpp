// Trees in streams, byte by byte.
#include "param/recording_param.h"
#include "param/small_stack.h"
#include "param/tree_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace {

std::string BytesOf(IXStream* stream) {
    IQXUnknown* block = nullptr;
    stream->QueryInterface(qx_typeid<IMemBlock>(), &block);
    qx::Reference<IMemBlock> memory(static_cast<IMemBlock*>(block));
    return std::string(static_cast<const char*>(memory->GetData()), memory->GetSize());
}

template <size_t n>
std::string Bytes(const char (&text)[n]) {
    return std::string(text, n - 1);
}

class StreamFormTest : public testing::Test {
protected:
    ParamPtr tree{new_MemParam()};

    std::string Saved(int expected = 1) {
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), expected);
        return BytesOf(stream.Get());
    }
    static qx::Reference<IXStream> StreamOf(const std::string& bytes) {
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        stream->Write(bytes.data(), int(bytes.size()));
        stream->Seek(0, 0);
        return stream;
    }
    std::string Loaded(const std::string& bytes, int expected = 1) {
        qx::Reference<IXStream> stream = StreamOf(bytes);
        EXPECT_EQ(LoadParamFromXStream(stream.Get(), tree.Get()), expected);
        return TreeText(tree.Get());
    }
};

// A stream that calls back at each of its writes.
class Calling : public IProgress {
public:
    explicit Calling(std::function<void()> call) : m_call(std::move(call)) {}

    unsigned AddRef() override { return 1; }
    unsigned Release() override { return 1; }
    int QueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }
    int IsCancelled() override {
        m_call();
        return 0;
    }
    void SetRange(int, int) override {}

private:
    std::function<void()> m_call;
};

}  // namespace

TEST_F(StreamFormTest, AnEmptyTreeIsTwoEmptyNames) {
    EXPECT_EQ(Saved(), Bytes("\0\0"));
}

TEST_F(StreamFormTest, ANodeIsItsChildrenAndThenItsValues) {
    SetInt(tree.Get(), "v", 5);
    CQXVariant text("abc");
    ParamPtr(tree->CreateSubParam("a"))->SetValue("x", &text);
    ParamPtr(tree->CreateSubParam("b"));
    EXPECT_EQ(Saved(), Bytes("a\0"
                             "\0"
                             "x\0"
                             "\x0A\0\x04\0\0\0abc\0"
                             "\0"
                             "b\0"
                             "\0\0"
                             "\0"
                             "v\0"
                             "\x05\0\x05\0\0\0"
                             "\0"));
}

TEST_F(StreamFormTest, AValueWithoutANameIsSavedAsTheDefaultName) {
    SetInt(tree.Get(), "", 1);
    EXPECT_EQ(Saved(), Bytes("\0@\0\x05\0\x01\0\0\0\0"));
}

TEST_F(StreamFormTest, AValueThatCannotBeReadIsSavedAsEmpty) {
    SetInt(tree.Get(), "a\\b", 5);
    tree->DeleteAllSubParams();
    EXPECT_EQ(Saved(), Bytes("\0a\\b\0\0\0\0\0\0\0\0"));
}

TEST_F(StreamFormTest, ATreeOfAllTypesComesBack) {
    char bytes[] = {1, 0, 3};
    const CQXVariant values[] = {CQXVariant(),
                                 CQXVariant(1, 1),
                                 CQXVariant(static_cast<unsigned char>(0xAB)),
                                 CQXVariant(static_cast<unsigned short>(7)),
                                 CQXVariant(8ul),
                                 CQXVariant(-9),
                                 CQXVariant(10u),
                                 CQXVariant(-11l),
                                 CQXVariant(0.1),
                                 CQXVariant(0.5f),
                                 CQXVariant(" a;b|c\r\n"),
                                 CQXVariant(tagSIZE{1, 2}),
                                 CQXVariant(tagRSIZE{0.1, 1e-9}),
                                 CQXVariant(tagPOINT{3, 4}),
                                 CQXVariant(tagRPOINT{1e300, -2}),
                                 CQXVariant(tagRECT{1, 2, 3, 4}),
                                 CQXVariant(tagRRECT{0.1, 0.2, 0.3, 0.4}),
                                 CQXVariant(tagQXBLOB{3, bytes})};
    ParamPtr child(tree->CreateSubParam("child\\deep"));
    for (const CQXVariant& value : values) {
        tree->SetValue(std::to_string(value.type).c_str(), &value);
        child->SetValue(std::to_string(value.type).c_str(), &value);
    }
    ParamPtr back(new_MemParam());
    qx::Reference<IXStream> stream = StreamOf(Saved());
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), back.Get()), 1);
    EXPECT_EQ(Param_Cmp(tree.Get(), back.Get()), 1);
    EXPECT_EQ(Param_Cmp(back.Get(), tree.Get()), 1);
    EXPECT_EQ(stream->Tell(), stream->GetLength());
}

TEST_F(StreamFormTest, ABadObjectIsSavedAndComesBackAsNull) {
    CQXVariant object(static_cast<IQXUnknown*>(nullptr));
    SetInt(tree.Get(), "x", 1);
    tree->SetValue("object", &object);
    SetInt(tree.Get(), "y", 2);
    EXPECT_EQ(Loaded(Saved()), "x=5:1 object=18:? y=5:2");
}

TEST_F(StreamFormTest, LoadingReplacesWhatTheTargetHeld) {
    SetInt(tree.Get(), "old", 1);
    ParamPtr held(tree->CreateSubParam("a\\old"));
    EXPECT_EQ(Loaded(Bytes("a\0\0\0\0v\0\x05\0\x05\0\0\0\0")), "v=5:5 a{}");
}

TEST_F(StreamFormTest, WhatStandsBehindTheTreeIsLeftInTheStream) {
    qx::Reference<IXStream> stream = StreamOf(Bytes("\0\0rest"));
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), tree.Get()), 1);
    EXPECT_EQ(stream->Tell(), 2);
}

// The line feed ends the name and stays in it; the rest is read as the next item.
TEST_F(StreamFormTest, ANameWithALineFeedDoesNotSurvive) {
    CQXVariant value(5);
    tree->SetValue("a\nb", &value);
    std::string saved = Saved();
    EXPECT_EQ(saved, Bytes("\0a\nb\0\x05\0\x05\0\0\0\0"));
    ParamPtr back(new_MemParam());
    qx::Reference<IXStream> stream = StreamOf(saved);
    // "a\n" is a name, 'b' and the NUL are the tag 0x0062, which there is not: the node stays
    // empty.
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), back.Get()), 0);
    EXPECT_EQ(TreeText(back.Get()), "");
    EXPECT_EQ(Loaded(Bytes("a\n\0\0\0\0")), "a\n{}");
}

TEST_F(StreamFormTest, ANameOf1023BytesSurvivesAndALongerOneDoesNot) {
    std::string name(1023, 'n');
    SetInt(tree.Get(), name.c_str(), 5);
    EXPECT_EQ(Loaded(Saved()), name + "=5:5");
    // The first 1024 bytes are the name, and the next item begins in the middle.
    std::string longer = name + "mo";
    std::string saved = Bytes("\0") + longer + Bytes("\0\x05\0\x05\0\0\0\0");
    qx::Reference<IXStream> stream = StreamOf(saved);
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), tree.Get()), 0);  // "o" and the NUL are no tag
    EXPECT_EQ(TreeText(tree.Get()), "");
}

TEST_F(StreamFormTest, ATruncatedStreamPassesItsExceptionOnAndLeavesWhatWasLoaded) {
    SetInt(tree.Get(), "v", 1);
    SetInt(ParamPtr(tree->CreateSubParam("a")).Get(), "x", 2);
    SetInt(ParamPtr(tree->CreateSubParam("b")).Get(), "y", 3);
    const std::string saved = Saved();
    for (size_t size = 0; size < saved.size(); ++size) {
        ParamPtr back(new_MemParam());
        SetInt(back.Get(), "old", 1);
        qx::Reference<IXStream> stream = StreamOf(saved.substr(0, size));
        EXPECT_THROW(LoadParamFromXStream(stream.Get(), back.Get()), CXEofException) << size;
        EXPECT_EQ(GetInt(back.Get(), "old"), -1);
        bool aIsWhole = size >= Bytes("a\0\0x\0\x05\0\x02\0\0\0\0").size();
        if (aIsWhole) {
            EXPECT_EQ(GetInt(back.Get(), "a\\x"), 2) << size;
        }
    }
}

// The tag 0x0013 is above the last one.
TEST_F(StreamFormTest, AFailedNodeStandsEmptyWhileItsSiblingsLoad) {
    const std::string broken = Bytes("a\0c\0\0\0\0x\0\x05\0\x01\0\0\0y\0\x13\0");
    const std::string sibling = Bytes("b\0\0z\0\x05\0\x03\0\0\0\0");
    EXPECT_EQ(Loaded(broken + sibling + Bytes("\0v\0\x05\0\x05\0\0\0\0")), "v=5:5 a{} b{z=5:3}");
}

// "a" raises whenever it is emptied: at its beginning, and again because of that.
TEST_F(StreamFormTest, ANodeThatCannotBeEmptiedIsAFailureOfTheNodeAboveIt) {
    std::string calls;
    auto failing = qx::Make<RecordingParam>(new_MemParam(), "t", &calls);
    failing->failAt = "DeleteAllValues";
    failing->failBelow = 2;
    qx::Reference<IXStream> stream = StreamOf(Bytes("p\0a\0\0\0"));
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), failing.Get()), 1);
    EXPECT_EQ(calls,
              "t:DeleteAllSubParams t:DeleteAllValues t:CreateSubParam(p) "
              "t\\p:DeleteAllSubParams t\\p:DeleteAllValues t\\p:CreateSubParam(a) "
              "t\\p\\a:DeleteAllSubParams t\\p\\a:DeleteAllValues "
              "t\\p\\a:DeleteAllSubParams t\\p\\a:DeleteAllValues "
              "t\\p:DeleteAllSubParams t\\p:DeleteAllValues ");
    failing->failBelow = 0;
    EXPECT_THROW(LoadParamFromXStream(stream.Get(), failing.Get()), CXFileException);
    EXPECT_EQ(RecordingParam::alive, 1);
}

TEST_F(StreamFormTest, AFailureOfTheOutermostNodeAnswersZeroAndLeavesItEmpty) {
    SetInt(tree.Get(), "old", 1);
    EXPECT_EQ(Loaded(Bytes("a\0\0\0\0v\0\x13\0"), 0), "");
}

TEST_F(StreamFormTest, ANullTreeAnswersZeroAndTheStreamStays) {
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.Get(), nullptr), 0);
    EXPECT_EQ(stream->GetLength(), 0);
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), nullptr), 0);
}

TEST_F(StreamFormTest, SavingGoesOnBehindANodeThatFails) {
    std::string calls;
    SetInt(ParamPtr(tree->CreateSubParam("a")).Get(), "x", 1);
    SetInt(ParamPtr(tree->CreateSubParam("b")).Get(), "y", 2);
    auto failing = qx::Make<RecordingParam>(tree.Detach(), "s", &calls);
    failing->failAt = "GetValue(x)";
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.Get(), failing.Get()), 1);
    EXPECT_EQ(BytesOf(stream.Get()), Bytes("a\0\0x\0"
                                           "b\0\0y\0\x05\0\x02\0\0\0\0"
                                           "\0\0"));
    failing->failAt = "EnumValues";
    EXPECT_EQ(SaveParamToXStream(stream.Get(), failing.Get()), 0);
    EXPECT_EQ(RecordingParam::alive, 1);
}

TEST_F(StreamFormTest, AStreamThatTakesNothingAnswersZeroAndNothingIsThrown) {
    SetInt(ParamPtr(tree->CreateSubParam("a\\b")).Get(), "x", 1);
    SetInt(tree.Get(), "v", 1);
    int writes = 0;
    Calling sink([&] {
        ++writes;
        throw CXFileException(QXERR_DISK_FULL, "full", QXOP_WRITE);
    });
    qx::Reference<IXStream> stream(new_StreamOnMemory(&sink));
    EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 0);
    EXPECT_EQ(writes, 1);  // the name of the first child, and with it the outermost node
}

TEST_F(StreamFormTest, AStoppedSaveOrLoadPassesItsExceptionOnAndLeavesNoReference) {
    SetInt(ParamPtr(tree->CreateSubParam("a\\b")).Get(), "x", 1);
    const std::string saved = Saved();
    for (int at = 1; at < 9; ++at) {
        std::string calls;
        int left = at;
        Calling sink([&] {
            if (--left == 0) throw CXException(QXERR_CANCELLED);
        });
        auto source = qx::Make<RecordingParam>(qx::Hold(tree.Get()).Detach(), "s", &calls);
        qx::Reference<IXStream> stream(new_StreamOnMemory(&sink));
        EXPECT_THROW(SaveParamToXStream(stream.Get(), source.Get()), CXException) << at;
        left = 0;
        stream = qx::Reference<IXStream>(new_StreamOnMemory(&sink));
        stream->Write(saved.data(), static_cast<int>(saved.size()));
        stream->Seek(0, QXSEEK_START);
        auto target = qx::Make<RecordingParam>(new_MemParam(), "t", &calls);
        left = at;
        EXPECT_THROW(LoadParamFromXStream(stream.Get(), target.Get()), CXException) << at;
        EXPECT_EQ(RecordingParam::alive, 2);
    }
}

TEST_F(StreamFormTest, SavingGoesThroughChildrenFirst) {
    std::string calls;
    SetInt(tree.Get(), "v", 1);
    SetInt(ParamPtr(tree->CreateSubParam("a")).Get(), "x", 1);
    auto recording = qx::Make<RecordingParam>(tree.Detach(), "s", &calls);
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    SaveParamToXStream(stream.Get(), recording.Get());
    EXPECT_EQ(calls,
              "s:EnumSubParams s:OpenSubParam(a) s\\a:EnumSubParams s\\a:EnumValues "
              "s\\a:GetValue(x) s:EnumValues s:GetValue(v) ");
}

TEST_F(StreamFormTest, LoadingEmptiesEachNodeAndMakesItsChildren) {
    std::string calls;
    auto recording = qx::Make<RecordingParam>(tree.Detach(), "t", &calls);
    qx::Reference<IXStream> stream = StreamOf(Bytes("a\0\0x\0\0\0\0\0\0\0\0\0\0"));
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), recording.Get()), 1);
    EXPECT_EQ(calls,
              "t:DeleteAllSubParams t:DeleteAllValues t:CreateSubParam(a) "
              "t\\a:DeleteAllSubParams t\\a:DeleteAllValues t\\a:SetValue(x) ");
}

// Such a child is written as an empty node, so that the rest is read as what it is.
TEST_F(StreamFormTest, AChildThatCannotBeOpenedIsSavedEmpty) {
    std::string calls;
    ParamPtr(tree->CreateSubParam("a"));
    SetInt(tree.Get(), "v", 1);
    auto closed = qx::Make<RecordingParam>(tree.Detach(), "s", &calls);
    closed->noChild = true;
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.Get(), closed.Get()), 1);
    EXPECT_EQ(BytesOf(stream.Get()), Bytes("a\0\0\0\0v\0\x05\0\x01\0\0\0\0"));
}

TEST_F(StreamFormTest, AChildThatCannotBeCreatedIsReadOver) {
    std::string calls;
    IParam* target = tree.Get();
    target->AddRef();
    auto closed = qx::Make<RecordingParam>(target, "t", &calls);
    closed->noChild = true;
    qx::Reference<IXStream> stream =
        StreamOf(Bytes("a\0b\0\0\0\0x\0\x05\0\x01\0\0\0\0\0v\0\x05\0\x05\0\0\0\0"));
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), closed.Get()), 1);
    EXPECT_EQ(GetInt(tree.Get(), "v"), 5);
}

TEST_F(StreamFormTest, ATreeOfAnyDepthIsWalked) {
    std::string path;
    for (int i = 1; i < kTooManyCalls; ++i) path += "a\\";
    SetInt(ParamPtr(tree->CreateSubParam((path + "a").c_str())).Get(), "x", 1);
    ParamPtr back(new_MemParam());
    OnSmallStack([&] {
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 1);
        stream->Seek(0, 0);
        EXPECT_EQ(LoadParamFromXStream(stream.Get(), back.Get()), 1);
    });
    EXPECT_EQ(Param_Cmp(tree.Get(), back.Get()), 1);
}

// What ends in the middle of a chain of nested names ends without a deep stack too.
TEST_F(StreamFormTest, NamesNestedWithoutAnEndAreWalked) {
    std::string bytes;
    for (int i = 0; i < kTooManyCalls; ++i) bytes += Bytes("a\0");
    OnSmallStack([&] {
        qx::Reference<IXStream> stream = StreamOf(bytes);
        EXPECT_THROW(LoadParamFromXStream(stream.Get(), tree.Get()), CXEofException);
        tree.Release();
    });
}

// Writes are: the empty name, then for each value its name, its type and its parts.
TEST_F(StreamFormTest, WhatIsBeingWrittenStaysWholeWhileTheTreeChanges) {
    const std::string longText(400, 'L');
    char bytes[] = {1, 2, 3};
    const CQXVariant values[] = {CQXVariant("short"), CQXVariant(longText.c_str()),
                                 CQXVariant(tagQXBLOB{3, bytes}), CQXVariant(7)};
    auto fill = [&] {
        for (const CQXVariant& value : values)
            tree->SetValue(("v" + std::to_string(value.type)).c_str(), &value);
    };
    const CQXVariant other("other");
    const std::function<void()> changes[] = {
        [&] { tree->SetValue("v10", &other), tree->SetValue("v17", &other); },
        [&] { tree->DeleteValue("v10"), tree->DeleteValue("v17"); },
        [&] { tree->Clear(); },
    };
    for (const std::function<void()>& change : changes) {
        for (int at = 1; at < 14; ++at) {
            tree->Clear();
            fill();
            int writes = 0;
            Calling sink([&] {
                if (++writes == at) change();
            });
            qx::Reference<IXStream> stream(new_StreamOnMemory(&sink));
            EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 1);
            ParamPtr back(new_MemParam());
            stream->Seek(0, 0);
            EXPECT_EQ(LoadParamFromXStream(stream.Get(), back.Get()), 1);
            NamesPtr names(back->EnumValues());
            const char* name;
            while (names->Next(1, &name, nullptr)) {
                CQXVariant value;
                back->GetValue(name, &value);
                bool isOld = false;
                for (const CQXVariant& old : values) isOld |= value == old;
                EXPECT_TRUE(isOld || value == other || value.type == QXVT_EMPTY)
                    << name << " at " << at;
            }
        }
    }
}

TEST_F(StreamFormTest, AValueThatGoesBetweenItsNameAndItsValueIsSavedAsEmpty) {
    SetInt(tree.Get(), "a", 1);
    SetInt(tree.Get(), "b", 2);
    int writes = 0;
    Calling sink([&] {
        if (++writes == 2) tree->DeleteValue("a");
    });
    qx::Reference<IXStream> stream(new_StreamOnMemory(&sink));
    EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 1);
    EXPECT_EQ(BytesOf(stream.Get()), Bytes("\0a\0\0\0\0\0\0\0b\0\x05\0\x02\0\0\0\0"));
}
