// Text properties of a document: the summary information that a compound file carries, and that
// file managers and other programs show and search.
//
// A storage answers a query for IQXProperty with a new object over its property sets:
//
//     if (auto properties = qx::Ask<IQXProperty>(storage)) {
//         CQXVariant title("Ground floor");
//         properties->SetProperty("Title", title);
//     }
//     storage->Commit();
//
// Names and where their values lie:
//
//     Title, Subject, Author, Keywords, Comments, Last Author, App name    summary information
//     Category, Company                                           document summary information
//
// Errors: nothing throws; every failure answers 0. A set is open only while it is read or written,
// and by one object at a time. A set whose bytes are damaged is not opened: it has no values, and
// the next SetProperty begins a new one in its place.
// Threading: that of the storage.
#ifndef QXCORE_PROPERTY_H
#define QXCORE_PROPERTY_H

#include <qxcore/enum.h>
#include <qxcore/unknown.h>

class CQXVariant;

struct IQXProperty : IQXUnknown {
    // 1 and the text in *value; 0 leaves that as it is: for a name that is not known, a document
    // without the property, and one that is no text of narrow characters.
    virtual int GetProperty(const char* name, CQXVariant* value) = 0;
    // Stores the text of a type 10 variant, and answers 1. It reaches the file when the storage
    // commits. A property cannot be set to an empty text: that answers 0 and changes nothing.
    virtual int SetProperty(const char* name, CQXVariant& value) = 0;
    // The known names, in no particular order, for the caller to release; null when none are left.
    virtual CTEnum<const char*>* EnumNames() = 0;
    // Two operations that do nothing; their places are kept.
    virtual void Reserved1(void*) {}
    virtual void Reserved2(void*) {}
    // Makes a name unknown to this object; what the document holds stays. 1 if a name went.
    virtual int RemoveName(const char* name) = 0;
    // The same for all names: every question is answered by 0 from then on.
    virtual void RemoveAllNames() = 0;

protected:
    ~IQXProperty() = default;
};
QX_DECLARE_TYPEID(IQXProperty, ".?AUIQXProperty@@");

#endif
