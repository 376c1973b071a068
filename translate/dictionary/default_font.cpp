#include "translate/dictionary/default_font.h"

#include "strings/text_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// Of a window, or of the screen for null.
class WindowDC {
public:
    explicit WindowDC(HWND window) : m_window(window), m_dc(GetDC(window)) {}
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;
    ~WindowDC() { ReleaseDC(m_window, m_dc); }

    int DotsPerInch() const { return GetDeviceCaps(m_dc, LOGPIXELSY); }

private:
    HWND m_window;
    HDC m_dc;
};

constexpr int kPointsPerInch = 72;

void NameFont(CWld& dictionary, const char* face, int points) {
    CopyWhole(dictionary.m_szFontName, sizeof dictionary.m_szFontName, face);
    dictionary.m_nFontSize = points;
}

void TakeInterfaceFont(CWld& dictionary) {
    auto font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    if (!font) font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    dictionary.m_hFont = font;
    LOGFONTA description;
    if (GetObjectA(font, sizeof description, &description)) {
        int height = std::abs(description.lfHeight);
        NameFont(dictionary, description.lfFaceName,
                 MulDiv(height, kPointsPerInch, WindowDC(nullptr).DotsPerInch()));
    } else {
        NameFont(dictionary, "System", 10);
    }
}

void MakeShellDialogFont(CWld& dictionary) {
    constexpr int kPoints = 8;
    NameFont(dictionary, "MS Shell Dlg", kPoints);
    int height = -(WindowDC(GetDesktopWindow()).DotsPerInch() * kPoints) / kPointsPerInch;
    dictionary.m_hFont =
        CreateFontA(height, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, dictionary.m_szFontName);
}

}  // namespace

void TakeDefaultFont(CWld& dictionary) {
    if (GetSystemMetrics(SM_DBCSENABLED)) {
        TakeInterfaceFont(dictionary);
    } else {
        MakeShellDialogFont(dictionary);
    }
}
