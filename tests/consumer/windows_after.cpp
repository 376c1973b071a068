// <windows.h> after ours.
#include <qxcore.h>
#include <windows.h>

int IncludesOursFirst() {
    return qx_typeid<IQXUnknown>() == qx_typeid<IQXUnknown>();
}
