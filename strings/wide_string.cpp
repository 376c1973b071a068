#include <qxcore/wide_string.h>

#include "strings/string_access.h"
#include "strings/string_buffer.h"
#include "strings/string_change.h"
#include "strings/string_format.h"
#include "strings/string_path.h"

constinit tagXSTRINGEMPTY<wchar_t> __xstringw_empty = {{-1, 0, 0}, {}};

template class CTString<CXStringW, wchar_t>;

static_assert(sizeof(CXStringW) == 2 * sizeof(void*));

CXStringW& CXStringW::operator=(const wchar_t* s) {
    s = qx::TextOrEmpty(s);
    AssignCopy(s, qx::WideText::Length(s));
    return *this;
}

// Twice the bytes is more than any code page needs; the rest stays zero.
void CXStringW::Convert(const char* s) {
    if (!s) return Release();
    size_t size = qx::NarrowText::Length(s) * 2 + 2;
    AllocBuffer(size);
    MultiByteToWideChar(CP_ACP, 0, s, -1, data, static_cast<int>(size));
}
