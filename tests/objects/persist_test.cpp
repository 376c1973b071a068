
#include <gtest/gtest.h>
#include <qxcore/exception.h>
#include <qxcore/persist.h>
#include <qxcore/reference.h>
#include <qxcore/registry.h>
#include <qxcore/storage.h>
#include <qxcore/stream.h>
#include <qxcore/variant.h>

#include <cstring>
#include <objidl.h>
#include <string>

namespace {

// A class whose payload is a text of bytes. It reads as many bytes as it is told to, whatever the
// frame says.
class CBytes : public CQXUnknownImpl<IPersistXStream> {
public:
    explicit CBytes(std::string className = "PersistBytes", std::string bytes = "")
        : className(std::move(className)), bytes(std::move(bytes)) {
        ++live;
    }
    ~CBytes() override { --live; }

    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (refuseRoot && id == qx_typeid<IQXUnknown>()) return QXAnswerQuery(nullptr, out);
        if (InternalQueryInterface(id, out)) return 1;
        return QXAnswerQuery(id == qx_typeid<IPersistX>() ? this : nullptr, out);
    }
    const char* GetClassName() override { return className.c_str(); }
    unsigned GetSizeMax() override { return static_cast<unsigned>(bytes.size()); }
    void Load(IXStream* stream) override {
        if (throwAtLoad) throw CXException(77);
        bytes.assign(static_cast<size_t>(bytesToRead), '?');
        stream->Read(bytes.data(), bytesToRead);
    }
    void Save(IXStream* stream) override {
        stream->Write(bytes.data(), static_cast<int>(bytes.size()));
    }

    static int live;
    static int bytesToRead;
    static bool refuseRoot, throwAtLoad;

    std::string className, bytes;
};

int CBytes::live = 0;
int CBytes::bytesToRead = 10;
bool CBytes::refuseRoot = false;
bool CBytes::throwAtLoad = false;

// An object with another one inside its payload.
class COuterObject : public CQXUnknownImpl<IPersistXStream> {
public:
    COuterObject() { ++live; }
    ~COuterObject() override {
        if (inner) inner->Release();
        --live;
    }
    const char* GetClassName() override { return "PersistOuter"; }
    unsigned GetSizeMax() override { return static_cast<unsigned>(SizeOfObject(inner)); }
    void Load(IXStream* stream) override {
        IQXUnknown* object;
        ReadObjectFromXStream(stream, &object);
        inner = static_cast<IPersistXStream*>(object);
    }
    void Save(IXStream* stream) override { WriteObjectToXStream(stream, inner); }

    static int live;
    IPersistXStream* inner = nullptr;
};

int COuterObject::live = 0;

}  // namespace

QX_CREATOR(PersistBytes) {
    return QXCreateInstance<CBytes>(outer, id, out);
}

QX_CREATOR(PersistOuter) {
    return QXCreateInstance<COuterObject>(outer, id, out);
}

namespace {

class Stream {
public:
    Stream() : stream(new_StreamOnMemory()) {}
    explicit Stream(const std::string& bytes) : Stream() {
        stream->Write(bytes.data(), static_cast<int>(bytes.size()));
        stream->Seek(0, 0);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { stream->Release(); }

    operator IXStream*() const { return stream; }
    IXStream* operator->() const { return stream; }

    std::string Bytes() const {
        int here = stream->Tell();
        std::string bytes(static_cast<size_t>(stream->GetLength()), 0);
        stream->Seek(0, 0);
        stream->Read(bytes.data(), static_cast<int>(bytes.size()));
        stream->Seek(here, 0);
        return bytes;
    }

private:
    IXStream* stream;
};

// An element of a storage in memory.
class ElementStream {
public:
    explicit ElementStream(const std::string& bytes)
        : m_storage(new_Storage(nullptr, 0)), m_stream(m_storage->CreateStream("element")) {
        m_stream->Write(bytes.data(), static_cast<int>(bytes.size()));
        m_stream->Seek(0, 0);
        m_ole = qx::Reference<IStream>(static_cast<IStream*>(Stream_GetOLEStream(m_stream.Get())));
    }
    IXStream* Get() const { return m_stream.Get(); }
    IStream* Ole() const { return m_ole.Get(); }

private:
    qx::Reference<IXStorage> m_storage;
    qx::Reference<IXStream> m_stream;
    qx::Reference<IStream> m_ole;
};

// A host's own stream over bytes that fit a text, which raises the root of the exceptions.
class EndingStream : public IXStream {
public:
    explicit EndingStream(std::string bytes, int code = QXERR_EOF)
        : m_bytes(std::move(bytes)), m_code(code) {}

    operator IXStream*() { return this; }
    int ReadString(char* buffer, int) override {
        memcpy(buffer, m_bytes.data(), m_bytes.size());
        throw CXException(m_code);
    }

    unsigned AddRef() override { return 1; }
    unsigned Release() override { return 1; }
    int QueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }
    int Read(void*, int) override { return 0; }
    int Write(const void*, int) override { return 0; }
    int Seek(int, int) override { return 0; }
    int Tell() override { return 0; }
    unsigned char ReadByte() override { return 0; }
    unsigned short ReadShort() override { return 0; }
    unsigned ReadLong() override { return 0; }
    double ReadDouble() override { return 0; }
    int ReadVariant(tagQXVARIANT*) override { return 0; }
    void WriteVariant(const tagQXVARIANT*) override {}
    int WriteByte(unsigned char) override { return 0; }
    int WriteShort(unsigned short) override { return 0; }
    int WriteLong(unsigned) override { return 0; }
    int WriteDouble(double) override { return 0; }
    int WriteString(const char*) override { return 0; }
    int GetLength() override { return 0; }
    const char* GetName() override { return "a host's own"; }

private:
    std::string m_bytes;
    int m_code;
};

// Runs `act` on a thread whose stack has no more bytes than that.
template <class Act>
void RunOnStackOf(size_t bytes, Act act) {
    auto run = [](void* argument) -> unsigned long {
        (*static_cast<Act*>(argument))();
        return 0;
    };
    HANDLE thread =
        CreateThread(nullptr, bytes, run, &act, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

template <size_t N>
std::string Raw(const char (&bytes)[N]) {
    return std::string(bytes, N - 1);
}

std::string LittleEndian(unsigned size) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(size >> 8 * i);
    return bytes;
}

std::string Frame(const std::string& className, unsigned size, const std::string& payload) {
    return className + '\0' + LittleEndian(size) + payload;
}

std::string BytesOf(IPersistXStream* object) {
    Stream stream;
    EXPECT_EQ(WriteObjectToXStream(stream, object), 1);
    return stream.Bytes();
}

IPersistXStream* Persistent(IQXUnknown* object) {
    IQXUnknown* answer = nullptr;
    EXPECT_EQ(object->QueryInterface(qx_typeid<IPersistXStream>(), &answer), 1);
    object->Release();
    return static_cast<IPersistXStream*>(answer);
}

// What a stream of these bytes gives: an object with one reference, or null.
IPersistXStream* ObjectOf(const std::string& bytes) {
    Stream stream(bytes);
    IQXUnknown* object = nullptr;
    return ReadObjectFromXStream(stream, &object) ? Persistent(object) : nullptr;
}

IQXUnknown* const kUnset = reinterpret_cast<IQXUnknown*>(8);

// Objects of the class whose payload is a frame, the innermost without one.
std::string NestedFrames(int levels) {
    std::string frames;
    for (int i = 0; i < levels; ++i) frames += std::string("PersistOuter") + '\0' + LittleEndian(0);
    return frames + '\0';
}

class PersistTest : public testing::Test {
protected:
    void SetUp() override {
        CBytes::bytesToRead = 10;
        CBytes::refuseRoot = CBytes::throwAtLoad = false;
        live = CBytes::live;
    }
    void TearDown() override {
        UnregisterObject("PersistBytes");
        UnregisterObject("PersistOuter");
        EXPECT_EQ(CBytes::live, live);
    }
    void Register(const char* name) {
        ASSERT_EQ(RegisterObject(name, GetModuleHandleA(nullptr)), 1);
    }

private:
    int live = 0;
};

}  // namespace

// ---- writing

TEST_F(PersistTest, ANullObjectIsOneZeroByte) {
    EXPECT_EQ(SizeOfObject(nullptr), 1u);
    EXPECT_EQ(BytesOf(nullptr), Raw("\0"));
    Stream stream(Raw("\0"));
    IQXUnknown* object = kUnset;
    EXPECT_EQ(ReadObjectFromXStream(stream, &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(stream->Tell(), 1);
}

TEST_F(PersistTest, AFrameIsTheNameTheSizeAndThePayload) {
    auto object = qx::Make<CBytes>("Abc", "0123456789");
    EXPECT_EQ(SizeOfObject(object.Get()), 18u);
    EXPECT_EQ(BytesOf(object.Get()), Raw("Abc\0\x0A\0\0\0"
                                         "0123456789"));
}

TEST_F(PersistTest, AnEmptyPayloadIsAFrameWithSizeZero) {
    auto object = qx::Make<CBytes>("Abc", "");
    EXPECT_EQ(SizeOfObject(object.Get()), 8u);
    EXPECT_EQ(BytesOf(object.Get()), Raw("Abc\0\0\0\0\0"));
}

TEST_F(PersistTest, TheSizeIsMeasuredAndNotTakenFromTheObject) {
    class CLiar : public CBytes {
    public:
        CLiar() : CBytes("Liar", "four") {}
        unsigned GetSizeMax() override { return 1000; }
    };
    auto object = qx::Make<CLiar>();
    EXPECT_EQ(SizeOfObject(object.Get()), 1009u);
    EXPECT_EQ(BytesOf(object.Get()), Frame("Liar", 4, "four"));
}

TEST_F(PersistTest, FramesStandOneBehindTheOtherInAStreamThatHasMore) {
    auto first = qx::Make<CBytes>("First", "1"), second = qx::Make<CBytes>("Second", "22");
    Stream stream(std::string("xxxx.................................yyyy"));
    stream->Seek(4, 0);
    WriteObjectToXStream(stream, first.Get());
    WriteObjectToXStream(stream, nullptr);
    WriteObjectToXStream(stream, second.Get());
    std::string frames = Frame("First", 1, "1") + '\0' + Frame("Second", 2, "22");
    EXPECT_EQ(stream->Tell(), static_cast<int>(4 + frames.size()));
    EXPECT_EQ(stream.Bytes().substr(0, 4 + frames.size()), "xxxx" + frames);
}

// ---- reading

TEST_F(PersistTest, ARegisteredClassReadsItsPayload) {
    Register("PersistBytes");
    IPersistXStream* object = ObjectOf(Frame("PersistBytes", 10, "0123456789"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(static_cast<CBytes*>(object)->bytes, "0123456789");
    EXPECT_EQ(object->Release(), 0u);
}

TEST_F(PersistTest, AClassThatReadsTooLittleOrTooMuchLeavesTheStreamThere) {
    Register("PersistBytes");
    for (int bytes : {3, 14}) {
        CBytes::bytesToRead = bytes;
        Stream stream(Frame("PersistBytes", 10, "0123456789") + "abcdef");
        IQXUnknown* object;
        EXPECT_EQ(ReadObjectFromXStream(stream, &object), 1);
        EXPECT_EQ(stream->Tell(), 17 + bytes);
        EXPECT_EQ(object->Release(), 0u);
    }
}

TEST_F(PersistTest, AFramesSizeIsNotComparedForARegisteredClass) {
    Register("PersistBytes");
    IPersistXStream* object = ObjectOf(Frame("PersistBytes", 0xFFFFFFFF, "0123456789"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(static_cast<CBytes*>(object)->bytes, "0123456789");
    object->Release();
}

TEST_F(PersistTest, AClassThatRefusesTheRootIsReleased) {
    Register("PersistBytes");
    CBytes::refuseRoot = true;
    Stream stream(Frame("PersistBytes", 10, "0123456789"));
    IQXUnknown* object = kUnset;
    EXPECT_EQ(ReadObjectFromXStream(stream, &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST_F(PersistTest, WhatLoadThrowsPassesAndTheObjectIsReleased) {
    Register("PersistBytes");
    CBytes::throwAtLoad = true;
    Stream stream(Frame("PersistBytes", 10, "0123456789"));
    IQXUnknown* object = kUnset;
    EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXException);
    EXPECT_EQ(object, nullptr);
}

TEST_F(PersistTest, AFrameThatBreaksOffIsTheStreamsOwnException) {
    for (const std::string& bytes : {Raw("A"), Raw("Ab"), Raw("Abc\0")}) {
        Stream memory(bytes);
        ElementStream element(bytes);
        for (IXStream* stream : {static_cast<IXStream*>(memory), element.Get()}) {
            IQXUnknown* object = kUnset;
            EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXEofException) << bytes.size();
            EXPECT_EQ(object, nullptr);
        }
    }
}

TEST_F(PersistTest, AStreamThatHasEndedGivesZeroAndNullWhateverItsKind) {
    Stream memory(""), behind("rest");
    behind->Seek(0, 2);
    ElementStream element("");
    ElementStream behindElement("rest");
    behindElement.Get()->Seek(0, 2);
    qx::Reference<IXStream> empty(new_EmptyStream());
    qx::Reference<IXStream> wrapper(new_StreamByOleStream(element.Ole()));
    for (IXStream* stream : {static_cast<IXStream*>(memory), static_cast<IXStream*>(behind),
                             element.Get(), behindElement.Get(), empty.Get(), wrapper.Get()}) {
        IQXUnknown* object = kUnset;
        EXPECT_EQ(ReadObjectFromXStream(stream, &object), 0) << stream->GetName();
        EXPECT_EQ(object, nullptr);
    }
}

TEST_F(PersistTest, AnEndThatAStreamOfTheHostsTellsByItsCodeIsAnEndToo) {
    EndingStream nothing(""), broken("Ab");
    IQXUnknown* object = kUnset;
    EXPECT_EQ(ReadObjectFromXStream(nothing, &object), 0);
    EXPECT_EQ(object, nullptr);
    object = kUnset;
    EXPECT_THROW(ReadObjectFromXStream(broken, &object), CXException);
    EXPECT_EQ(object, nullptr);
    EndingStream failing("", QXERR_DEVICE);
    EXPECT_THROW(ReadObjectFromXStream(failing, &object), CXException);
}

// ---- frames in frames

TEST_F(PersistTest, FramesInFramesAreReadAsFarAsTheStackGoes) {
    Register("PersistOuter");
    Stream stream(NestedFrames(100));
    IQXUnknown* object;
    ASSERT_EQ(ReadObjectFromXStream(stream, &object), 1);
    int levels = 0;
    for (auto at = static_cast<COuterObject*>(object); at;
         at = static_cast<COuterObject*>(at->inner))
        ++levels;
    EXPECT_EQ(levels, 100);
    object->Release();
}

TEST_F(PersistTest, FramesThatNestTooDeepAreRefusedAsBadFormat) {
    Register("PersistOuter");
    auto read = [] {
        Stream stream(NestedFrames(100000));
        IQXUnknown* object = kUnset;
        try {
            ReadObjectFromXStream(stream, &object);
            ADD_FAILURE() << "all were read";
        } catch (CXException& failure) {
            EXPECT_EQ(failure.GetCode(), QXERR_FORMAT);
        }
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(COuterObject::live, 0);
    };
    read();
    RunOnStackOf(256 * 1024, read);
}

TEST_F(PersistTest, AThreadWithASmallStackReadsFramesToo) {
    Register("PersistOuter");
    RunOnStackOf(64 * 1024, [] {
        Stream stream(NestedFrames(3));
        IQXUnknown* object = kUnset;
        EXPECT_EQ(ReadObjectFromXStream(stream, &object), 1);
        object->Release();
    });
}

// ---- the stand-in for an unknown class

TEST_F(PersistTest, AnUnknownClassComesBackAndIsWrittenUnchanged) {
    std::string frame = Frame("PersistNobody", 6, Raw("a\0b\n\xFFz"));
    IPersistXStream* proxy = ObjectOf(frame);
    ASSERT_NE(proxy, nullptr);
    EXPECT_STREQ(proxy->GetClassName(), "PersistNobody");
    EXPECT_EQ(proxy->GetSizeMax(), 6u);
    EXPECT_EQ(SizeOfObject(proxy), frame.size());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(BytesOf(proxy), frame);
    EXPECT_EQ(proxy->Release(), 0u);
}

TEST_F(PersistTest, AProxyAnswersTheInterfacesOfPersistence) {
    IPersistXStream* proxy = ObjectOf(Frame("PersistNobody", 1, "x"));
    ASSERT_NE(proxy, nullptr);
    for (const qx_type_info* id :
         {&qx_typeid<IQXUnknown>(), &qx_typeid<IPersistX>(), &qx_typeid<IPersistXStream>()}) {
        IQXUnknown* answer = nullptr;
        EXPECT_EQ(proxy->QueryInterface(*id, nullptr), 1);
        EXPECT_EQ(proxy->QueryInterface(*id, &answer), 1);
        EXPECT_EQ(answer, proxy);
        EXPECT_EQ(answer->Release(), 1u);
    }
    IQXUnknown* answer = kUnset;
    EXPECT_EQ(proxy->QueryInterface(qx_typeid<IXStream>(), &answer), 0);
    EXPECT_EQ(answer, nullptr);
    proxy->Release();
}

TEST_F(PersistTest, AProxyOfAnEmptyPayloadIsWrittenUnchanged) {
    std::string frame = Frame("PersistNobody", 0, "");
    IPersistXStream* proxy = ObjectOf(frame);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(BytesOf(proxy), frame);
    proxy->Release();
}

TEST_F(PersistTest, AProxyEndsBehindItsPayload) {
    Stream stream(Frame("PersistNobody", 3, "abc") + "rest");
    IQXUnknown* object;
    EXPECT_EQ(ReadObjectFromXStream(stream, &object), 1);
    EXPECT_EQ(stream->Tell(), static_cast<int>(Frame("PersistNobody", 3, "abc").size()));
    object->Release();
}

TEST_F(PersistTest, AProxyStaysAProxyWhenItsClassBecomesKnown) {
    IPersistXStream* proxy = ObjectOf(Frame("PersistBytes", 3, "abc"));
    ASSERT_NE(proxy, nullptr);
    Register("PersistBytes");
    EXPECT_EQ(BytesOf(proxy), Frame("PersistBytes", 3, "abc"));
    EXPECT_EQ(proxy->Release(), 0u);
}

TEST_F(PersistTest, AProxyMayBeLoadedAgain) {
    IPersistXStream* proxy = ObjectOf(Frame("PersistNobody", 3, "abc"));
    ASSERT_NE(proxy, nullptr);
    Stream other("defghi");
    proxy->Load(other);
    EXPECT_EQ(BytesOf(proxy), Frame("PersistNobody", 3, "def"));
    Stream tooShort("de");
    EXPECT_THROW(proxy->Load(tooShort), CXException);
    proxy->Release();
}

TEST_F(PersistTest, AProxyWhoseLoadFailedHasNoPayload) {
    IPersistXStream* proxy = ObjectOf(Frame("PersistNobody", 3, "abc"));
    ASSERT_NE(proxy, nullptr);
    Stream shorter("x");
    EXPECT_THROW(proxy->Load(shorter), CXException);
    EXPECT_EQ(BytesOf(proxy), Frame("PersistNobody", 0, ""));
    proxy->Release();
}

TEST_F(PersistTest, AnObjectWithinAnUnknownObjectStaysInItsBytes) {
    auto inner = qx::Make<CBytes>("PersistBytes", "0123456789");
    auto outer = qx::Make<COuterObject>();
    outer->inner = inner.Get();
    inner->AddRef();
    std::string frame = BytesOf(outer.Get());
    EXPECT_EQ(frame, Frame("PersistOuter", 27, Frame("PersistBytes", 10, "0123456789")));
    EXPECT_EQ(SizeOfObject(outer.Get()), frame.size());

    Register("PersistBytes");  // the inner class alone does not help
    IPersistXStream* proxy = ObjectOf(frame);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(BytesOf(proxy), frame);
    proxy->Release();

    Register("PersistOuter");
    IPersistXStream* read = ObjectOf(frame);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(static_cast<CBytes*>(static_cast<COuterObject*>(read)->inner)->bytes, "0123456789");
    read->Release();
}

TEST_F(PersistTest, AnUnknownObjectWithinAKnownOneIsAProxy) {
    Register("PersistOuter");
    std::string frame = Frame("PersistOuter", 27, Frame("PersistBytes", 10, "0123456789"));
    IPersistXStream* read = ObjectOf(frame);
    ASSERT_NE(read, nullptr);
    EXPECT_STREQ(static_cast<COuterObject*>(read)->inner->GetClassName(), "PersistBytes");
    EXPECT_EQ(BytesOf(read), frame);
    read->Release();
}

TEST_F(PersistTest, AProxyTravelsInAVariant) {
    std::string wire = Raw("\x12\0") + Frame("PersistNobody", 3, "abc");  // code 18, then the frame
    Stream stream(wire);
    CQXVariant v;
    EXPECT_EQ(stream->ReadVariant(&v), 1);
    EXPECT_EQ(v.type, QXVT_UNKNOWN);
    CQXVariant copy(v);
    Stream written;
    written->WriteVariant(&copy);
    EXPECT_EQ(written.Bytes(), wire);
}

// ---- sizes that lie

TEST_F(PersistTest, AFrameThatClaimsMoreThanTheStreamHoldsIsRefused) {
    for (unsigned size : {4u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        Stream stream(Frame("PersistNobody", size, "abc"));
        IQXUnknown* object = kUnset;
        try {
            ReadObjectFromXStream(stream, &object);
            ADD_FAILURE() << "nothing was thrown for " << size;
        } catch (CXException& e) {
            EXPECT_EQ(e.GetCode(), QXERR_OBJECT_SIZE) << size;
        }
        EXPECT_EQ(object, nullptr);
    }
}

TEST_F(PersistTest, AFrameThatClaimsLessLeavesTheRest) {
    Stream stream(Frame("PersistNobody", 2, "abcd"));
    IQXUnknown* object;
    EXPECT_EQ(ReadObjectFromXStream(stream, &object), 1);
    IPersistXStream* proxy = Persistent(object);
    EXPECT_EQ(BytesOf(proxy), Frame("PersistNobody", 2, "ab"));
    proxy->Release();
    char rest[2];
    EXPECT_EQ(stream->Read(rest, 2), 2);
    EXPECT_EQ(memcmp(rest, "cd", 2), 0);
}

// ---- names

TEST_F(PersistTest, ANameOfTwoHundredFiftyNineCharactersComesBack) {
    std::string name(259, 'n');
    std::string frame = Frame(name, 3, "abc");
    IPersistXStream* proxy = ObjectOf(frame);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->GetClassName(), name);
    EXPECT_EQ(BytesOf(proxy), frame);
    proxy->Release();
}

TEST_F(PersistTest, ANameOfTwoHundredSixtyCharactersDoesNot) {
    // The reader stops before the terminator, which then is the first byte of the size: 0x00000300.
    Stream stream(Frame(std::string(260, 'n'), 3, "abc"));
    IQXUnknown* object = kUnset;
    EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXException);
    EXPECT_EQ(object, nullptr);

    IPersistXStream* proxy = ObjectOf(std::string(260, 'n') + LittleEndian(2) + "ab");
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->GetClassName(), std::string(260, 'n'));
    proxy->Release();
}

TEST_F(PersistTest, AnOverlongNameIsNoHarm) {
    std::string bytes(5000, 'n');
    IQXUnknown* object = kUnset;
    Stream stream(bytes);
    EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXException);  // the size is "nnnn"
    EXPECT_EQ(object, nullptr);
}

// ---- skipping

TEST_F(PersistTest, SkippingAnswersTheStartAndEndsBehindTheFrame) {
    std::string frame = Frame("PersistNobody", 3, "abc");
    Stream stream("xx" + frame + "rest");
    stream->Seek(2, 0);
    EXPECT_EQ(SkipObjectToXStream(stream), 2u);
    EXPECT_EQ(stream->Tell(), static_cast<int>(2 + frame.size()));
}

TEST_F(PersistTest, SkippingANullObjectSwallowsFourBytesOfWhatFollows) {
    Stream stream(Raw("\0\x02\0\0\0ab") + "rest");
    EXPECT_EQ(SkipObjectToXStream(stream), 0u);
    EXPECT_EQ(stream->Tell(), 7);
}

TEST_F(PersistTest, SkippingMakesNoObject) {
    Register("PersistBytes");
    CBytes::throwAtLoad = true;
    Stream stream(Frame("PersistBytes", 10, "0123456789"));
    EXPECT_EQ(SkipObjectToXStream(stream), 0u);
    EXPECT_EQ(stream->Tell(), 27);
}

TEST_F(PersistTest, SkippingAtTheEndIsTheStreamsOwnException) {
    Stream stream(Raw("Abc\0"));
    EXPECT_THROW(SkipObjectToXStream(stream), CXEofException);
}
