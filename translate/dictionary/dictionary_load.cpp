#include "translate/dictionary/dictionary_file.h"
#include "translate/dictionary/geometry_file.h"

#include <qxcore/exception.h>

namespace {

// The geometry beside a dictionary may be missing or unreadable.
void ReadGeometryBeside(CWld& dictionary, const char* path) {
    CXString geometry(path);
    geometry.ChangeFileExt("dlg");
    ReadDlgFile(dictionary, geometry);
}

}  // namespace

int CWld::Init(const char* path) {
    return m_bInit ? 1 : Add(path);
}

int CWld::Add(const char* path) {
    try {
        ReadWldFile(*this, path);
        ReadGeometryBeside(*this, path);
    } catch (CXFileException&) {
        return 0;
    }
    m_bInit = 1;
    return 1;
}
