// What stays behind after ten thousand dialogs: one template for each modeless one, and nothing
// else.
#include "support/allocation_failure.h"
#include "support/import_slot.h"
#include "translate/interception/caller.h"
#include "translate/interception/handle_room.h"

#include <atomic>

namespace {

constexpr int kDialogs = 3400;       // of each of three kinds
constexpr size_t kOwnAffairs = 100;  // handles that the system takes or returns in the meantime

INT_PTR CALLBACK EndAtOnce(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) EndDialog(dialog, 1);
    return FALSE;
}

// Counts the runtime's blocks that the library takes and gives back.
std::atomic<long> g_taken = 0;
void* (*g_malloc)(size_t);
void (*g_free)(void*);

void* CountingMalloc(size_t size) {
    ++g_taken;
    return g_malloc(size);
}

void CountingFree(void* block) {
    if (block) --g_taken;
    g_free(block);
}

class CountedRuntimeBlocks {
public:
    CountedRuntimeBlocks() {
        HMODULE library = GetModuleHandleA("qxcore.dll");
        mallocSlot = FindImportSlot(library, "malloc");
        freeSlot = FindImportSlot(library, "free");
        g_malloc = reinterpret_cast<void* (*)(size_t)>(*mallocSlot);
        g_free = reinterpret_cast<void (*)(void*)>(*freeSlot);
        SetImportSlot(mallocSlot, reinterpret_cast<void*>(&CountingMalloc));
        SetImportSlot(freeSlot, reinterpret_cast<void*>(&CountingFree));
        g_taken = 0;
    }
    ~CountedRuntimeBlocks() {
        SetImportSlot(mallocSlot, reinterpret_cast<void*>(g_malloc));
        SetImportSlot(freeSlot, reinterpret_cast<void*>(g_free));
    }

private:
    void** mallocSlot;
    void** freeSlot;
};

class DialogLeakTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        g_Wld.m_bDialogFont = 1;
        _InitResTranslation(caller);
        Teach("Open", "Auf");
        parent =
            CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        dialog = static_cast<const DLGTEMPLATE*>(
            LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(240), RT_DIALOG)));
    }
    void TearDown() override {
        DestroyWindow(parent);
        DictionaryTest::TearDown();
    }
    // One of each kind, for what the system and the library make once.
    void WarmUp() {
        CALL(caller, DialogBoxIndirectParamA)(caller, dialog, parent, EndAtOnce, 0);
        DestroyWindow(
            CALL(caller, CreateDialogParamA)(caller, MAKEINTRESOURCEA(240), parent, EndAtOnce, 0));
    }
    // Runs `act` kDialogs times and answers how many blocks of the runtime are left over.
    template <class Act>
    long LeftOver(Act act) {
        WarmUp();
        size_t gdi = GdiRoom(), user = UserRoom();
        long blocks = LiveBlocks();
        CountedRuntimeBlocks counted;
        for (int i = 0; i < kDialogs; ++i) act();
        EXPECT_EQ(LiveBlocks(), blocks);
        EXPECT_GT(GdiRoom() + kOwnAffairs, gdi);
        EXPECT_GT(UserRoom() + kOwnAffairs, user);
        return g_taken;
    }
    CallerModule caller;
    HWND parent = nullptr;
    const DLGTEMPLATE* dialog = nullptr;
};

}  // namespace

TEST_F(DialogLeakTest, ModalDialogsLeaveNothing) {
    auto run = CALL(caller, DialogBoxIndirectParamA);
    EXPECT_EQ(LeftOver([&] { run(caller, dialog, parent, EndAtOnce, 0); }), 0);
}

TEST_F(DialogLeakTest, ModelessDialogsLeaveTheirTemplates) {
    auto create = CALL(caller, CreateDialogIndirectParamA);
    EXPECT_EQ(LeftOver([&] { DestroyWindow(create(caller, dialog, parent, EndAtOnce, 0)); }),
              kDialogs);
}

TEST_F(DialogLeakTest, DialogsFromResourcesShareOneTemplate) {
    auto create = CALL(caller, CreateDialogParamA);
    EXPECT_EQ(LeftOver([&] {
                  DestroyWindow(create(caller, MAKEINTRESOURCEA(240), parent, EndAtOnce, 0));
              }),
              0);
}
