// A document: a title of the program's own, and notes whose class a plug-in makes.
//
// In the file, a compound file, the stream "title" holds a variant, and the storage "notes" holds a
// stream for each note with the object's frame. A note whose plug-in is missing is kept as it came
// and saved again byte for byte.
//
// A path may be a URL: the file is fetched from there, and put back there when it is saved.
#ifndef HOST_DOCUMENT_H
#define HOST_DOCUMENT_H

#include <qxcore/persist.h>
#include <qxcore/progress.h>
#include <qxcore/reference.h>
#include <qxcore/storage.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

// What goes wrong throws CXException.
struct Document {
    std::string title;
    std::map<std::string, qx::Reference<IPersistXStream>> notes;  // by the names of their streams

    // A note of the plug-in's class. False when nobody makes that class.
    bool AddNote(const char* name, const char* text);
    // Load replaces the whole content. `tell`, if given, hears how many notes of how many are read.
    // SaveAs makes the file; Save changes one, which stays as it was on failure. A sink that says
    // stop before the file goes to its server makes that failure: CXException code 1.
    void Load(const char* path);
    void Load(IXStorage* storage, std::function<void(int, int)> const& tell = nullptr);
    void SaveAs(const char* path) const;
    void Save(const char* path, IProgress* sink = nullptr) const;
    // A line of text for each note.
    std::vector<std::string> Lines() const;
    void Print() const;
};

#endif
