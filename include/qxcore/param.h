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

class CXString;
struct IXStorage;
struct IXStream;

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
    // name is "@". REQUIRES: out is not null.
    virtual int GetValue(const char* name, tagQXVARIANT* out) = 0;
    // Creates or replaces. 1 if something was stored, 0 if the back end could not. REQUIRES: value
    // is not null.
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
// like others in those on values; a null or empty value name is the key's default value, which is
// listed by an empty name and so does not survive in a stream.
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

// An ini file as a tree, read and written through the platform's profile calls: a node is one
// section, whose name is its path. The root is [\], its child "a" is [\a], and "b" below that
// [\a\b]. A value is a line: its name, "=", a letter for its type and its text, "width=i640". Each
// call reaches the file, so that nothing is to be saved, several nodes over one file see each
// other's changes, and lines and comments that are not the tree's stay as the platform leaves them.
// The file is not held open.
//
// The path should be a full one: the platform looks for a bare name in the Windows folder. Null
// only when the heap gives no memory, and nothing else is thrown than CXMemException: a file that
// cannot be written shows an empty tree, in which SetValue answers 0.
//
// Making a node writes: a section exists by its key "@" with the value "e", which is made when it
// is missing, and with it the folder of the file. EnumValues delivers "@" like any other name.
// After Clear a node stands over no section; SetValue brings the section back, and only the next
// node made for it the "@".
//
// - Types 0 to 16 are held; SetValue of a blob or an object answers 0, of the others what the
//   platform answered. A byte (type 2) comes back as 0, or not at all when one of its hexadecimal
//   digits would be a letter. Blanks at the end of a text, and what stands behind a line end in it,
//   are lost. Reals have 14 digits; what is infinite or no number comes back as a number.
// - GetValue clears the variant where there is no such value, but not where a path leads nowhere. A
//   line that another program wrote without the letter reads as missing.
// - Paths: "\" in a child's name reaches deeper and makes no section between. SetValue of "a\b"
//   stores in the child "a" alone. DeleteValue takes its name as it stands; a null one removes the
//   whole section.
// - Listed are the children that a section lies in or below, in the order of the file. One without
//   a section of its own is listed and cannot be opened. A child of the root whose name is a single
//   byte is listed only when a section lies below it, so it outlives Clear of the root. Names are
//   listed as they are spelled, also twice when the spellings differ in case.
// - What is stored of a value ends at 32,766 bytes, its path at 8,191; what is read, a value or the
//   names of all keys of a section or of all sections of a file, at 64,000: what is longer is cut
//   at a whole character. A longer name than 32,766 bytes holds nothing. A name has no line end, no
//   "[" or ";" in front and no blanks at its ends, and that of a value no "=".
//
// A child holds its parent. QueryInterface answers what is attached. Threading: all nodes of the
// process serve one thread at a time. Two processes that write one file at the same time may lose
// each other's keys, as any two users of the platform's calls may: it rewrites the file without a
// lock.
QXCORE_API IParam* new_IParamIniFile(const char* path);

// Reads ini text into any tree, over what is there. 1, or 0 for a null tree. A file that cannot be
// opened, read or closed, included ones too, throws CXFileException; what was read so far stays in
// the tree. A line whose first and last characters are NUL throws CXException code 34. Everything
// else that is not understood is passed over. The text is told in docs/formats.md. Threading: one
// reader at a time in the whole process.
QXCORE_API int Param_IniFile2Param(const char* path, IParam* param);

// Writes a tree, from any back end, as a new ini file in the place of the target: whole, or, with
// an exception, not at all (see Fio_OpenOut). 1, or 0 for a null tree, which leaves the target.
//
// Each node is a section, also an empty one, with its values before its children. Read back by
// Param_IniFile2Param it gives the same tree, except for blobs and objects, which are left out,
// bytes, as above, and texts with ";", "|" or a line end, which the reader cuts. Names are written
// as they are: one with ";", "|", a line end or blanks at its ends, and that of a value with "=" in
// it or "[" or "#" in front, makes a line that means something else. A line ends at 8,191 bytes:
// what is longer is cut at a whole character. Threading: one writer at a time in the whole process.
QXCORE_API int Param_Param2IniFile(IParam* param, const char* path);

// 1 if all that `a` has is in `b` with an equal value and type (see operator== of CQXVariant), else
// 0, also when one of them is null. What only `b` has is ignored: this is containment, and two
// trees are equal when it holds both ways. A value of `a` that cannot be read counts as empty.
QXCORE_API int Param_Cmp(IParam* a, IParam* b);
// Merges a tree into another one: values of the same name are replaced, children of the same name
// are kept and merged, and nothing else of the target changes. Children go before values. What the
// target cannot hold is lost without a word; a value that cannot be read arrives as empty, and a
// child that cannot be opened or created is passed over. An enumerator that does not come throws
// CXIFaceException of CTEnum<const char*>; exceptions of the back ends pass through. REQUIRES:
// neither is null, and the target does not lie below the source, which would grow without end.
QXCORE_API void Param_CopyTo(IParam* source, IParam* target);
// Tells the debugger (OutputDebugString) the names of a tree, line by line: " name \n" for each
// value, then "--- name ---\n" for each child and, where it can be opened, its own lines. Throws as
// Param_CopyTo. REQUIRES: param is not null.
QXCORE_API void Dump_Param(IParam* param);

// A tree as one line of text and back: ini text in which each line ends with "|", as in
// "[\]|v=i5|[\a]|x=sabc|". The text carries what an ini file carries.
//
// Replaces the text. 1, or 0, with the text as it was, for a null tree or when there is no memory
// to begin with.
QXCORE_API int Param_Param2String(IParam* param, CXString& text);
// Reads any ini text into the tree, over what is there; an include names its file by itself. As
// Param_IniFile2Param otherwise. Between two line ends the reader takes 8,192 bytes: in a longer
// text a new line begins there, in the middle of whatever stands there. Threading of both: one
// thread at a time in the whole process.
QXCORE_API int Param_String2Param(CXString& text, IParam* param);

// A tree in a stream, all types included; the layout is told in docs/formats.md. There is no mark
// and no length: what is no tree reads as names until something fails. A name ends at a line feed,
// and at 1,024 bytes.
//
// 1, or 0 for a null tree. A CXFileException ends the node in which it came up, and the walk goes
// on above; the answer is 0 when that was the outermost node. A value that cannot be read, and a
// child that cannot be opened, is saved as an empty one. REQUIRES: the stream is not null; so
// below.
QXCORE_API int SaveParamToXStream(IXStream* stream, IParam* param);
// Replaces what the tree holds. Answers and goes on as SaveParamToXStream; a node that failed
// stands empty, and one that the tree cannot create is read over. A stream that ends too early
// throws CXEofException: what was loaded so far stays.
QXCORE_API int LoadParamFromXStream(IXStream* stream, IParam* param);

#endif
