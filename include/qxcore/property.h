// Text properties of a document: the summary information of a compound file.
#ifndef QXCORE_PROPERTY_H
#define QXCORE_PROPERTY_H

#include <qxcore/enum.h>
#include <qxcore/unknown.h>

class CQXVariant;

// Known names: "Title", "Subject", "Author", "Keywords", "Comments", "Last Author", "App name",
// "Category", "Company". Nothing throws; every failure answers 0. A value reaches the file when the
// storage commits.
struct IQXProperty : IQXUnknown {
    // 1 and the text in *value; 0 leaves it as it is.
    virtual int GetProperty(const char* name, CQXVariant* value) = 0;
    // Stores the text of a type 10 variant. A property cannot be set to an empty text: that answers
    // 0.
    virtual int SetProperty(const char* name, CQXVariant& value) = 0;
    // The known names, for the caller to release; null when none are left.
    virtual CTEnum<const char*>* EnumNames() = 0;
    virtual void Reserved1(void*) {}
    virtual void Reserved2(void*) {}
    // Makes a name unknown to this object; what the document holds stays. 1 if a name went.
    virtual int RemoveName(const char* name) = 0;
    virtual void RemoveAllNames() = 0;

protected:
    ~IQXProperty() = default;
};
QX_DECLARE_TYPEID(IQXProperty, ".?AUIQXProperty@@");

#endif
