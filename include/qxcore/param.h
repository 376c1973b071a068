// Parameter trees: nodes with named values and named children, wherever the data lies.
//
// Values and children are two name spaces. Names are narrow texts without regard to case; "\"
// divides paths, not alike in all operations. Texts and values are copied in and out; a node hands
// out no pointer into its own. Threading: a tree belongs to one thread at a time.
#ifndef QXCORE_PARAM_H
#define QXCORE_PARAM_H

#include <qxcore/enum.h>
#include <qxcore/unknown.h>
#include <qxcore/variant.h>

struct IParam : IQXUnknown {
    // An empty child: one of that name is cleared first. The caller owns a reference. Null when the
    // back end cannot.
    virtual IParam* CreateSubParam(const char* name) = 0;
    // The child with a reference for the caller; a missing one is made if `create` is not 0, else
    // the answer is null.
    virtual IParam* OpenSubParam(const char* name, int create) = 0;
    // Empties and removes the child. A missing child is no error.
    virtual void DeleteSubParam(const char* name) = 0;
    virtual void DeleteAllSubParams() = 0;
    // The names of the direct children. The caller releases the enumerator and copies a name before
    // deleting its entry.
    virtual CTEnum<const char*>* EnumSubParams() = 0;
    // 1 and the value, with the type it was stored with; or 0 with `out` as it was. A null or empty
    // name is "@".
    virtual int GetValue(const char* name, tagQXVARIANT* out) = 0;
    // Creates or replaces. 1 if something was stored, 0 if the back end could not.
    virtual int SetValue(const char* name, const tagQXVARIANT* value) = 0;
    // 1 if the name is gone, also when it was never there. The name is no path here.
    virtual int DeleteValue(const char* name) = 0;
    virtual void DeleteAllValues() = 0;
    // The names of the values, as EnumSubParams.
    virtual CTEnum<const char*>* EnumValues() = 0;
    // Removes all values and children of the node.
    virtual void Clear() = 0;

protected:
    ~IParam() = default;
};
QX_DECLARE_TYPEID(IParam, ".?AUIParam@@");

// A root in memory with one reference; enumerates in the order of first creation. Its
// QueryInterface answers what is attached through IRegisterIface and nothing else, not even IParam.
// Null only when the heap gives no memory.
//
// Paths: CreateSubParam makes every level that is missing; OpenSubParam with `create` drops a
// missing first level and makes the rest here. SetValue of "a\b" stores "b" in the child "a" and
// also "a\b" in this node; GetValue follows the path. A child that is still held when its parent is
// cleared lives on, detached.
QXCORE_API IParam* new_MemParam();

// Reads ini text into any tree, over what is there. 1, or 0 for a null tree. A file that cannot be
// opened or read, included ones too, throws CXFileException; what was read so far stays in the
// tree. A line whose first and last characters are NUL throws CXException code 34. Everything else
// that is not understood is passed over. Threading: one reader at a time in the whole process.
QXCORE_API int Param_IniFile2Param(const char* path, IParam* param);

#endif
