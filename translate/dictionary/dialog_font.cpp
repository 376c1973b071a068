// The dialog font of a dictionary: the one it names, and the system's where it names none.
#include "strings/characters.h"
#include "translate/dictionary/dictionary.h"

#include <algorithm>
#include <cstdlib>

namespace qx {

namespace {

constexpr int kPointsPerInch = 72;
constexpr int kSmallestSize = 8;
constexpr int kLargestSize = 16;

class DesktopDC {
public:
    DesktopDC() : m_dc(GetDC(GetDesktopWindow())) {}
    ~DesktopDC() { ReleaseDC(GetDesktopWindow(), m_dc); }
    DesktopDC(const DesktopDC&) = delete;
    DesktopDC& operator=(const DesktopDC&) = delete;

    operator HDC() const { return m_dc; }
    int DotsPerInch() const { return GetDeviceCaps(m_dc, LOGPIXELSY); }

private:
    HDC m_dc;
};

void CopyFace(char (&to)[sizeof CWld::m_szFontName], const char* face) {
    Characters::OfRuntime().CopyWhole(to, sizeof to, face);
}

HFONT MakeFont(const char* face, int points, int script) {
    int height = -(DesktopDC().DotsPerInch() * points) / kPointsPerInch;
    return CreateFontA(height, 0, 0, 0, FW_NORMAL, 0, 0, 0, static_cast<DWORD>(script), 0, 0, 0, 0,
                       face);
}

void NameFont(CWld& dictionary, const char* face, int points) {
    CopyFace(dictionary.m_szFontName, face);
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
                 MulDiv(height, kPointsPerInch, DesktopDC().DotsPerInch()));
    } else {
        NameFont(dictionary, "System", 10);
    }
}

void MakeShellDialogFont(CWld& dictionary) {
    NameFont(dictionary, "MS Shell Dlg", 8);
    dictionary.m_hFont = MakeFont(dictionary.m_szFontName, dictionary.m_nFontSize, 0);
}

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
    if (!Characters::OfRuntime().FindText(fullName, search->name) ||
        font->lfCharSet != search->script)
        return 1;
    search->found = true;
    CopyFace(search->name, font->lfFaceName);
    return 0;
}

// The script to use. A family's name is refined to the face that has the script, if there is one.
int ValidateFontScript(char (&name)[sizeof CWld::m_szFontName], int script) {
    constexpr int kAnyScript = DEFAULT_CHARSET;
    if ((GetVersion() & 0x0F) < 4) return kAnyScript;
    if (script == 0) return script;
    FontSearch search = {script, false, ""};
    CopyFace(search.name, name);
    EnumFontFamiliesA(DesktopDC(), name, IsFontWanted, reinterpret_cast<LPARAM>(&search));
    if (search.found) CopyFace(name, search.name);
    return script;
}

}  // namespace

void TakeDefaultFont(CWld& dictionary) {
    if (GetSystemMetrics(SM_DBCSENABLED)) {
        TakeInterfaceFont(dictionary);
    } else {
        MakeShellDialogFont(dictionary);
    }
}

}  // namespace qx

void CWld::SetDialogFont(int script, int size, const char* name) {
    if (m_hFont) DeleteObject(m_hFont);  // harmless on a stock font
    m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    m_bDialogFont = 0;
    if (!name || !*name) return;
    qx::CopyFace(m_szFontName, name);
    m_nFontScript = qx::ValidateFontScript(m_szFontName, script);
    m_nFontSize = std::clamp(size, qx::kSmallestSize, qx::kLargestSize);
    HFONT font = qx::MakeFont(m_szFontName, m_nFontSize, m_nFontScript);
    if (!font) return;
    m_hFont = font;
    m_bDialogFont = 1;
}
