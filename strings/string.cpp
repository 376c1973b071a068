#include <qxcore/string.h>

#include "strings/string_access.h"
#include "strings/string_buffer.h"
#include "strings/string_change.h"
#include "strings/string_format.h"
#include "strings/string_path.h"

// No capacity, so that every writer leaves it.
constinit tagXSTRINGEMPTY<char> __xstring_empty = {{-1, 0, 0}, {}};

template class CTString<CXString, char>;

static_assert(sizeof(CXString) == 2 * sizeof(void*));

CXString& CXString::operator=(const char* s) {
    s = qx::TextOrEmpty(s);
    AssignCopy(s, qx::NarrowText::Length(s));
    return *this;
}

int CXString::Compare(const char* s) const {
    return qx::NarrowText::Compare(data, qx::TextOrEmpty(s));
}

void CXString::Convert(const wchar_t* s) {
    int size = s ? WideCharToMultiByte(CP_ACP, 0, s, -1, nullptr, 0, nullptr, nullptr) : 0;
    if (size == 0) return Release();
    AllocBuffer(size);
    WideCharToMultiByte(CP_ACP, 0, s, -1, data, size, nullptr, nullptr);
}
