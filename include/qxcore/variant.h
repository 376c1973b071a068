// The one typed value: a record of fixed size that may own heap memory, and its class.
//
//     CQXVariant v("12 apples");
//     if (v.ChangeType(QXVT_INT)) Use(static_cast<int>(v));  // 12; 0 says that there is no number
//     v = 3.5;                                               // the text goes, the type is a double
//
// Ownership: a type 10 owns its text, a type 17 its bytes, both on the default heap; a type 18 owns
// one reference. Nothing else owns anything. A raw record starts with QXVariantInit and ends with
// QXVariantClear; a CQXVariant does both by itself.
//
// Whatever replaces a value has the new one in its place before the old one goes. So an object that
// goes may look into the variant, and a source may lie in what the old value owns.
//
// Errors: conversions and bindings answer 1 or 0; memory running out throws CXMemException. What
// the release of an object raises reaches the caller with the variant whole; a destructor drops it.
//
// Threading: a variant belongs to one thread at a time.
#ifndef QXCORE_VARIANT_H
#define QXCORE_VARIANT_H

#include <qxcore/blob.h>
#include <qxcore/platform.h>
#include <qxcore/unknown.h>

#include <cstring>

class CXString;

// The real-valued twins of the platform's size, point and rectangle.
struct tagRSIZE {
    double cx, cy;
};
struct tagRPOINT {
    double x, y;
};
struct tagRRECT {
    double left, top, right, bottom;
};

// The type codes, which are part of file formats.
enum : unsigned short {
    QXVT_EMPTY = 0,
    QXVT_BOOL = 1,     // an int; the constructors make 0 or 1 of it
    QXVT_UI1 = 2,      // 8 bits without sign
    QXVT_UI2 = 3,      // 16 bits without sign
    QXVT_ULONG = 4,    // 32 bits without sign, `unsigned long`
    QXVT_INT = 5,      // 32 bits, `int`
    QXVT_UINT = 6,     // 32 bits without sign, `unsigned int`
    QXVT_LONG = 7,     // 32 bits, `long`
    QXVT_DOUBLE = 8,   // 64 bits
    QXVT_FLOAT = 9,    // 32 bits
    QXVT_STRING = 10,  // narrow text with its NUL, owned
    QXVT_SIZE = 11,    // the platform's size, point and rectangle, and their real-valued twins
    QXVT_RSIZE = 12,
    QXVT_POINT = 13,
    QXVT_RPOINT = 14,
    QXVT_RECT = 15,
    QXVT_RRECT = 16,
    QXVT_BLOB = 17,            // counted bytes, owned
    QXVT_UNKNOWN = 18,         // an object, with a reference
    QXVT_UNKNOWN_REF = 0x4000  // a borrowed object; only QXVariantChangeType makes one
};

// The value forms. Only the one of the current code is valid.
union tagQXVALUE {
    int boolVal;
    unsigned char ui1Val;
    unsigned short ui2Val;
    unsigned long ulongVal;
    int intVal;
    unsigned int uintVal;
    long longVal;
    double doubleVal;
    float floatVal;
    char* string;  // null in a variant made of a null text
    tagSIZE size;
    tagRSIZE rsize;
    tagPOINT point;
    tagRPOINT rpoint;
    tagRECT rect;
    tagRRECT rrect;  // the largest: 32 bytes
    tagQXBLOB blob;
    IQXUnknown* unknown;  // may be null
};

struct tagQXVARIANT {
    unsigned short type;  // QXVT_...
    tagQXVALUE value;
};

// Zeroes the whole record, so the type is 0. Never releases anything.
QXCORE_API void QXVariantInit(tagQXVARIANT* v);
// Releases what the record owns, then zeroes it.
QXCORE_API void QXVariantClear(tagQXVARIANT* v);
// Clears `dest`, then copies deeply; without memory for that `dest` stays empty. Copying a record
// onto itself empties it.
QXCORE_API void QXVariantCopy(tagQXVARIANT* dest, const tagQXVARIANT* src);
// 1 if the closed table of conversions has an answer, else 0. `dest` and `src` may be the same
// record: a failure then leaves it as it was. A failure into another record leaves that one empty.
QXCORE_API int QXVariantChangeType(tagQXVARIANT* dest, const tagQXVARIANT* src,
                                   unsigned short type);
// Stores the value area into the variable of the stated type; v's own code is not looked at. 0 for
// a type outside 1 to 18. A `char*` variable (10) is freed and gets a new copy, an `IQXUnknown*`
// variable (18) is released and gets a reference of its own, so both must be valid or null; a
// tagQXBLOB variable (17) borrows the variant's data.
QXCORE_API int QXVariantBindToValue(unsigned short type, void* value, const tagQXVARIANT* v);
// Clears v, gives it the stated type and loads the variable. 0 for a type outside 1 to 18: v keeps
// that code and a zero value. A text is copied, an object gets a reference; the data of a tagQXBLOB
// is handed over, and v frees it. A variable that lies in v itself is cleared with it, so v loads
// zeros.
QXCORE_API int QXVariantBindFromValue(unsigned short type, void* value, tagQXVARIANT* v);

// The record with constructors, assignment and casts. It adds no field.
class CQXVariant : public tagQXVARIANT {
public:
    // Type 0.
    CQXVariant();
    // A deep copy.
    CQXVariant(const tagQXVARIANT& source);
    CQXVariant(const tagQXVARIANT* source);
    CQXVariant(const CQXVariant& source);
    // A copy of the text. A null text gives type 10 with a null pointer.
    QXCORE_API CQXVariant(const char* text);
    QXCORE_API CQXVariant(const CXString& text);
    // A second argument of 1 makes a type 1 of the number's being non-zero; any other value leaves
    // the number's type.
    CQXVariant(unsigned char v, unsigned short as = 0);
    CQXVariant(unsigned short v, unsigned short as = 0);
    CQXVariant(unsigned long v, unsigned short as = 0);
    CQXVariant(int v, unsigned short as = 0);
    CQXVariant(unsigned int v, unsigned short as = 0);
    CQXVariant(long v, unsigned short as = 0);
    CQXVariant(double v);
    CQXVariant(float v);
    CQXVariant(const tagSIZE& v);
    CQXVariant(const tagRSIZE& v);
    CQXVariant(const tagPOINT& v);
    CQXVariant(const tagRPOINT& v);
    CQXVariant(const tagRECT& v);
    CQXVariant(const tagRRECT& v);
    // A copy of the bytes.
    QXCORE_API CQXVariant(const tagQXBLOB& blob);
    // Takes a reference. The pointer may be null.
    CQXVariant(IQXUnknown* object);
    // Clears, and drops what the release of an object raises.
    ~CQXVariant();

    // As QXVariantCopy: assigning a variant to itself empties it.
    CQXVariant& operator=(const tagQXVARIANT& source);
    CQXVariant& operator=(const CQXVariant& source);
    CQXVariant& operator=(const tagQXVARIANT* source);
    // As the constructors. A failure leaves the old value.
    QXCORE_API CQXVariant& operator=(const char* text);
    QXCORE_API CQXVariant& operator=(const CXString& text);
    QXCORE_API CQXVariant& operator=(IQXUnknown* object);
    CQXVariant& operator=(unsigned char v);
    CQXVariant& operator=(double v);
    CQXVariant& operator=(float v);
    CQXVariant& operator=(const tagSIZE& v);
    CQXVariant& operator=(const tagRSIZE& v);
    CQXVariant& operator=(const tagPOINT& v);
    CQXVariant& operator=(const tagRPOINT& v);
    CQXVariant& operator=(const tagRECT& v);
    CQXVariant& operator=(const tagRRECT& v);
    // These five, unlike `unsigned char`, keep a type 1 variant a type 1 and store 1 or 0.
    CQXVariant& operator=(unsigned short v);
    CQXVariant& operator=(unsigned long v);
    CQXVariant& operator=(int v);
    CQXVariant& operator=(unsigned int v);
    CQXVariant& operator=(long v);
    // Leaks the old block of a variant that is type 17 already: call Clear first.
    QXCORE_API CQXVariant& operator=(const tagQXBLOB& blob);

    // Releases what is owned; type 0 and a zero value afterwards.
    void Clear();
    // Takes the source's ownership and sets its type to 0; its other bytes stay. A variant attached
    // to itself is empty.
    void Attach(tagQXVARIANT& source);
    // Gives ownership to the caller; this becomes type 0.
    tagQXVARIANT Detach();
    // Exchanges the values; nothing is copied or released.
    friend void swap(CQXVariant& a, CQXVariant& b) noexcept;

    // A null source means this variant, which is left alone if it has the type already.
    int ChangeType(unsigned short newType, tagQXVARIANT* src = nullptr);
    int BindToValue(unsigned short valueType, void* variable);
    int BindFromValue(unsigned short valueType, void* variable);

    // Like types only: type 5 holding 3 does not equal type 7 holding 3. Points, sizes and
    // rectangles of reals match within 0.001, empty rectangles match each other, and a NaN matches
    // everything.
    QXCORE_API bool operator==(const tagQXVARIANT* other) const;
    bool operator==(const tagQXVARIANT& other) const { return *this == &other; }
    bool operator==(const CQXVariant& other) const {
        return *this == static_cast<const tagQXVARIANT*>(&other);
    }

    // The value area read as that form, with no test of the type and no conversion. Pointers stay
    // the variant's.
    operator unsigned char() const { return value.ui1Val; }
    operator unsigned short() const { return value.ui2Val; }
    operator int() const { return value.intVal; }
    operator unsigned int() const { return value.uintVal; }
    operator long() const { return value.longVal; }
    operator unsigned long() const { return value.ulongVal; }
    operator float() const { return value.floatVal; }
    operator double() const { return value.doubleVal; }
    operator char*() const { return value.string; }
    operator IQXUnknown*() const { return value.unknown; }
    operator tagSIZE() const { return value.size; }
    operator tagRSIZE() const { return value.rsize; }
    operator tagPOINT() const { return value.point; }
    operator tagRPOINT() const { return value.rpoint; }
    operator tagRECT() const { return value.rect; }
    operator tagRRECT() const { return value.rrect; }
    operator tagQXBLOB() const { return value.blob; }

private:
    static bool Owns(unsigned short type);
    void Zero();
    void SetRecord(const tagQXVARIANT& record);
    void InitCopy(const tagQXVARIANT& source);
    template <class T>
    void InitPlain(unsigned short newType, T v, T& form);
    template <class T>
    void InitNumber(unsigned short as, unsigned short newType, T v, T& form);
    template <class T>
    CQXVariant& SetPlain(unsigned short newType, T v, T& form);
    template <class T>
    CQXVariant& SetNumber(unsigned short newType, T v, T& form);
};

// ---- what a variant is made of -----------------------------------------------------------------

inline bool CQXVariant::Owns(unsigned short type) {
    return type == QXVT_STRING || type == QXVT_BLOB || type == QXVT_UNKNOWN;
}

inline void CQXVariant::Zero() {
    memset(static_cast<tagQXVARIANT*>(this), 0, sizeof(tagQXVARIANT));
}

inline void CQXVariant::SetRecord(const tagQXVARIANT& record) {
    static_cast<tagQXVARIANT&>(*this) = record;
}

inline void CQXVariant::InitCopy(const tagQXVARIANT& source) {
    if (Owns(source.type)) {
        Zero();
        QXVariantCopy(this, &source);
    } else {
        SetRecord(source);
    }
}

template <class T>
void CQXVariant::InitPlain(unsigned short newType, T v, T& form) {
    Zero();
    type = newType;
    form = v;
}

template <class T>
void CQXVariant::InitNumber(unsigned short as, unsigned short newType, T v, T& form) {
    if (as == QXVT_BOOL) {
        InitPlain(QXVT_BOOL, v ? 1 : 0, value.boolVal);
    } else {
        InitPlain(newType, v, form);
    }
}

template <class T>
CQXVariant& CQXVariant::SetPlain(unsigned short newType, T v, T& form) {
    if (Owns(type)) {
        CQXVariant old;  // goes when the new value is in place
        old.Attach(*this);
        InitPlain(newType, v, form);
        old.Clear();
    } else if (type != newType) {
        InitPlain(newType, v, form);
    } else {
        form = v;
    }
    return *this;
}

template <class T>
CQXVariant& CQXVariant::SetNumber(unsigned short newType, T v, T& form) {
    if (type != QXVT_BOOL) return SetPlain(newType, v, form);
    value.boolVal = v ? 1 : 0;
    return *this;
}

// ---- its life ----------------------------------------------------------------------------------

inline CQXVariant::CQXVariant() {
    Zero();
}
inline CQXVariant::CQXVariant(const tagQXVARIANT& source) {
    InitCopy(source);
}
inline CQXVariant::CQXVariant(const tagQXVARIANT* source) {
    InitCopy(*source);
}
inline CQXVariant::CQXVariant(const CQXVariant& source) {
    InitCopy(source);
}
inline CQXVariant::CQXVariant(unsigned char v, unsigned short as) {
    InitNumber(as, QXVT_UI1, v, value.ui1Val);
}
inline CQXVariant::CQXVariant(unsigned short v, unsigned short as) {
    InitNumber(as, QXVT_UI2, v, value.ui2Val);
}
inline CQXVariant::CQXVariant(unsigned long v, unsigned short as) {
    InitNumber(as, QXVT_ULONG, v, value.ulongVal);
}
inline CQXVariant::CQXVariant(int v, unsigned short as) {
    InitNumber(as, QXVT_INT, v, value.intVal);
}
inline CQXVariant::CQXVariant(unsigned int v, unsigned short as) {
    InitNumber(as, QXVT_UINT, v, value.uintVal);
}
inline CQXVariant::CQXVariant(long v, unsigned short as) {
    InitNumber(as, QXVT_LONG, v, value.longVal);
}
inline CQXVariant::CQXVariant(double v) {
    InitPlain(QXVT_DOUBLE, v, value.doubleVal);
}
inline CQXVariant::CQXVariant(float v) {
    InitPlain(QXVT_FLOAT, v, value.floatVal);
}
inline CQXVariant::CQXVariant(const tagSIZE& v) {
    InitPlain(QXVT_SIZE, v, value.size);
}
inline CQXVariant::CQXVariant(const tagRSIZE& v) {
    InitPlain(QXVT_RSIZE, v, value.rsize);
}
inline CQXVariant::CQXVariant(const tagPOINT& v) {
    InitPlain(QXVT_POINT, v, value.point);
}
inline CQXVariant::CQXVariant(const tagRPOINT& v) {
    InitPlain(QXVT_RPOINT, v, value.rpoint);
}
inline CQXVariant::CQXVariant(const tagRECT& v) {
    InitPlain(QXVT_RECT, v, value.rect);
}
inline CQXVariant::CQXVariant(const tagRRECT& v) {
    InitPlain(QXVT_RRECT, v, value.rrect);
}
inline CQXVariant::CQXVariant(IQXUnknown* object) {
    InitPlain(QXVT_UNKNOWN, object, value.unknown);
    if (object) object->AddRef();
}
inline CQXVariant::~CQXVariant() {
    if (!Owns(type)) return;
    try {
        QXVariantClear(this);
    } catch (...) {
    }
}

// ---- assignment --------------------------------------------------------------------------------

inline CQXVariant& CQXVariant::operator=(const tagQXVARIANT* source) {
    if (Owns(type) || Owns(source->type) || source == this) {
        QXVariantCopy(this, source);
    } else {
        SetRecord(*source);
    }
    return *this;
}
inline CQXVariant& CQXVariant::operator=(const tagQXVARIANT& source) {
    return *this = &source;
}
inline CQXVariant& CQXVariant::operator=(const CQXVariant& source) {
    return *this = static_cast<const tagQXVARIANT*>(&source);
}
inline CQXVariant& CQXVariant::operator=(unsigned char v) {
    return SetPlain(QXVT_UI1, v, value.ui1Val);
}
inline CQXVariant& CQXVariant::operator=(double v) {
    return SetPlain(QXVT_DOUBLE, v, value.doubleVal);
}
inline CQXVariant& CQXVariant::operator=(float v) {
    return SetPlain(QXVT_FLOAT, v, value.floatVal);
}
inline CQXVariant& CQXVariant::operator=(const tagSIZE& v) {
    return SetPlain(QXVT_SIZE, v, value.size);
}
inline CQXVariant& CQXVariant::operator=(const tagRSIZE& v) {
    return SetPlain(QXVT_RSIZE, v, value.rsize);
}
inline CQXVariant& CQXVariant::operator=(const tagPOINT& v) {
    return SetPlain(QXVT_POINT, v, value.point);
}
inline CQXVariant& CQXVariant::operator=(const tagRPOINT& v) {
    return SetPlain(QXVT_RPOINT, v, value.rpoint);
}
inline CQXVariant& CQXVariant::operator=(const tagRECT& v) {
    return SetPlain(QXVT_RECT, v, value.rect);
}
inline CQXVariant& CQXVariant::operator=(const tagRRECT& v) {
    return SetPlain(QXVT_RRECT, v, value.rrect);
}
inline CQXVariant& CQXVariant::operator=(unsigned short v) {
    return SetNumber(QXVT_UI2, v, value.ui2Val);
}
inline CQXVariant& CQXVariant::operator=(unsigned long v) {
    return SetNumber(QXVT_ULONG, v, value.ulongVal);
}
inline CQXVariant& CQXVariant::operator=(int v) {
    return SetNumber(QXVT_INT, v, value.intVal);
}
inline CQXVariant& CQXVariant::operator=(unsigned int v) {
    return SetNumber(QXVT_UINT, v, value.uintVal);
}
inline CQXVariant& CQXVariant::operator=(long v) {
    return SetNumber(QXVT_LONG, v, value.longVal);
}

// ---- ownership ---------------------------------------------------------------------------------

inline void CQXVariant::Clear() {
    if (Owns(type)) {
        QXVariantClear(this);
    } else {
        Zero();
    }
}

inline void CQXVariant::Attach(tagQXVARIANT& source) {
    if (&source == this) return Clear();
    tagQXVARIANT old = *this;
    SetRecord(source);
    source.type = QXVT_EMPTY;
    if (Owns(old.type)) QXVariantClear(&old);
}

inline tagQXVARIANT CQXVariant::Detach() {
    tagQXVARIANT record = *this;
    type = QXVT_EMPTY;
    return record;
}

inline void swap(CQXVariant& a, CQXVariant& b) noexcept {
    tagQXVARIANT record = a;
    a.SetRecord(b);
    b.SetRecord(record);
}

// ---- conversion and binding --------------------------------------------------------------------

inline int CQXVariant::ChangeType(unsigned short newType, tagQXVARIANT* src) {
    if (!src) src = this;
    if (src == this && type == newType) return 1;
    return QXVariantChangeType(this, src, newType);
}

inline int CQXVariant::BindToValue(unsigned short valueType, void* variable) {
    return QXVariantBindToValue(valueType, variable, this);
}

inline int CQXVariant::BindFromValue(unsigned short valueType, void* variable) {
    return QXVariantBindFromValue(valueType, variable, this);
}

#endif
