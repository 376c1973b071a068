// Asks the system for its texts in the ways that programs do, and prints what it gets, a line each.
// With the word "box" it shows a message box in place of that.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <iterator>

namespace {

void Pointer(UINT id) {
    const wchar_t* text = nullptr;
    int length = LoadStringW(nullptr, id, reinterpret_cast<wchar_t*>(&text), 0);
    printf("pointer %u: %d %.*ls\n", id, length, length, text ? text : L"");
}

void Buffer(const char* name, int size) {
    wchar_t text[100];
    wmemset(text, L'#', std::size(text));
    int length = LoadStringW(nullptr, 1, text, size);
    printf("%s: %d %ls\n", name, length, text);
}

void NarrowBuffer(int size) {
    char text[100];
    memset(text, '#', sizeof text);
    int length = LoadStringA(nullptr, 1, text, size);
    printf("narrow, cut: %d %s\n", length, text);
}

void LoadedMenu() {
    HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(10), MAKEINTRESOURCEW(4));
    void* data = LockResource(LoadResource(nullptr, found));
    HMENU menu = data ? LoadMenuIndirectW(data) : nullptr;
    wchar_t text[100] = L"";
    GetMenuStringW(menu, 0, text, 100, MF_BYPOSITION);
    printf("loaded menu: %ls\n", text);
    DestroyMenu(menu);
}

void ByName() {
    using Load = int(WINAPI*)(HINSTANCE, UINT, char*, int);
    auto load = reinterpret_cast<Load>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("user32.dll"), "LoadStringA")));
    char text[100] = "";
    int length = load(nullptr, 1, text, 100);
    printf("by name: %d %s\n", length, text);
}

}  // namespace

int main(int count, char** words) {
    if (count > 1 && !strcmp(words[1], "box")) {
        MessageBoxW(nullptr, L"Open", L"Open", MB_OK);
        return 0;
    }
    Pointer(1);
    Pointer(2);
    Buffer("whole", 100);
    Buffer("cut", 3);
    NarrowBuffer(3);
    LoadedMenu();
    ByName();
    printf("freed nothing: %d\n", FreeResource(nullptr));
    return 7;
}
