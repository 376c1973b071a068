// A document: a title of the program's own, and notes whose class a plug-in makes.
//
// In the file, a compound file, the stream "title" holds a variant, and the storage "notes" holds a
// stream for each note with the object's frame. A note whose plug-in is missing is kept as it came
// and saved again byte for byte.
#ifndef HOST_DOCUMENT_H
#define HOST_DOCUMENT_H

#include <qxcore/persist.h>
#include <qxcore/storage.h>

#include <map>
#include <memory>
#include <string>

// Gives back the one reference that a creator or a query has given.
struct ReleaseReference {
    void operator()(IQXUnknown* object) const { object->Release(); }
};
template <class T>
using Reference = std::unique_ptr<T, ReleaseReference>;

// What goes wrong throws CXException.
struct Document {
    std::string title;
    std::map<std::string, Reference<IPersistXStream>> notes;  // by the names of their streams

    // A note of the plug-in's class. False when nobody makes that class.
    bool AddNote(const char* name, const char* text);
    // Load replaces the whole content. SaveAs makes the file; Save changes one, which stays as it
    // was on failure.
    void Load(const char* path);
    void SaveAs(const char* path) const;
    void Save(const char* path) const;
    void Print() const;
};

#endif
