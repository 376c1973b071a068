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

struct IXStorage;

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

// A key of the registry as a tree: a child is a subkey, a value a REG_SZ (text) or REG_BINARY value
// (every other type but the object: the type's code in 32 bits, then the value). The key must
// exist; where it does not, or where it does not open for full access, the answer is null. Names go
// to the platform as they are: "\" reaches subkeys in the operations on children and is a character
// like others in those on values; a null or empty value name is the key's default value.
//
// Every call reaches the registry at once. Each open gives another object on a handle of its own,
// which holds no parent. GetValue of a missing value clears the variant; an empty text reads as
// missing. SetValue answers 1 for every type but the object, whatever the platform said.
// DeleteValue answers the platform's number, 0 when it is done. Clear empties the subkeys and
// leaves them there, so CreateSubParam of an existing child does too. Listings are snapshots, and
// one ends at a name of more than 512 characters. QueryInterface answers IParam. What another
// program wrote is read by its first 32 bits, whatever its type and length: missing bytes are 0.
QXCORE_API IParam* new_IParamCUReg(const char* subkey);  // under HKEY_CURRENT_USER
QXCORE_API IParam* new_IParamLMReg(const char* subkey);  // under HKEY_LOCAL_MACHINE

// A storage as a tree: a child is a sub-storage, a value a stream of one variant, so all types live
// in it. Values and children share the storage's one name space: storing either under the other's
// name replaces it. The caller keeps his own reference on the storage; QueryInterface answers it
// for IXStorage. Null only when the heap gives no memory.
//
// A node commits its storage and the one above it when it closes, and a child holds its parent, so
// all is in the file when the last node has gone. While a child is held, nobody else opens it, and
// OpenSubParam with `create` then replaces it by an empty one. OpenSubParam with `create` makes the
// first level of a path alone: "a\b" without "a" makes "a" and answers null. GetValue of a missing
// name clears the variant. No CXException comes out: what fails answers null or 0, and DeleteValue
// of a missing name is 0. DeleteValue of an empty name is not "@". Clear ends the node: its storage
// is emptied and deleted in the one above it, by the node's name (a root's is "Root"); whatever is
// asked of the node afterwards, there is nothing. To go on with a node use DeleteAllSubParams and
// DeleteAllValues.
QXCORE_API IParam* new_IXStorParam(IXStorage* storage);

// Reads ini text into any tree, over what is there. 1, or 0 for a null tree. A file that cannot be
// opened or read, included ones too, throws CXFileException; what was read so far stays in the
// tree. A line whose first and last characters are NUL throws CXException code 34. Everything else
// that is not understood is passed over. Threading: one reader at a time in the whole process.
QXCORE_API int Param_IniFile2Param(const char* path, IParam* param);

#endif
