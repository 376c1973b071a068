// The values that are copied as they stand, and how many bytes of the value area each fills: in a
// variable, in a stream and in the registry alike.
#ifndef QXCORE_VARIANT_PLAIN_WIDTH_H
#define QXCORE_VARIANT_PLAIN_WIDTH_H

#include <qxcore/variant.h>

namespace qx {

struct ValueWidth {
    unsigned short type;
    int bytes;
};

// A row for each type code, in the order of the codes. The widths are part of file formats.
inline constexpr ValueWidth kPlainWidths[] = {
    {QXVT_EMPTY, 0},
    {QXVT_BOOL, sizeof(tagQXVALUE::boolVal)},
    {QXVT_UI1, sizeof(tagQXVALUE::ui1Val)},
    {QXVT_UI2, sizeof(tagQXVALUE::ui2Val)},
    {QXVT_ULONG, sizeof(tagQXVALUE::ulongVal)},
    {QXVT_INT, sizeof(tagQXVALUE::intVal)},
    {QXVT_UINT, sizeof(tagQXVALUE::uintVal)},
    {QXVT_LONG, sizeof(tagQXVALUE::longVal)},
    {QXVT_DOUBLE, sizeof(tagQXVALUE::doubleVal)},
    {QXVT_FLOAT, sizeof(tagQXVALUE::floatVal)},
    {QXVT_STRING, 0},  // text, bytes and objects are owned: their pointers mean nothing elsewhere
    {QXVT_SIZE, sizeof(tagQXVALUE::size)},
    {QXVT_RSIZE, sizeof(tagQXVALUE::rsize)},
    {QXVT_POINT, sizeof(tagQXVALUE::point)},
    {QXVT_RPOINT, sizeof(tagQXVALUE::rpoint)},
    {QXVT_RECT, sizeof(tagQXVALUE::rect)},
    {QXVT_RRECT, sizeof(tagQXVALUE::rrect)},
    {QXVT_BLOB, 0},
    {QXVT_UNKNOWN, 0},
};

// The bytes of a plain value; 0 for a type that is none.
constexpr int PlainWidth(unsigned type) {
    return type <= QXVT_UNKNOWN ? kPlainWidths[type].bytes : 0;
}

constexpr bool EachWidthStandsAtItsCode() {
    unsigned code = 0;
    for (const ValueWidth& width : kPlainWidths) {
        if (width.type != code++) return false;
    }
    return code == QXVT_UNKNOWN + 1u;
}
static_assert(EachWidthStandsAtItsCode());
static_assert(PlainWidth(QXVT_LONG) == 4 && PlainWidth(QXVT_RRECT) == sizeof(tagQXVALUE));

}  // namespace qx

#endif
