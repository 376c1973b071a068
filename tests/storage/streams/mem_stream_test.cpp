#include "storage/streams/stream_kinds.h"

#include <climits>

namespace {

Reference<IMemBlock>& AskBlock(Reference<IMemBlock>& block, IXStream* stream) {
    IQXUnknown* out = nullptr;
    EXPECT_EQ(stream->QueryInterface(qx_typeid<IMemBlock>(), &out), 1);
    block = Reference<IMemBlock>(static_cast<IMemBlock*>(out));
    return block;
}

// Answers IsCancelled from the given call on, counting from 1; 0 never cancels.
class CancelSink : public CQXUnknownImpl<IProgress> {
public:
    explicit CancelSink(int cancelAt) : m_cancelAt(cancelAt) {}
    int IsCancelled() override { return ++polls >= m_cancelAt && m_cancelAt ? 1 : 0; }
    void SetRange(int, int) override { ++ranges; }

    int polls = 0;
    int ranges = 0;

private:
    int m_cancelAt;
};

class MemStreamTest : public testing::Test {
protected:
    // The capacity, as the heap that made the block knows it.
    size_t Capacity() { return Mem_DefaultHeap(0)->GetSize(block->GetData()); }

    Reference<IXStream> stream{new_StreamOnMemory()};
    Reference<IMemBlock> held;
    Reference<IMemBlock>& block = AskBlock(held, stream.Get());
};

}  // namespace

TEST_F(MemStreamTest, AFreshStreamIsEmpty) {
    char byte;
    EXPECT_EQ(stream->GetLength(), 0);
    EXPECT_EQ(stream->Read(&byte, 1), 0);
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    EXPECT_EQ(block->GetSize(), 0u);
    EXPECT_EQ(block->GetData(), nullptr);
}

TEST_F(MemStreamTest, TheBlockIsASecondObjectThatSharesTheCount) {
    EXPECT_NE(static_cast<void*>(block.Get()), static_cast<void*>(stream.Get()));
    EXPECT_EQ(CountOf(stream.Get()), 2u);
    EXPECT_EQ(CountOf(block.Get()), 2u);
    IQXUnknown* back = nullptr;
    EXPECT_EQ(block->QueryInterface(qx_typeid<IXStream>(), &back), 1);
    EXPECT_EQ(back, stream.Get());
    back->Release();
    EXPECT_EQ(block->QueryInterface(qx_typeid<IMemBlock>(), nullptr), 1);
}

TEST_F(MemStreamTest, TheBlockKeepsTheStreamAlive) {
    stream->Write("abc", 3);
    stream.Release();
    EXPECT_EQ(block->GetSize(), 3u);
    EXPECT_EQ(memcmp(block->GetData(), "abc", 3), 0);
}

TEST_F(MemStreamTest, OneByteTakesACapacityOf4096) {
    stream->Write("x", 1);
    EXPECT_EQ(Capacity(), 4096u);
    EXPECT_EQ(block->GetSize(), 1u);
}

TEST_F(MemStreamTest, Exactly4096BytesTakeACapacityOf8192) {
    std::string bytes(4096, 'x');
    stream->Write(bytes.data(), 4096);
    EXPECT_EQ(Capacity(), 8192u);
}

TEST_F(MemStreamTest, GrowthAddsStepsToTheOldCapacity) {
    std::string bytes(10000, 'x');
    stream->Write(bytes.data(), 4095);  // (4095 / 4096 + 1) * 4096
    EXPECT_EQ(Capacity(), 4096u);
    stream->Write(bytes.data(), 1);  // 4096 are needed and there
    EXPECT_EQ(Capacity(), 4096u);
    stream->Write(bytes.data(), 1);  // 4096 + (4097 / 4096 + 1) * 4096
    EXPECT_EQ(Capacity(), 12288u);
    stream->Write(bytes.data(), 10000);  // 14097 needed: 12288 + (14097 / 4096 + 1) * 4096
    EXPECT_EQ(Capacity(), 28672u);
    EXPECT_EQ(BytesOf(stream.Get()), std::string(14097, 'x'));
}

TEST_F(MemStreamTest, WriteAnswersTheCount) {
    EXPECT_EQ(stream->Write("abc", 3), 3);
    EXPECT_EQ(stream->Write("abc", 0), 0);
    EXPECT_EQ(stream->WriteByte(1), 1);
    EXPECT_EQ(stream->WriteShort(1), 2);
    EXPECT_EQ(stream->WriteLong(1), 4);
    EXPECT_EQ(stream->WriteDouble(1), 8);
    EXPECT_EQ(stream->WriteString("ab"), 3);
}

TEST_F(MemStreamTest, SeeksAreClampedToTheStream) {
    stream->Write("abcde", 5);
    EXPECT_EQ(stream->Seek(10, 0), 5);
    EXPECT_EQ(stream->Seek(-1, 0), 0);
    EXPECT_EQ(stream->Seek(-3, 1), 0);
    EXPECT_EQ(stream->Seek(2, 1), 2);
    EXPECT_EQ(stream->Seek(99, 1), 5);
    EXPECT_EQ(stream->Seek(1, 2), 5);
    EXPECT_EQ(stream->Seek(-2, 2), 3);
    EXPECT_EQ(stream->Seek(-9, 2), 0);
    EXPECT_EQ(stream->GetLength(), 5);
}

TEST_F(MemStreamTest, ASeekByTheLargestDistancesIsClampedToo) {
    stream->Write("abcde", 5);
    EXPECT_EQ(stream->Seek(INT_MAX, 1), 5);
    EXPECT_EQ(stream->Seek(INT_MAX, 2), 5);
    EXPECT_EQ(stream->Seek(INT_MIN, 1), 0);
}

TEST_F(MemStreamTest, AFullStringIsTerminatedOneByteBehindItsCount) {
    Fill(stream.Get(), "abcdef");
    char text[8] = "-------";
    EXPECT_EQ(stream->ReadString(text, 3), 4);
    EXPECT_EQ(std::string(text, 8), Bytes({'a', 'b', 'c', '-', 0, '-', '-', 0}));
    EXPECT_EQ(stream->Tell(), 3);
}

TEST_F(MemStreamTest, AStringOfCountZeroReadsNothingAndAnswersOne) {
    Fill(stream.Get(), "abc");
    char text[4] = "---";
    EXPECT_EQ(stream->ReadString(text, 0), 1);
    EXPECT_EQ(std::string(text, 4), Bytes({'-', 0, '-', 0}));
    EXPECT_EQ(stream->Tell(), 0);
}

TEST_F(MemStreamTest, AnEndInTheLastByteOfTheCountStaysThere) {
    Fill(stream.Get(), "ab\nc");
    char text[8] = "-------";
    EXPECT_EQ(stream->ReadString(text, 3), 3);
    EXPECT_EQ(std::string(text, 5), Bytes({'a', 'b', '\n', 0, '-'}));
}

TEST_F(MemStreamTest, SetDataReplacesTheBytesAndLeavesThePosition) {
    stream->Write("0123456789", 10);
    stream->Seek(7, 0);
    block->SetData("abc", 3);
    EXPECT_EQ(stream->Tell(), 7);
    EXPECT_EQ(stream->GetLength(), 3);
    EXPECT_EQ(Capacity(), 3u);
    char byte;
    EXPECT_EQ(stream->Read(&byte, 1), 0);
    EXPECT_EQ(BytesOf(stream.Get()), "abc");
}

TEST_F(MemStreamTest, SetDataWithoutBytesGivesZeros) {
    block->SetData(nullptr, 4);
    EXPECT_EQ(BytesOf(stream.Get()), Bytes({0, 0, 0, 0}));
}

TEST_F(MemStreamTest, AfterSetDataGrowthGoesInStepsOfItsSize) {
    std::string hundred(100, 'x');
    stream->Write("abcde", 5);
    stream->Seek(2, 0);
    block->SetData(hundred.data(), 100);
    EXPECT_EQ(stream->Tell(), 2);
    stream->Seek(0, 2);
    stream->Write("y", 1);  // 101 needed: 100 + (101 / 100 + 1) * 100
    EXPECT_EQ(Capacity(), 300u);
    EXPECT_EQ(BytesOf(stream.Get()), hundred + "y");
}

TEST_F(MemStreamTest, SetDataFromItsOwnBytesKeepsThem) {
    stream->Write("0123456789", 10);
    block->SetData(static_cast<char*>(block->GetData()) + 5, 5);
    EXPECT_EQ(BytesOf(stream.Get()), "56789");
}

TEST_F(MemStreamTest, AWriteBehindShorterNewDataLeavesZerosBetween) {
    stream->Write("0123456789", 10);
    block->SetData("ab", 2);
    stream->Write("z", 1);
    EXPECT_EQ(BytesOf(stream.Get()), Bytes({'a', 'b', 0, 0, 0, 0, 0, 0, 0, 0, 'z'}));
}

TEST_F(MemStreamTest, AnEmptyBlockHasNoData) {
    stream->Write("abc", 3);
    block->SetData("abc", 0);
    EXPECT_EQ(block->GetData(), nullptr);
    EXPECT_EQ(block->GetSize(), 0u);
}

namespace {

DWORD g_fault;

LONG CALLBACK NoteFault(EXCEPTION_POINTERS* info) {
    if (info->ExceptionRecord->ExceptionCode != EXCEPTION_INT_DIVIDE_BY_ZERO)
        return EXCEPTION_CONTINUE_SEARCH;
    g_fault = info->ExceptionRecord->ExceptionCode;
    ExitThread(0);
}

DWORD WINAPI WriteToEmptyBlock(void* stream) {
    static_cast<IXStream*>(stream)->Write("x", 1);
    return 1;
}

}  // namespace

// The fault ends a thread of its own here, since it is no exception that a caller catches.
TEST_F(MemStreamTest, AWriteAfterAnEmptySetDataDividesByZero) {
    block->SetData(nullptr, 0);
    void* handler = AddVectoredExceptionHandler(1, NoteFault);
    HANDLE thread = CreateThread(nullptr, 0, WriteToEmptyBlock, stream.Get(), 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(g_fault, EXCEPTION_INT_DIVIDE_BY_ZERO);
    EXPECT_EQ(block->GetSize(), 0u);
}

TEST_F(MemStreamTest, ABlockBeyondTwoGigabytesIsRefusedAndNothingChanges) {
    stream->Write("abc", 3);
    EXPECT_THROW(block->SetData(nullptr, 0x80000000u), CXMemException);
    EXPECT_THROW(stream->Write("", INT_MAX), CXMemException);  // 3 + 2147483647 bytes
    EXPECT_EQ(stream->Tell(), 3);
    EXPECT_EQ(BytesOf(stream.Get()), "abc");
}

TEST(MemStreamSinkTest, TheSinkIsHeldAndReleased) {
    Reference<CancelSink> sink(new CancelSink(0));
    Reference<IXStream> stream(new_StreamOnMemory(sink.Get()));
    EXPECT_EQ(CountOf(sink.Get()), 2u);
    stream.Release();
    EXPECT_EQ(CountOf(sink.Get()), 1u);
    EXPECT_EQ(sink->ranges, 0);
}

TEST(MemStreamSinkTest, ANullSinkIsNoSink) {
    Reference<IXStream> stream(new_StreamOnMemory(nullptr));
    EXPECT_EQ(stream->Write("a", 1), 1);
}

TEST(MemStreamSinkTest, ACancelledFirstWriteHasWrittenItsBytes) {
    Reference<CancelSink> sink(new CancelSink(1));
    Reference<IXStream> stream(new_StreamOnMemory(sink.Get()));
    EXPECT_EQ(Thrown([&] { stream->Write("abc", 3); }), "1");
    EXPECT_EQ(stream->GetLength(), 3);
    EXPECT_EQ(stream->Tell(), 3);
}

TEST(MemStreamSinkTest, ACancelledReadHasDeliveredItsBytes) {
    Reference<CancelSink> sink(new CancelSink(2));
    Reference<IXStream> stream(new_StreamOnMemory(sink.Get()));
    stream->Write("abc", 3);
    stream->Seek(0, 0);
    char bytes[4] = {};
    EXPECT_EQ(Thrown([&] { stream->Read(bytes, 3); }), "1");
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(stream->Tell(), 3);
}

TEST(MemStreamSinkTest, AReadAtTheEndDoesNotAskTheSink) {
    Reference<CancelSink> sink(new CancelSink(1));
    Reference<IXStream> stream(new_StreamOnMemory(sink.Get()));
    char byte;
    EXPECT_EQ(stream->Read(&byte, 1), 0);
    EXPECT_EQ(sink->polls, 0);
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    EXPECT_EQ(sink->polls, 0);
}

TEST(MemStreamSinkTest, TypedOperationsAskOnceAndSeeksNever) {
    Reference<CancelSink> sink(new CancelSink(0));
    Reference<IXStream> stream(new_StreamOnMemory(sink.Get()));
    stream->WriteLong(1);
    stream->WriteString("ab");
    EXPECT_EQ(sink->polls, 2);
    stream->Seek(0, 0);
    stream->Tell();
    stream->GetLength();
    stream->GetName();
    EXPECT_EQ(sink->polls, 2);
    stream->ReadLong();
    EXPECT_EQ(sink->polls, 3);
    char text[10];
    stream->ReadString(text, 8);  // three bytes, one read each
    EXPECT_EQ(sink->polls, 6);
}

TEST(EmptyStreamTest, ReadFillsWithZerosAndAnswersOne) {
    Reference<IXStream> stream(new_EmptyStream());
    std::string bytes(100, 'x');
    EXPECT_EQ(stream->Read(bytes.data(), 100), 1);
    EXPECT_EQ(bytes, std::string(100, '\0'));
    EXPECT_EQ(stream->Read(bytes.data(), 0), 1);
    EXPECT_EQ(stream->Tell(), 0);
}

TEST(EmptyStreamTest, ItsLengthIsOne) {
    Reference<IXStream> stream(new_EmptyStream());
    EXPECT_EQ(stream->GetLength(), 1);
    stream->Write("abcdef", 6);
    EXPECT_EQ(stream->GetLength(), 1);
}

TEST(EmptyStreamTest, SeeksAreClampedToOneByte) {
    Reference<IXStream> stream(new_EmptyStream());
    EXPECT_EQ(stream->Seek(5, 0), 1);
    EXPECT_EQ(stream->Tell(), 1);
    EXPECT_EQ(stream->Seek(-1, 1), 0);
    EXPECT_EQ(stream->Seek(0, 2), 1);
    EXPECT_EQ(stream->Seek(-7, 2), 0);
    EXPECT_EQ(Thrown([&] { stream->Seek(0, 3); }), "10 3 Empty stream");
}

TEST(EmptyStreamTest, TypedReadsAnswerZeroAndStay) {
    Reference<IXStream> stream(new_EmptyStream());
    stream->Seek(1, 0);
    EXPECT_EQ(stream->ReadByte(), 0);
    EXPECT_EQ(stream->ReadShort(), 0);
    EXPECT_EQ(stream->ReadLong(), 0u);
    EXPECT_EQ(stream->ReadDouble(), 0.0);
    EXPECT_EQ(stream->Tell(), 1);
}

TEST(EmptyStreamTest, AStringIsEmptyAndCountsOne) {
    Reference<IXStream> stream(new_EmptyStream());
    char text[4] = "---";
    EXPECT_EQ(stream->ReadString(text, 0), 1);
    EXPECT_EQ(std::string(text, 4), Bytes({0, '-', '-', 0}));
}

TEST(EmptyStreamTest, AVariantIsClearedAndCountsAsRead) {
    Reference<IXStream> stream(new_EmptyStream());
    CQXVariant variant("text");
    EXPECT_EQ(stream->ReadVariant(&variant), 1);
    EXPECT_EQ(variant.type, QXVT_EMPTY);
    EXPECT_EQ(variant.value.string, nullptr);
}

TEST(EmptyStreamTest, WritesDoNothing) {
    Reference<IXStream> stream(new_EmptyStream());
    CQXVariant variant(5);
    stream->WriteByte(1);
    stream->WriteShort(1);
    stream->WriteLong(1);
    stream->WriteDouble(1);
    stream->WriteString("abc");
    stream->WriteVariant(&variant);
    EXPECT_EQ(stream->Tell(), 0);
    EXPECT_EQ(variant.value.intVal, 5);
}

// The bytes come from the block that the write replaces.
TEST_F(MemStreamTest, AWriteFromItsOwnBlockMayGrowIt) {
    std::string bytes(4096, 'a');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('a' + i % 26);
    stream->Write(bytes.data(), 4096);
    ASSERT_EQ(block->GetSize(), 4096u);
    for (int round = 0; round < 4; ++round) {
        stream->Seek(0, 2);
        stream->Write(block->GetData(), stream->GetLength());
        bytes += bytes;
    }
    EXPECT_TRUE(BytesOf(stream.Get()) == bytes);
}

TEST_F(MemStreamTest, AWriteFromItsOwnBlockMayOverlapWhatItReads) {
    for (int from : {0, 3}) {
        stream->Seek(0, 0);
        Fill(stream.Get(), "0123456789");
        stream->Seek(3 - from, 0);
        stream->Write(static_cast<char*>(block->GetData()) + from, 6);
        EXPECT_EQ(BytesOf(stream.Get()), from ? "3456786789" : "0120123459");
    }
}

TEST_F(MemStreamTest, AReadIntoItsOwnBlockMayOverlapWhatItReads) {
    Fill(stream.Get(), "0123456789");
    stream->Read(static_cast<char*>(block->GetData()) + 3, 6);
    EXPECT_EQ(BytesOf(stream.Get()), "0120123459");
}

TEST_F(MemStreamTest, AStringWrittenFromItsOwnBlockMayGrowIt) {
    std::string text(4000, 't');
    stream->WriteString(text.c_str());
    stream->WriteString(static_cast<char*>(block->GetData()));
    EXPECT_TRUE(BytesOf(stream.Get()) == text + '\0' + text + '\0');
}

// Nothing of the stream is touched behind the answer.
TEST(MemStreamSinkTest, ASinkMayLetGoOfTheStreamInItsAnswer) {
    struct Forgetful final : CQXUnknownImpl<IProgress> {
        int IsCancelled() override {
            stream.Release();
            return stop;
        }
        void SetRange(int, int) override {}
        Reference<IXStream> stream;
        int stop = 0;
    };
    for (int stop : {0, 1}) {
        auto sink = new Forgetful;
        sink->stop = stop;
        sink->stream = Reference<IXStream>(new_StreamOnMemory(sink));
        IXStream* stream = sink->stream.Get();
        EXPECT_EQ(Thrown([&] { EXPECT_EQ(stream->Write("four", 4), 4); }), stop ? "1" : "nothing");
        EXPECT_EQ(sink->Release(), 0u);
    }
}
