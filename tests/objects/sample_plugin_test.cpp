// The sample plug-in as a host meets it: by its class name and its header.
#include "plugin/note.h"

#include <gtest/gtest.h>
#include <qxcore/exception.h>
#include <qxcore/registry.h>
#include <qxcore/stream.h>

namespace {

class SamplePluginTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(RegisterObject("SampleNote", "plugin.dll"), 1); }
    void TearDown() override {
        UnregisterObject("SampleNote");
        stream->Release();
    }

    void SaveNote(const char* text) {
        IQXUnknown* object;
        ASSERT_EQ(CreateObject("SampleNote", nullptr, qx_typeid<INote>(), &object), 1);
        auto note = static_cast<INote*>(object);
        note->SetText(text);
        EXPECT_EQ(WriteObjectToXStream(stream, note), 1);
        EXPECT_EQ(stream->GetLength(), static_cast<int>(SizeOfObject(note)));
        EXPECT_EQ(note->Release(), 0u);
    }
    IQXUnknown* ReadFromStart() {
        stream->Seek(0, 0);
        IQXUnknown* object = nullptr;
        EXPECT_EQ(ReadObjectFromXStream(stream, &object), 1);
        return object;
    }

    IXStream* stream = new_StreamOnMemory();
};

}  // namespace

TEST_F(SamplePluginTest, ANoteComesBackFromAStream) {
    SaveNote("Call back on Monday");
    IQXUnknown* object = ReadFromStart();
    IQXUnknown* note;
    ASSERT_EQ(object->QueryInterface(qx_typeid<INote>(), &note), 1);
    EXPECT_STREQ(static_cast<INote*>(note)->GetText(), "Call back on Monday");
    note->Release();
    EXPECT_EQ(object->Release(), 0u);
}

TEST_F(SamplePluginTest, AHostWithoutThePlugInKeepsTheNote) {
    SaveNote("Call back on Monday");
    UnregisterObject("SampleNote");
    IQXUnknown* object = ReadFromStart();
    EXPECT_EQ(object->QueryInterface(qx_typeid<INote>(), nullptr), 0);
    IQXUnknown* persistent;
    ASSERT_EQ(object->QueryInterface(qx_typeid<IPersistXStream>(), &persistent), 1);
    stream->Seek(0, 0);
    EXPECT_EQ(WriteObjectToXStream(stream, static_cast<IPersistXStream*>(persistent)), 1);
    persistent->Release();
    EXPECT_EQ(object->Release(), 0u);

    RegisterObject("SampleNote", "plugin.dll");
    object = ReadFromStart();
    ASSERT_EQ(object->QueryInterface(qx_typeid<INote>(), &persistent), 1);
    EXPECT_STREQ(static_cast<INote*>(persistent)->GetText(), "Call back on Monday");
    persistent->Release();
    object->Release();
}

TEST_F(SamplePluginTest, ANoteOfAnotherVersionOrALyingLengthIsRefused) {
    SaveNote("text");
    constexpr int kPayload = 11 + 4;  // behind the name and the size
    IQXUnknown* object;
    stream->Seek(kPayload + 1, 0);
    stream->WriteLong(5);
    stream->Seek(0, 0);
    EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXException);
    stream->Seek(kPayload, 0);
    stream->WriteByte(2);
    stream->Seek(0, 0);
    EXPECT_THROW(ReadObjectFromXStream(stream, &object), CXException);
    EXPECT_EQ(object, nullptr);
}
