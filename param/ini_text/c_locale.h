// Numbers with a decimal point, whatever the process's locale.
#ifndef QXCORE_PARAM_INI_TEXT_C_LOCALE_H
#define QXCORE_PARAM_INI_TEXT_C_LOCALE_H

#include <qxcore/string.h>

#include <clocale>
#include <cstring>

namespace qx {

// Puts the process into the "C" locale for a scope. A process that is there already pays one
// comparison.
class CLocale {
public:
    CLocale() {
        const char* present = setlocale(LC_ALL, nullptr);
        if (strcmp(present, "C") == 0) return;
        m_saved = present;
        setlocale(LC_ALL, "C");
    }
    ~CLocale() {
        if (*m_saved) setlocale(LC_ALL, m_saved);
    }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

private:
    CXString m_saved;  // empty where nothing was switched
};

}  // namespace qx

#endif
