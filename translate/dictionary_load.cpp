#include "translate/dictionary_file.h"

#include <qxcore/exception.h>

int CWld::Init(const char* path) {
    return m_bInit ? 1 : Add(path);
}

int CWld::Add(const char* path) {
    try {
        ReadWldFile(*this, path);
    } catch (CXFileException&) {
        return 0;
    }
    m_bInit = 1;
    return 1;
}
