#include "variant/variant_description.h"

#include <cstdarg>
#include <cstdio>

namespace {

std::string Print(const char* format, ...) {
    char text[400];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

std::string OfBlob(const tagQXBLOB& blob) {
    if (!blob.data) return Print("BLOB %lu null", blob.size);
    return Print("BLOB %lu ", blob.size) +
           std::string(static_cast<const char*>(blob.data), blob.size);
}

}  // namespace

std::string Describe(const tagQXVARIANT& v) {
    const tagQXVALUE& x = v.value;
    switch (v.type) {
        case 0:
            return "EMPTY";
        case 1:
            return Print("BOOL %d", x.boolVal);
        case 2:
            return Print("UI1 %u", x.ui1Val);
        case 3:
            return Print("UI2 %u", x.ui2Val);
        case 4:
            return Print("ULONG %lu", x.ulongVal);
        case 5:
            return Print("INT %d", x.intVal);
        case 6:
            return Print("UINT %u", x.uintVal);
        case 7:
            return Print("LONG %ld", x.longVal);
        case 8:
            return Print("DOUBLE %.10g", x.doubleVal);
        case 9:
            return Print("FLOAT %.10g", static_cast<double>(x.floatVal));
        case 10:
            return x.string ? std::string("TEXT ") + x.string : "TEXT null";
        case 11:
            return Print("SIZE %ld,%ld", x.size.cx, x.size.cy);
        case 12:
            return Print("RSIZE %.10g,%.10g", x.rsize.cx, x.rsize.cy);
        case 13:
            return Print("POINT %ld,%ld", x.point.x, x.point.y);
        case 14:
            return Print("RPOINT %.10g,%.10g", x.rpoint.x, x.rpoint.y);
        case 15:
            return Print("RECT %ld,%ld,%ld,%ld", x.rect.left, x.rect.top, x.rect.right,
                         x.rect.bottom);
        case 16:
            return Print("RRECT %.10g,%.10g,%.10g,%.10g", x.rrect.left, x.rrect.top, x.rrect.right,
                         x.rrect.bottom);
        case 17:
            return OfBlob(x.blob);
        case 18:
            return x.unknown ? "OBJECT" : "OBJECT null";
        case QXVT_UNKNOWN_REF:
            return x.unknown ? "BORROWED" : "BORROWED null";
    }
    return Print("CODE %u", v.type);
}
