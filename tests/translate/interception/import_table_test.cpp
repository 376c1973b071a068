// Exchanging one function in a module's imports: HookProc_Install over real modules and over images
// made by hand.
#include "translate/interception/caller.h"

#include <cstddef>

namespace {

int WINAPI Replacement(HINSTANCE, UINT, char*, int) {
    return 4711;
}
void* const kReplacement = reinterpret_cast<void*>(&Replacement);

void* Real(const char* dll, const char* function) {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(dll), function));
}

// Pages that end at an unmapped one.
class Pages {
public:
    explicit Pages(size_t count) : size(count * 4096) {
        base = static_cast<char*>(VirtualAlloc(nullptr, size + 4096, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(base, size, MEM_COMMIT, PAGE_READWRITE);
    }
    ~Pages() { VirtualFree(base, 0, MEM_RELEASE); }
    Pages(const Pages&) = delete;
    char* base;
    size_t size;
};

// A 64-bit image with import descriptors, laid out by hand in two pages.
class FakeImage {
public:
    static constexpr DWORD kDirectory = 0x400;
    static constexpr DWORD kSlots = 0x1000;

    FakeImage() {
        auto dos = At<IMAGE_DOS_HEADER>(0);
        dos->e_magic = IMAGE_DOS_SIGNATURE;
        dos->e_lfanew = kHeaders;
        Headers()->Signature = IMAGE_NT_SIGNATURE;
        Headers()->FileHeader.SizeOfOptionalHeader = 240;
        Headers()->OptionalHeader.NumberOfRvaAndSizes = 16;
        Imports().VirtualAddress = kDirectory;
    }
    IMAGE_NT_HEADERS64* Headers() { return At<IMAGE_NT_HEADERS64>(kHeaders); }
    IMAGE_DATA_DIRECTORY& Imports() { return Headers()->OptionalHeader.DataDirectory[1]; }
    IMAGE_IMPORT_DESCRIPTOR& Descriptor(int i) {
        return At<IMAGE_IMPORT_DESCRIPTOR>(kDirectory)[i];
    }
    void* volatile& Slot(int i) { return At<void* volatile>(kSlots)[i]; }
    // A descriptor whose slots begin at this slot.
    void AddDescriptor(int i, int slot) {
        Descriptor(i).Name = 0x800;
        Descriptor(i).FirstThunk = kSlots + slot * 8;
    }
    template <class T>
    T* At(size_t offset) {
        return reinterpret_cast<T*>(pages.base + offset);
    }
    void* Base() { return pages.base; }

    static constexpr LONG kHeaders = 0x80;
    Pages pages{2};
};

class ImportTableTest : public testing::Test {
protected:
    void* Install(void* module) {
        return HookProc_Install(module, "user32.dll", "LoadStringA", kReplacement);
    }
    void* const real = Real("user32.dll", "LoadStringA");
    FakeImage image;
};

}  // namespace

TEST_F(ImportTableTest, TheModulesCallsReachTheReplacementAndTheAnswerIsTheRealAddress) {
    CallerModule caller;
    EXPECT_EQ(Install(caller), real);
    char buffer[16];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 16), 4711);
}

TEST_F(ImportTableTest, OtherModulesAndTheLibraryKeepTheirImports) {
    CallerModule caller;
    CallerModule other("other.dll");
    Install(caller);
    char buffer[16];
    EXPECT_EQ(CALL(other, LoadStringA)(other, 1, buffer, 16), 4);
    EXPECT_EQ(_LoadStringNotTrans(other, 1, buffer, 16), 4);
    EXPECT_EQ(LoadStringA(other, 1, buffer, 16), 4);
}

TEST_F(ImportTableTest, InstallingTwiceAnswersTheRealAddressAgain) {
    CallerModule caller;
    Install(caller);
    EXPECT_EQ(Install(caller), real);
    char buffer[16];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 16), 4711);
}

TEST_F(ImportTableTest, UninstallingIsInert) {
    CallerModule caller;
    Install(caller);
    EXPECT_EQ(HookProc_UnInstall(caller, "user32.dll", "LoadStringA"), nullptr);
    EXPECT_EQ(HookProc_UnInstall(caller, "no such library", "LoadStringA"), nullptr);
    EXPECT_EQ(HookProc_UnInstall(nullptr, "user32.dll", "LoadStringA"), nullptr);
    char buffer[16];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 16), 4711);
}

TEST_F(ImportTableTest, ANullModuleAnswersAFunctionThatReturns0) {
    auto stub = reinterpret_cast<int (*)()>(Install(nullptr));
    ASSERT_NE(stub, nullptr);
    EXPECT_EQ(stub(), 0);
    EXPECT_EQ(HookProc_Install(nullptr, "no such library", "none", kReplacement),
              reinterpret_cast<void*>(stub));
}

TEST_F(ImportTableTest, AnUnknownLibraryOrFunctionAnswersNull) {
    CallerModule caller;
    EXPECT_EQ(HookProc_Install(caller, "no such library", "LoadStringA", kReplacement), nullptr);
    EXPECT_EQ(HookProc_Install(caller, "user32.dll", "NoSuchFunction", kReplacement), nullptr);
}

TEST_F(ImportTableTest, AFunctionThatTheModuleDoesNotImportAnswersItsRealAddress) {
    CallerModule caller;
    EXPECT_EQ(HookProc_Install(caller, "user32.dll", "SetDoubleClickTime", kReplacement),
              Real("user32.dll", "SetDoubleClickTime"));
}

TEST_F(ImportTableTest, SlotsKeepTheirProtection) {
    image.AddDescriptor(0, 0);
    image.Slot(0) = real;
    DWORD old;
    VirtualProtect(const_cast<void**>(&image.Slot(0)), 8, PAGE_READONLY, &old);
    EXPECT_EQ(Install(image.Base()), real);
    EXPECT_EQ(image.Slot(0), kReplacement);
    MEMORY_BASIC_INFORMATION info;
    VirtualQuery(const_cast<void**>(&image.Slot(0)), &info, sizeof info);
    EXPECT_EQ(info.Protect, DWORD(PAGE_READONLY));
}

TEST_F(ImportTableTest, EveryDescriptorIsWalkedWhateverItsNameAndPastTheFirstHit) {
    int other;
    image.AddDescriptor(0, 0);
    image.Slot(0) = &other;
    image.Slot(1) = real;
    image.Slot(2) = real;
    image.AddDescriptor(1, 4);
    image.Descriptor(1).Name = 1;
    image.Slot(4) = real;
    EXPECT_EQ(Install(image.Base()), real);
    EXPECT_EQ(image.Slot(0), &other);
    EXPECT_EQ(image.Slot(1), kReplacement);
    EXPECT_EQ(image.Slot(2), kReplacement);
    EXPECT_EQ(image.Slot(4), kReplacement);
}

TEST_F(ImportTableTest, SlotsEndAtTheFirstNullSlot) {
    image.AddDescriptor(0, 0);
    image.Slot(0) = real;
    image.Slot(2) = real;
    Install(image.Base());
    EXPECT_EQ(image.Slot(0), kReplacement);
    EXPECT_EQ(image.Slot(2), real);
}

TEST_F(ImportTableTest, DescriptorsEndAtTheFirstNullName) {
    image.AddDescriptor(0, 0);
    image.AddDescriptor(1, 0);
    image.Descriptor(0).Name = 0;
    image.Slot(0) = real;
    EXPECT_EQ(Install(image.Base()), real);
    EXPECT_EQ(image.Slot(0), real);
}

TEST_F(ImportTableTest, ADirectoryWithoutDescriptorsAnswersTheRealAddress) {
    EXPECT_EQ(Install(image.Base()), real);
}

TEST_F(ImportTableTest, AModuleWithoutAnImportDirectoryAnswersTheRealAddress) {
    image.Imports().VirtualAddress = 0;
    EXPECT_EQ(Install(image.Base()), real);
}

TEST_F(ImportTableTest, AnImageThatIsNoneAnswersNullAndStays) {
    image.AddDescriptor(0, 0);
    image.Slot(0) = real;
    auto expectRefused = [&](const char* why) {
        EXPECT_EQ(Install(image.Base()), nullptr) << why;
        EXPECT_EQ(image.Slot(0), real) << why;
    };
    image.Headers()->Signature = 0x00004551;
    expectRefused("signature");
    image.Headers()->Signature = IMAGE_NT_SIGNATURE;
    image.Headers()->FileHeader.SizeOfOptionalHeader = 224;
    expectRefused("32-bit optional header");
    image.Headers()->FileHeader.SizeOfOptionalHeader = 240;
    image.Imports().VirtualAddress = FakeImage::kHeaders + 4;
    expectRefused("directory at the file header");
    image.Imports().VirtualAddress = FakeImage::kDirectory;
    for (LONG header : {0x2000, 0x7FFFFFFF, -1, -0x7FFFFFFF, 0x1FFE}) {
        image.At<IMAGE_DOS_HEADER>(0)->e_lfanew = header;
        expectRefused("headers outside the image");
    }
    image.At<IMAGE_DOS_HEADER>(0)->e_lfanew = FakeImage::kHeaders;
    EXPECT_EQ(Install(image.Base()), real);
    EXPECT_EQ(image.Slot(0), kReplacement);
}

TEST_F(ImportTableTest, TheFirstBytesOfAnImageAreNotLookedAt) {
    image.At<IMAGE_DOS_HEADER>(0)->e_magic = 0;
    image.AddDescriptor(0, 0);
    image.Slot(0) = real;
    EXPECT_EQ(Install(image.Base()), real);
    EXPECT_EQ(image.Slot(0), kReplacement);
}

TEST_F(ImportTableTest, ADirectoryOutsideTheImageHasNoSlots) {
    for (DWORD address : {0x2000u, 0x1FFCu, 0x7FFFFFF0u, 0xFFFFFFF0u}) {
        image.Imports().VirtualAddress = address;
        EXPECT_EQ(Install(image.Base()), real);
    }
}

TEST_F(ImportTableTest, SlotsOutsideTheImageEndTheirDescriptorOnly) {
    image.AddDescriptor(0, 0);
    image.AddDescriptor(1, 0);
    image.Slot(0) = real;
    for (DWORD address : {0x2000u, 0x1FFCu, 0xFFFFFFF8u, 0x7FFFFFFFu}) {
        image.Descriptor(0).FirstThunk = address;
        image.Slot(0) = real;
        EXPECT_EQ(Install(image.Base()), real);
        EXPECT_EQ(image.Slot(0), kReplacement);
    }
}

TEST_F(ImportTableTest, UnendedSlotsAndDescriptorsEndWithTheImage) {
    constexpr int kAllSlots = 512;
    for (int i = 0; i < kAllSlots; ++i) image.Slot(i) = real;
    image.AddDescriptor(0, 0);
    EXPECT_EQ(Install(image.Base()), real);
    for (int i = 0; i < kAllSlots; ++i) EXPECT_EQ(image.Slot(i), kReplacement);
    // Descriptors without an end, each of which points at the last slot.
    Pages pages(1);
    for (size_t at = 0; at + 20 <= 4096; at += 20) image.At<DWORD>(0x1000 + at)[3] = 1;
    image.Imports().VirtualAddress = 0x1000;
    EXPECT_EQ(Install(image.Base()), real);
}

TEST_F(ImportTableTest, SlotsOfAnotherAllocationAreNotTheImages) {
    // A broken table must not reach the imports of a module that was not named.
    Pages victim(1);
    auto slot = reinterpret_cast<void**>(victim.base);
    *slot = real;
    auto distance = victim.base - static_cast<char*>(image.Base());
    if (distance < 0 || distance > 0xFFFFFFFFLL)
        GTEST_SKIP() << "the second allocation cannot be reached";
    image.Descriptor(0).Name = 1;
    image.Descriptor(0).FirstThunk = static_cast<DWORD>(distance);
    Install(image.Base());
    EXPECT_EQ(*slot, real);
}

TEST_F(ImportTableTest, SlotsAtOddAddressesAreExchanged) {
    image.Descriptor(0).Name = 1;
    image.Descriptor(0).FirstThunk = FakeImage::kSlots + 3;
    memcpy(image.At<char>(FakeImage::kSlots + 3), &real, 8);
    EXPECT_EQ(Install(image.Base()), real);
    void* held;
    memcpy(&held, image.At<char>(FakeImage::kSlots + 3), 8);
    EXPECT_EQ(held, kReplacement);
}

TEST_F(ImportTableTest, MemoryThatIsNoImageAtAllAnswersNull) {
    Pages zero(1);
    EXPECT_EQ(Install(zero.base), nullptr);
    EXPECT_EQ(Install(zero.base + 4095), nullptr);            // the header would begin behind it
    EXPECT_EQ(Install(zero.base + 4096), nullptr);            // not committed
    EXPECT_EQ(Install(reinterpret_cast<void*>(1)), nullptr);  // never mapped
    EXPECT_EQ(Install(reinterpret_cast<void*>(~uintptr_t(0))), nullptr);
}

TEST_F(ImportTableTest, AModuleMappedAsDataIsNoImage) {
    HMODULE data =
        LoadLibraryExA((ModuleFolder() + "other.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(Install(data), nullptr);
    EXPECT_EQ(_InitResTranslation(data), 1);
    EXPECT_EQ(_DeInitResTranslation(data), 1);
    FreeLibrary(data);
}

TEST_F(ImportTableTest, ASlotThatCannotBeWrittenAnswersNull) {
    // A read-only view of a file's memory takes no write access.
    HANDLE section =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0x2000, nullptr);
    auto writable = static_cast<char*>(MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, 0));
    image.AddDescriptor(0, 0);
    image.Slot(0) = real;
    memcpy(writable, image.Base(), 0x2000);
    void* view = MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0);
    EXPECT_EQ(Install(view), nullptr);
    EXPECT_EQ(*reinterpret_cast<void**>(writable + FakeImage::kSlots), real);
    UnmapViewOfFile(view);
    UnmapViewOfFile(writable);
    CloseHandle(section);
}

TEST_F(ImportTableTest, AFunctionImportedByItsOrdinalIsFound) {
    CallerModule importer("ordinal_importer.dll");
    auto call = importer.Find<int()>("CallByOrdinal");
    EXPECT_EQ(call(), 7);
    auto replacement = +[]() { return 8; };
    void* expected = Real("hook_target.dll", "NumberedFunction");
    EXPECT_EQ(HookProc_Install(importer, "hook_target.dll", "NumberedFunction",
                               reinterpret_cast<void*>(replacement)),
              expected);
    EXPECT_EQ(call(), 8);
}

TEST_F(ImportTableTest, AFunctionReachedThroughAForwarderAndThroughTwoDescriptorsIsFoundInBoth) {
    CallerModule importer("forward_importer.dll");
    auto direct = importer.Find<decltype(LoadStringA)>("CallDirect");
    auto forwarded = importer.Find<decltype(LoadStringA)>("CallForwarded");
    CallerModule caller;
    char buffer[16];
    EXPECT_EQ(direct(caller, 1, buffer, 16), 4);
    EXPECT_EQ(forwarded(caller, 1, buffer, 16), 4);
    EXPECT_EQ(Install(importer), real);
    EXPECT_EQ(direct(caller, 1, buffer, 16), 4711);
    EXPECT_EQ(forwarded(caller, 1, buffer, 16), 4711);
}

TEST_F(ImportTableTest, TheHandlesListIsNullWhateverIsSet) {
    int list;
    EXPECT_EQ(__GetHandlesList(), nullptr);
    __SetHandlesList(&list);
    EXPECT_EQ(__GetHandlesList(), nullptr);
}
