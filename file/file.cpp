#include "file/scheme.h"

#include <qxcore/exception.h>

IXFile* Fio_Open(const char* path, int flags) {
    try {
        return SchemeOf(path).open(path, flags);
    } catch (CXMemException&) {
        return nullptr;
    }
}

IXOutFile* Fio_OpenOut(const char* path, int flags) {
    try {
        return SchemeOf(path).openOut(path, flags);
    } catch (CXMemException&) {
        return nullptr;
    }
}
