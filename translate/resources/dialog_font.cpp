#include "strings/narrow_text.h"
#include "strings/text_buffer.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int kSmallestSize = 8;
constexpr int kLargestSize = 16;
constexpr int kPointsPerInch = 72;

class DesktopDC {
public:
    DesktopDC() : dc(GetDC(GetDesktopWindow())) {}
    ~DesktopDC() { ReleaseDC(GetDesktopWindow(), dc); }
    DesktopDC(const DesktopDC&) = delete;
    DesktopDC& operator=(const DesktopDC&) = delete;
    operator HDC() const { return dc; }

private:
    HDC dc;
};

struct FontSearch {
    int script;
    bool found;
    char name[sizeof CWld::m_szFontName];
};

// Ends the enumeration at the first font whose full name holds the wanted name and that has the
// wanted script.
int CALLBACK IsFontWanted(const LOGFONTA* font, const TEXTMETRICA*, DWORD, LPARAM state) {
    auto search = reinterpret_cast<FontSearch*>(state);
    auto full = reinterpret_cast<const ENUMLOGFONTA*>(font);
    auto fullName = reinterpret_cast<const char*>(full->elfFullName);
    if (!NarrowText::Find(fullName, search->name) || font->lfCharSet != search->script) return 1;
    search->found = true;
    CopyWhole(search->name, sizeof search->name, font->lfFaceName);
    return 0;
}

// The script to use. A family's name is refined to the face that has the script, if there is one.
int ValidateFontScript(char* name, int script) {
    constexpr int kAnyScript = DEFAULT_CHARSET;
    if ((GetVersion() & 0x0F) < 4) return kAnyScript;
    if (script == 0) return script;
    FontSearch search = {script, false, ""};
    CopyWhole(search.name, sizeof search.name, name);
    DesktopDC screen;
    EnumFontFamiliesA(screen, name, IsFontWanted, reinterpret_cast<LPARAM>(&search));
    if (search.found) CopyWhole(name, sizeof CWld::m_szFontName, search.name);
    return script;
}

}  // namespace

void CWld::SetDialogFont(int script, int size, const char* name) {
    if (m_hFont) DeleteObject(m_hFont);  // harmless on a stock font
    m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    m_bDialogFont = 0;
    if (!name || !*name) return;
    CopyWhole(m_szFontName, sizeof m_szFontName, name);
    m_nFontScript = ValidateFontScript(m_szFontName, script);
    m_nFontSize = std::clamp(size, kSmallestSize, kLargestSize);
    DesktopDC screen;
    int height = -(GetDeviceCaps(screen, LOGPIXELSY) * m_nFontSize) / kPointsPerInch;
    HFONT font = CreateFontA(height, 0, 0, 0, FW_NORMAL, 0, 0, 0, static_cast<DWORD>(m_nFontScript),
                             0, 0, 0, 0, m_szFontName);
    if (!font) return;
    m_hFont = font;
    m_bDialogFont = 1;
}

// Templates carry the font; a window that stands keeps its own.
void Supp_SetDialogFont(HWND) {}

void Supp_SetDialogPos(HWND, HWND, unsigned int) {}
