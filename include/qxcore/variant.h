// The one typed value: a record of fixed size that may own heap memory, and its class.
//
// Ownership: a type 10 owns its text, a type 17 its bytes, both on the default heap; a type 18 owns
// one reference. Nothing else owns anything. A raw record starts with QXVariantInit and ends with
// QXVariantClear. Errors: conversions and bindings answer 1 or 0; only memory running out throws,
// CXMemException. Threading: a variant belongs to one thread at a time.
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

// The codes are part of file formats.
enum : unsigned short {
    QXVT_EMPTY = 0,
    QXVT_BOOL = 1,
    QXVT_UI1 = 2,
    QXVT_UI2 = 3,
    QXVT_ULONG = 4,
    QXVT_INT = 5,
    QXVT_UINT = 6,
    QXVT_LONG = 7,
    QXVT_DOUBLE = 8,
    QXVT_FLOAT = 9,
    QXVT_STRING = 10,
    QXVT_SIZE = 11,
    QXVT_RSIZE = 12,
    QXVT_POINT = 13,
    QXVT_RPOINT = 14,
    QXVT_RECT = 15,
    QXVT_RRECT = 16,
    QXVT_BLOB = 17,
    QXVT_UNKNOWN = 18,
    QXVT_UNKNOWN_REF = 0x4000  // a borrowed pointer; only QXVariantChangeType makes one
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
    char* string;
    tagSIZE size;
    tagRSIZE rsize;
    tagPOINT point;
    tagRPOINT rpoint;
    tagRECT rect;
    tagRRECT rrect;
    tagQXBLOB blob;
    IQXUnknown* unknown;
};

struct tagQXVARIANT {
    unsigned short type;  // QXVT_...
    tagQXVALUE value;
};

// Zeroes the whole record, so the type is 0. Never releases anything.
QXCORE_API void QXVariantInit(tagQXVARIANT* v);
// Releases what the record owns, then zeroes it.
QXCORE_API void QXVariantClear(tagQXVARIANT* v);
// Clears `dest`, then copies deeply. Copying a record onto itself empties it.
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
// is handed over, and v frees it.
QXCORE_API int QXVariantBindFromValue(unsigned short type, void* value, tagQXVARIANT* v);

// The record with constructors, assignment and casts. It adds no field.
class CQXVariant : public tagQXVARIANT {
public:
    CQXVariant() { Zero(); }
    CQXVariant(const tagQXVARIANT& source) { InitCopy(source); }
    CQXVariant(const tagQXVARIANT* source) { InitCopy(*source); }
    CQXVariant(const CQXVariant& source) { InitCopy(source); }
    // A null text gives type 10 with a null pointer.
    QXCORE_API CQXVariant(const char* text);
    QXCORE_API CQXVariant(const CXString& text);
    // A second argument of 1 makes a type 1 of the number's being non-zero; any other value leaves
    // the number's type.
    CQXVariant(unsigned char v, unsigned short as = 0) {
        InitNumber(as, QXVT_UI1, v, value.ui1Val);
    }
    CQXVariant(unsigned short v, unsigned short as = 0) {
        InitNumber(as, QXVT_UI2, v, value.ui2Val);
    }
    CQXVariant(unsigned long v, unsigned short as = 0) {
        InitNumber(as, QXVT_ULONG, v, value.ulongVal);
    }
    CQXVariant(int v, unsigned short as = 0) { InitNumber(as, QXVT_INT, v, value.intVal); }
    CQXVariant(unsigned int v, unsigned short as = 0) {
        InitNumber(as, QXVT_UINT, v, value.uintVal);
    }
    CQXVariant(long v, unsigned short as = 0) { InitNumber(as, QXVT_LONG, v, value.longVal); }
    CQXVariant(double v) { InitPlain(QXVT_DOUBLE, v, value.doubleVal); }
    CQXVariant(float v) { InitPlain(QXVT_FLOAT, v, value.floatVal); }
    CQXVariant(const tagSIZE& v) { InitPlain(QXVT_SIZE, v, value.size); }
    CQXVariant(const tagRSIZE& v) { InitPlain(QXVT_RSIZE, v, value.rsize); }
    CQXVariant(const tagPOINT& v) { InitPlain(QXVT_POINT, v, value.point); }
    CQXVariant(const tagRPOINT& v) { InitPlain(QXVT_RPOINT, v, value.rpoint); }
    CQXVariant(const tagRECT& v) { InitPlain(QXVT_RECT, v, value.rect); }
    CQXVariant(const tagRRECT& v) { InitPlain(QXVT_RRECT, v, value.rrect); }
    // A copy of the bytes.
    QXCORE_API CQXVariant(const tagQXBLOB& blob);
    // Takes a reference. The pointer may be null.
    CQXVariant(IQXUnknown* object) {
        InitPlain(QXVT_UNKNOWN, object, value.unknown);
        if (object) object->AddRef();
    }
    ~CQXVariant() { Clear(); }

    CQXVariant& operator=(const tagQXVARIANT& source) { return *this = &source; }
    CQXVariant& operator=(const CQXVariant& source) {
        return *this = static_cast<const tagQXVARIANT*>(&source);
    }
    CQXVariant& operator=(const tagQXVARIANT* source) {
        if (Owns(type) || Owns(source->type) || source == this) {
            QXVariantCopy(this, source);
        } else {
            SetRecord(*source);
        }
        return *this;
    }
    QXCORE_API CQXVariant& operator=(const char* text);
    QXCORE_API CQXVariant& operator=(const CXString& text);
    QXCORE_API CQXVariant& operator=(IQXUnknown* object);
    CQXVariant& operator=(unsigned char v) { return SetPlain(QXVT_UI1, v, value.ui1Val); }
    CQXVariant& operator=(double v) { return SetPlain(QXVT_DOUBLE, v, value.doubleVal); }
    CQXVariant& operator=(float v) { return SetPlain(QXVT_FLOAT, v, value.floatVal); }
    CQXVariant& operator=(const tagSIZE& v) { return SetPlain(QXVT_SIZE, v, value.size); }
    CQXVariant& operator=(const tagRSIZE& v) { return SetPlain(QXVT_RSIZE, v, value.rsize); }
    CQXVariant& operator=(const tagPOINT& v) { return SetPlain(QXVT_POINT, v, value.point); }
    CQXVariant& operator=(const tagRPOINT& v) { return SetPlain(QXVT_RPOINT, v, value.rpoint); }
    CQXVariant& operator=(const tagRECT& v) { return SetPlain(QXVT_RECT, v, value.rect); }
    CQXVariant& operator=(const tagRRECT& v) { return SetPlain(QXVT_RRECT, v, value.rrect); }
    // These five, unlike `unsigned char`, keep a type 1 variant a type 1 and store 1 or 0.
    CQXVariant& operator=(unsigned short v) { return SetNumber(QXVT_UI2, v, value.ui2Val); }
    CQXVariant& operator=(unsigned long v) { return SetNumber(QXVT_ULONG, v, value.ulongVal); }
    CQXVariant& operator=(int v) { return SetNumber(QXVT_INT, v, value.intVal); }
    CQXVariant& operator=(unsigned int v) { return SetNumber(QXVT_UINT, v, value.uintVal); }
    CQXVariant& operator=(long v) { return SetNumber(QXVT_LONG, v, value.longVal); }
    // Leaks the old block of a variant that is type 17 already: call Clear first.
    QXCORE_API CQXVariant& operator=(const tagQXBLOB& blob);

    void Clear() {
        if (Owns(type)) {
            QXVariantClear(this);
        } else {
            Zero();
        }
    }
    // Takes the source's ownership and sets its type to 0; its other bytes stay.
    void Attach(tagQXVARIANT& source) {
        Clear();
        SetRecord(source);
        source.type = QXVT_EMPTY;
    }
    // Gives ownership to the caller; this becomes type 0.
    tagQXVARIANT Detach() {
        tagQXVARIANT record = *this;
        type = QXVT_EMPTY;
        return record;
    }

    // A null source means this variant.
    int ChangeType(unsigned short newType, tagQXVARIANT* src = nullptr) {
        if (!src) src = this;
        if (src == this && type == newType) return 1;
        return QXVariantChangeType(this, src, newType);
    }
    int BindToValue(unsigned short valueType, void* variable) {
        return QXVariantBindToValue(valueType, variable, this);
    }
    int BindFromValue(unsigned short valueType, void* variable) {
        return QXVariantBindFromValue(valueType, variable, this);
    }

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
    static bool Owns(unsigned short type) {
        return type == QXVT_STRING || type == QXVT_BLOB || type == QXVT_UNKNOWN;
    }
    void Zero() { memset(static_cast<tagQXVARIANT*>(this), 0, sizeof(tagQXVARIANT)); }
    void SetRecord(const tagQXVARIANT& record) { static_cast<tagQXVARIANT&>(*this) = record; }
    void InitCopy(const tagQXVARIANT& source) {
        if (Owns(source.type)) {
            Zero();
            QXVariantCopy(this, &source);
        } else {
            SetRecord(source);
        }
    }
    template <class T>
    void InitPlain(unsigned short newType, T v, T& form) {
        Zero();
        type = newType;
        form = v;
    }
    template <class T>
    void InitNumber(unsigned short as, unsigned short newType, T v, T& form) {
        if (as == QXVT_BOOL) {
            InitPlain(QXVT_BOOL, v ? 1 : 0, value.boolVal);
        } else {
            InitPlain(newType, v, form);
        }
    }
    template <class T>
    CQXVariant& SetPlain(unsigned short newType, T v, T& form) {
        if (type != newType) {
            Clear();
            type = newType;
        }
        form = v;
        return *this;
    }
    template <class T>
    CQXVariant& SetNumber(unsigned short newType, T v, T& form) {
        if (type != QXVT_BOOL) return SetPlain(newType, v, form);
        value.boolVal = v ? 1 : 0;
        return *this;
    }
};

#endif
