// The two streams over an IStream: a storage's element, and the wrapper of a foreign stream.
#include "storage/compound/ole_fakes.h"
#include "storage/streams/stream_kinds.h"

namespace {

// A storage's stream over a fake, with a name of the test's choice.
struct FakeElement {
    explicit FakeElement(const char* name = "part") {
        fakeStorage.stream = &ole;
        storage = Reference<IXStorage>(new_StorageByOleStorage(&fakeStorage));
        stream = Reference<IXStream>(storage->CreateStream(name));
    }

    FakeStream ole;
    FakeStorage fakeStorage;
    Reference<IXStorage> storage;
    Reference<IXStream> stream;
};

struct FakeWrapper {
    FakeStream ole;
    Reference<IXStream> stream{new_StreamByOleStream(&ole)};
};

}  // namespace

TEST(ElementStreamTest, ANameKeepsItsFirst63Characters) {
    std::string name(70, 'n');
    name[62] = 'y';
    FakeElement element(name.c_str());
    EXPECT_EQ(element.stream->GetName(), name.substr(0, 63));
    EXPECT_EQ(element.fakeStorage.lastName, std::wstring(name.begin(), name.end()));
}

TEST(ElementStreamTest, NamesOf63And64Characters) {
    EXPECT_EQ(FakeElement(std::string(63, 'a').c_str()).stream->GetName(), std::string(63, 'a'));
    EXPECT_EQ(FakeElement(std::string(64, 'a').c_str()).stream->GetName(), std::string(63, 'a'));
}

TEST(ElementStreamTest, AFailedReadRaisesTheMappedCodeWithOperationOne) {
    FakeElement element;
    char byte;
    for (const StatusRow& row : FailingStatusRows()) {
        element.ole.readStatus = static_cast<HRESULT>(row.status);
        EXPECT_EQ(Thrown([&] { element.stream->Read(&byte, 1); }),
                  std::to_string(row.code) + " 1 part")
            << row.status;
    }
}

TEST(ElementStreamTest, AFailedWriteRaisesTheMappedCodeWithTheOperationOfARead) {
    FakeElement element;
    for (const StatusRow& row : FailingStatusRows()) {
        element.ole.writeStatus = static_cast<HRESULT>(row.status);
        EXPECT_EQ(Thrown([&] { element.stream->Write("x", 1); }),
                  std::to_string(row.code) + " 1 part")
            << row.status;
    }
}

TEST(ElementStreamTest, AFailedSeekRaisesTheMappedCodeWithOperationThree) {
    FakeElement element;
    for (const StatusRow& row : FailingStatusRows()) {
        element.ole.seekStatus = static_cast<HRESULT>(row.status);
        EXPECT_EQ(Thrown([&] { element.stream->Seek(0, 0); }), std::to_string(row.code) + " 3 part")
            << row.status;
        EXPECT_EQ(Thrown([&] { element.stream->Tell(); }), std::to_string(row.code) + " 3 part")
            << row.status;
    }
}

TEST(ElementStreamTest, ABadOriginNeverReachesThePlatform) {
    FakeElement element;
    EXPECT_EQ(Thrown([&] { element.stream->Seek(5, 3); }), "10 3 part");
    EXPECT_EQ(element.ole.lastOrigin, 99u);
}

TEST(ElementStreamTest, ReadAnswersWhatThePlatformDelivered) {
    FakeElement element;
    element.ole.bytes = "abc";
    element.ole.readStatus = S_FALSE;
    char bytes[8] = {};
    EXPECT_EQ(element.stream->Read(bytes, 8), 3);
    EXPECT_STREQ(bytes, "abc");
}

TEST(ElementStreamTest, WriteAnswersTheStatus) {
    FakeElement element;
    EXPECT_EQ(element.stream->Write("abc", 3), 0);
    EXPECT_EQ(element.stream->WriteLong(1), 0);
    EXPECT_EQ(element.stream->WriteString("ab"), 0);
    element.ole.writeStatus = S_FALSE;
    EXPECT_EQ(element.stream->Write("abc", 3), S_FALSE);
}

TEST(ElementStreamTest, ASuccessfulStatusOfTheMapIsNoFailure) {
    FakeElement element;
    element.ole.writeStatus = 0x00030202;  // STG_S_RETRYNOW
    EXPECT_EQ(element.stream->Write("a", 1), 0x00030202);
}

TEST(ElementStreamTest, SeekExtendsTheSignAndMapsTheOrigins) {
    FakeElement element;
    for (int origin : {0, 1, 2}) {
        element.stream->Seek(-5, origin);
        EXPECT_EQ(element.ole.lastMove, -5);
        EXPECT_EQ(element.ole.lastOrigin, static_cast<DWORD>(origin));
    }
}

TEST(ElementStreamTest, SeekAnswersTheLow32Bits) {
    FakeElement element;
    element.ole.seekResult = 0x1200000005ull;
    EXPECT_EQ(element.stream->Seek(0, 2), 5);
}

TEST(ElementStreamTest, ASeekBeforeTheStartFails) {
    ElementKind kind;
    kind.stream->Write("abc", 3);
    EXPECT_EQ(Thrown([&] { kind.stream->Seek(-1, 0); }), "15 3 element");
    EXPECT_EQ(Thrown([&] { kind.stream->Seek(-4, 1); }), "15 3 element");  // STG_E_INVALIDFUNCTION
    EXPECT_EQ(Thrown([&] { kind.stream->Seek(-4, 2); }), "15 3 element");
    EXPECT_EQ(kind.stream->Tell(), 3);
}

TEST(ElementStreamTest, ASeekBehindTheEndIsNotClamped) {
    ElementKind kind;
    kind.stream->Write("abc", 3);
    EXPECT_EQ(kind.stream->Seek(10, 0), 10);
    EXPECT_EQ(kind.stream->Tell(), 10);
    kind.stream->Write("z", 1);
    EXPECT_EQ(kind.stream->GetLength(), 11);
}

TEST(ElementStreamTest, AStringThatFillsTheCountLosesItsLastByteToTheTerminator) {
    ElementKind kind;
    Fill(kind.stream.Get(), "ab\ncd");
    char text[8] = "-------";
    EXPECT_EQ(kind.stream->ReadString(text, 3), 2);  // the line feed was byte 2 of 3
    EXPECT_EQ(std::string(text, 4), Bytes({'a', 'b', 0, '-'}));
    EXPECT_EQ(kind.stream->Tell(), 3);
}

TEST(ElementStreamTest, AStringWithoutAnEndIsTerminatedBehindItsCount) {
    ElementKind kind;
    Fill(kind.stream.Get(), "abcdef");
    char text[8] = "-------";
    EXPECT_EQ(kind.stream->ReadString(text, 3), 3);
    EXPECT_EQ(std::string(text, 5), Bytes({'a', 'b', 'c', 0, '-'}));
    EXPECT_EQ(kind.stream->Tell(), 3);
}

TEST(ElementStreamTest, AStringOfCountZeroIsEmptyAndReadsNothing) {
    ElementKind kind;
    Fill(kind.stream.Get(), "abc");
    char text[4] = "---";
    EXPECT_EQ(kind.stream->ReadString(text, 0), 0);
    EXPECT_EQ(std::string(text, 2), Bytes({0, '-'}));
    EXPECT_EQ(kind.stream->Tell(), 0);
}

TEST(ElementStreamTest, TheLastReferenceReleasesThePlatformsStreamAndCommitsNothing) {
    FakeElement element;
    EXPECT_EQ(element.ole.references, 2u);
    std::string log;
    element.ole.log = &log;
    element.stream.Release();
    EXPECT_EQ(element.ole.references, 1u);
    EXPECT_EQ(log, "Release ");
}

TEST(ElementStreamTest, ThePlatformsStreamIsHandedOutWithAReference) {
    FakeElement element;
    EXPECT_EQ(Stream_GetOLEStream(element.stream.Get()), static_cast<IStream*>(&element.ole));
    EXPECT_EQ(element.ole.references, 3u);
    element.ole.Release();
}

TEST(WrapperStreamTest, RewindsAndReferencesTheStream) {
    FakeStream ole;
    ole.bytes = "abc";
    ole.position = 2;
    Reference<IXStream> stream(new_StreamByOleStream(&ole));
    EXPECT_EQ(ole.references, 2u);
    EXPECT_EQ(ole.position, 0u);
    EXPECT_EQ(ole.lastMove, 0);
    EXPECT_EQ(ole.lastOrigin, static_cast<DWORD>(STREAM_SEEK_SET));
}

TEST(WrapperStreamTest, TheLastReferenceCommitsAndThenReleases) {
    FakeWrapper wrapper;
    std::string log;
    wrapper.ole.log = &log;
    wrapper.stream.Release();
    EXPECT_EQ(log, "Commit Release ");
    EXPECT_EQ(wrapper.ole.lastCommitFlags, 0u);
    EXPECT_EQ(wrapper.ole.references, 1u);
}

TEST(WrapperStreamTest, ReadIsASuccessFlag) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = "0123456789";
    char bytes[12] = {};
    EXPECT_EQ(wrapper.stream->Read(bytes, 6), 1);
    EXPECT_EQ(wrapper.stream->Read(bytes, 10), 0);  // four are left
    EXPECT_EQ(std::string(bytes, 4), "6789");
    EXPECT_EQ(wrapper.stream->Tell(), 10);
    EXPECT_EQ(wrapper.stream->Read(bytes, 0), 1);
}

TEST(WrapperStreamTest, ReadIsNoSuccessWithAnotherStatusThanOk) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = "0123456789";
    char bytes[12];
    wrapper.ole.readStatus = S_FALSE;
    EXPECT_EQ(wrapper.stream->Read(bytes, 2), 0);
    wrapper.ole.readStatus = STG_E_READFAULT;
    EXPECT_EQ(wrapper.stream->Read(bytes, 2), 0);
}

TEST(WrapperStreamTest, WriteAnswersTheCountAskedForOrTheFailure) {
    FakeWrapper wrapper;
    EXPECT_EQ(wrapper.stream->Write("abcdef", 6), 6);
    wrapper.ole.writeLimit = 2;
    EXPECT_EQ(wrapper.stream->Write("abcdef", 6), 6);
    wrapper.ole.writeStatus = STG_E_MEDIUMFULL;
    EXPECT_EQ(wrapper.stream->Write("abcdef", 6), STG_E_MEDIUMFULL);
}

TEST(WrapperStreamTest, TypedWritesAnswerTheCountWrittenOrTheFailure) {
    FakeWrapper wrapper;
    EXPECT_EQ(wrapper.stream->WriteByte(1), 1);
    EXPECT_EQ(wrapper.stream->WriteShort(1), 2);
    EXPECT_EQ(wrapper.stream->WriteLong(1), 4);
    EXPECT_EQ(wrapper.stream->WriteDouble(1), 8);
    EXPECT_EQ(wrapper.stream->WriteString("abc"), 4);
    wrapper.ole.writeLimit = 3;
    EXPECT_EQ(wrapper.stream->WriteDouble(1), 3);
    wrapper.ole.writeStatus = STG_E_WRITEFAULT;
    EXPECT_EQ(wrapper.stream->WriteLong(1), STG_E_WRITEFAULT);
}

TEST(WrapperStreamTest, ANullTextIsWrittenAsOneNul) {
    FakeWrapper wrapper;
    EXPECT_EQ(wrapper.stream->WriteString(nullptr), 1);
    EXPECT_EQ(wrapper.ole.bytes, Bytes({0}));
}

TEST(WrapperStreamTest, ANegativeSeekIsAHugePositiveOne) {
    FakeWrapper wrapper;
    wrapper.stream->Seek(-1, 1);
    EXPECT_EQ(wrapper.ole.lastMove, 0xFFFFFFFFll);
    EXPECT_EQ(wrapper.ole.lastOrigin, 1u);
}

TEST(WrapperStreamTest, TheOriginGoesThroughUnchecked) {
    FakeWrapper wrapper;
    EXPECT_NO_THROW(wrapper.stream->Seek(3, 77));
    EXPECT_EQ(wrapper.ole.lastOrigin, 77u);
}

TEST(WrapperStreamTest, SeekAnswersTheLowHalf) {
    FakeWrapper wrapper;
    wrapper.ole.seekResult = 0x700000009ull;
    EXPECT_EQ(wrapper.stream->Seek(0, 2), 9);
    EXPECT_EQ(wrapper.stream->Tell(), 9);
    EXPECT_EQ(wrapper.ole.lastOrigin, 1u);
}

TEST(WrapperStreamTest, TypedReadsIgnoreFailuresAndTheEnd) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = Bytes({1, 2, 3});
    EXPECT_EQ(wrapper.stream->ReadShort(), 0x0201);
    EXPECT_EQ(wrapper.stream->ReadLong() & 0xFF, 3u);
    EXPECT_NO_THROW(wrapper.stream->ReadByte());
    EXPECT_NO_THROW(wrapper.stream->ReadDouble());
    wrapper.ole.readStatus = STG_E_READFAULT;
    EXPECT_NO_THROW(wrapper.stream->ReadLong());
}

TEST(WrapperStreamTest, NoFailureOfThePlatformThrows) {
    FakeWrapper wrapper;
    wrapper.ole.readStatus = wrapper.ole.writeStatus = wrapper.ole.seekStatus = STG_E_ACCESSDENIED;
    char text[8];
    CQXVariant variant("text");
    EXPECT_NO_THROW(wrapper.stream->Read(text, 4));
    EXPECT_NO_THROW(wrapper.stream->Write(text, 4));
    EXPECT_NO_THROW(wrapper.stream->Seek(0, 0));
    EXPECT_NO_THROW(wrapper.stream->Tell());
    EXPECT_NO_THROW(wrapper.stream->ReadString(text, 4));
    EXPECT_NO_THROW(wrapper.stream->WriteVariant(&variant));
    EXPECT_EQ(wrapper.stream->ReadVariant(&variant), 0);
}

TEST(WrapperStreamTest, ABadTagThrowsWithAnEmptyName) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = Bytes({19, 0});
    CQXVariant variant;
    EXPECT_EQ(Thrown([&] { wrapper.stream->ReadVariant(&variant); }), "15 1 ");
}

TEST(WrapperStreamTest, ALineFeedDoesNotEndAString) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = Bytes({'a', '\n', 'b', 0, 'c'});
    char text[10] = "---------";
    EXPECT_EQ(wrapper.stream->ReadString(text, 9), 4);
    EXPECT_STREQ(text, "a\nb");
    EXPECT_EQ(wrapper.stream->Tell(), 4);
}

TEST(WrapperStreamTest, NothingTerminatesAFullString) {
    FakeWrapper wrapper;
    wrapper.ole.bytes = "abcdef";
    char text[6] = "-----";
    EXPECT_EQ(wrapper.stream->ReadString(text, 3), 3);
    EXPECT_STREQ(text, "abc--");
}

TEST(WrapperStreamTest, ItsLengthIsAlwaysZero) {
    FakeWrapper wrapper;
    wrapper.stream->Write("abc", 3);
    EXPECT_EQ(wrapper.stream->GetLength(), 0);
    EXPECT_EQ(wrapper.stream->Tell(), 3);
}

TEST(WrapperStreamTest, ThePlatformsStreamIsHandedOutWithAReference) {
    FakeWrapper wrapper;
    EXPECT_EQ(Stream_GetOLEStream(wrapper.stream.Get()), static_cast<IStream*>(&wrapper.ole));
    EXPECT_EQ(wrapper.ole.references, 3u);
    wrapper.ole.Release();
}
