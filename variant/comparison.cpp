#include "variant/value_block.h"

namespace qx {

namespace {

constexpr double kTolerance = 0.001;

bool Near(double a, double b) {
    return !(a - kTolerance > b || b > a + kTolerance);
}

// A NaN is neither less nor greater, so it equals everything.
template <class T>
bool NeitherLessNorGreater(T a, T b) {
    return !(a < b || a > b);
}

bool IsEmpty(const tagRECT& r) {
    return !(r.left < r.right && r.top < r.bottom);
}

// Unlike a tagRECT, one of zero width is not empty.
bool IsEmpty(const tagRRECT& r) {
    return r.left > r.right || r.top > r.bottom;
}

bool Same(const tagRECT& a, const tagRECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

bool Same(const tagRRECT& a, const tagRRECT& b) {
    return Near(a.left, b.left) && Near(a.top, b.top) && Near(a.right, b.right) &&
           Near(a.bottom, b.bottom);
}

template <class Rect>
bool SameOrBothEmpty(const Rect& a, const Rect& b) {
    return Same(a, b) || (IsEmpty(a) && IsEmpty(b));
}

const char* TextOrEmpty(const char* text) {
    return text ? text : "";
}

}  // namespace

}  // namespace qx

bool CQXVariant::operator==(const tagQXVARIANT* other) const {
    if (this == other) return true;
    if (type != other->type) return false;
    const tagQXVALUE& a = value;
    const tagQXVALUE& b = other->value;
    switch (type) {
        case QXVT_EMPTY:
            return true;
        case QXVT_UI1:
            return a.ui1Val == b.ui1Val;
        case QXVT_UI2:
            return a.ui2Val == b.ui2Val;
        case QXVT_BOOL:  // the stored numbers, not their truth
        case QXVT_ULONG:
        case QXVT_INT:
        case QXVT_UINT:
        case QXVT_LONG:
            return a.uintVal == b.uintVal;
        case QXVT_DOUBLE:
            return qx::NeitherLessNorGreater(a.doubleVal, b.doubleVal);
        case QXVT_FLOAT:
            return qx::NeitherLessNorGreater(a.floatVal, b.floatVal);
        case QXVT_STRING:
            return strcmp(qx::TextOrEmpty(a.string), qx::TextOrEmpty(b.string)) == 0;
        case QXVT_SIZE:
            return a.size.cx == b.size.cx && a.size.cy == b.size.cy;
        case QXVT_RSIZE:
            return qx::Near(a.rsize.cx, b.rsize.cx) && qx::Near(a.rsize.cy, b.rsize.cy);
        case QXVT_POINT:
            return a.point.x == b.point.x && a.point.y == b.point.y;
        case QXVT_RPOINT:
            return qx::Near(a.rpoint.x, b.rpoint.x) && qx::Near(a.rpoint.y, b.rpoint.y);
        case QXVT_RECT:
            return qx::SameOrBothEmpty(a.rect, b.rect);
        case QXVT_RRECT:
            return qx::SameOrBothEmpty(a.rrect, b.rrect);
        case QXVT_BLOB:
            return qx::SameBytes(a.blob, b.blob);
        case QXVT_UNKNOWN:
            return a.unknown == b.unknown;
    }
    return false;
}
