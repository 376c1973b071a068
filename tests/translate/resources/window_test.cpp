#include "translate/dictionary/dictionary_fixture.h"

namespace {

class Window {
public:
    Window(const char* className, const char* text, DWORD style, HWND parent = nullptr)
        : m_window(CreateWindowExA(0, className, text, style, 0, 0, 100, 30, parent, nullptr,
                                   nullptr, nullptr)) {}
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { DestroyWindow(m_window); }
    operator HWND() const { return m_window; }

    std::string Text() const {
        char text[4096] = "";
        GetWindowTextA(m_window, text, sizeof text);
        return text;
    }
    HFONT Font() const { return reinterpret_cast<HFONT>(SendMessageA(m_window, WM_GETFONT, 0, 0)); }

private:
    HWND m_window;
};

}  // namespace

// All windows stay invisible.
class WindowTest : public GlobalDictionary {
protected:
    WindowTest() {
        Enter(g_Wld, "Open", "Auf");
        Enter(g_Wld, "Name", "Bezeichnung");
    }

    Window frame{"STATIC", "Open", WS_OVERLAPPED};
};

TEST_F(WindowTest, WindowTextIsTranslated) {
    ASSERT_NE(nullptr, static_cast<HWND>(frame));
    EXPECT_EQ(1, g_Wld.Translate(frame));
    EXPECT_EQ("Auf", frame.Text());
}

TEST_F(WindowTest, StaticsAndButtonsAreTranslatedAndOthersKeepTheirText) {
    Window label("STATIC", "Name", WS_CHILD, frame);
    Window button("BUTTON", "Open", WS_CHILD, frame);
    Window mixed("Button", "Open", WS_CHILD, frame);
    Window edit("EDIT", "Open", WS_CHILD, frame);
    g_Wld.Translate(frame);
    EXPECT_EQ("Bezeichnung", label.Text());
    EXPECT_EQ("Auf", button.Text());
    EXPECT_EQ("Auf", mixed.Text());
    EXPECT_EQ("Open", edit.Text());
}

TEST_F(WindowTest, EveryChildGetsTheDialogFontAndTheWindowItselfKeepsIts) {
    Window label("STATIC", "Unknown", WS_CHILD, frame);
    Window edit("EDIT", "", WS_CHILD, frame);
    HFONT before = frame.Font();
    g_Wld.Translate(frame);
    EXPECT_EQ(g_Wld.m_hFont, label.Font());
    EXPECT_EQ(g_Wld.m_hFont, edit.Font());
    EXPECT_EQ(before, frame.Font());
}

TEST_F(WindowTest, GrandchildrenAreReachedToo) {
    Window group("STATIC", "Name", WS_CHILD, frame);
    Window button("BUTTON", "Open", WS_CHILD, group);
    g_Wld.Translate(frame);
    EXPECT_EQ("Auf", button.Text());
    EXPECT_EQ(g_Wld.m_hFont, button.Font());
}

TEST_F(WindowTest, EmptyDictionaryChangesNeitherTextNorFont) {
    Window label("STATIC", "Name", WS_CHILD, frame);
    CWld d;
    EXPECT_EQ(1, d.Translate(frame));
    EXPECT_EQ("Open", frame.Text());
    EXPECT_EQ("Name", label.Text());
    EXPECT_EQ(nullptr, label.Font());
}

TEST_F(WindowTest, AnotherDictionaryTranslatesTheWindowAndTheProcesssItsChildren) {
    Window button("BUTTON", "Open", WS_CHILD, frame);
    CWld d;
    Enter(d, "Open", "other");
    d.Translate(frame);
    EXPECT_EQ("other", frame.Text());
    EXPECT_EQ("Auf", button.Text());
    EXPECT_EQ(d.m_hFont, button.Font());
}

TEST_F(WindowTest, TextsAreCutTo1023Bytes) {
    std::string target(3000, 't'), source(2000, 's');
    Enter(g_Wld, "Open", target.c_str());
    Window button("BUTTON", source.c_str(), WS_CHILD, frame);
    g_Wld.Translate(frame);
    EXPECT_EQ(target.substr(0, 1023), frame.Text());
    EXPECT_EQ(source.substr(0, 1023), button.Text());
}

namespace {

// What a child of a class of the test's own was sent.
struct Received {
    int fonts = 0, texts = 0;
    WPARAM font = 0;
    LPARAM redraw = 0;
};
Received g_received;

LRESULT CALLBACK Record(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message == WM_SETFONT) ++g_received.fonts, g_received.font = w, g_received.redraw = l;
    if (message == WM_SETTEXT) ++g_received.texts;
    return DefWindowProcA(window, message, w, l);
}

class RecordingClass {
public:
    explicit RecordingClass(const char* name) : m_name(name) {
        WNDCLASSA description = {};
        description.lpfnWndProc = Record;
        description.hInstance = GetModuleHandleA(nullptr);
        description.lpszClassName = name;
        RegisterClassA(&description);
        g_received = {};
    }
    RecordingClass(const RecordingClass&) = delete;
    RecordingClass& operator=(const RecordingClass&) = delete;
    ~RecordingClass() { UnregisterClassA(m_name, GetModuleHandleA(nullptr)); }

private:
    const char* m_name;
};

}  // namespace

TEST_F(WindowTest, ChildrenOfAnyClassAreToldTheFontAndToDrawAnew) {
    RecordingClass recorder("a class with a name of more than twenty characters");
    Window child("a class with a name of more than twenty characters", "Open", WS_CHILD, frame);
    g_Wld.Translate(frame);
    EXPECT_EQ(1, g_received.fonts);
    EXPECT_EQ(reinterpret_cast<WPARAM>(g_Wld.m_hFont), g_received.font);
    EXPECT_EQ(1, g_received.redraw);
    EXPECT_EQ(0, g_received.texts);
    EXPECT_EQ("Open", child.Text());
}

TEST_F(WindowTest, ClassThatOnlyBeginsLikeAStaticKeepsItsText) {
    RecordingClass recorder("STATIC2");
    Window child("STATIC2", "Open", WS_CHILD, frame);
    g_Wld.Translate(frame);
    EXPECT_EQ("Open", child.Text());
    EXPECT_EQ(1, g_received.fonts);
}

TEST_F(WindowTest, TextIsSetAnewAlsoWithoutATranslation) {
    RecordingClass recorder("recording frame");
    Window top("recording frame", "Unknown", WS_OVERLAPPED);
    g_received = {};
    g_Wld.Translate(top);
    EXPECT_EQ(1, g_received.texts);
    EXPECT_EQ(0, g_received.fonts);
    EXPECT_EQ("Unknown", top.Text());
}

TEST_F(WindowTest, NullWindowIsNothingToDo) {
    EXPECT_EQ(1, g_Wld.Translate(static_cast<HWND>(nullptr)));
}
