// What the program remembers from one run to the next. It lives in a parameter tree, whichever:
//
//     window   place (rectangle)
//     list     sort, filter (texts), columns (blob)
//     recent   1, 2, ... (texts)
//     pinned   note (object of the plug-in's class)
#ifndef HOST_SETTINGS_H
#define HOST_SETTINGS_H

#include <qxcore/param.h>
#include <qxcore/platform.h>
#include <qxcore/reference.h>

#include <array>
#include <string>
#include <vector>

struct Settings {
    RECT place = {};                              // of the window; empty until one was shown
    std::string sort = "due";                     // or "title", "priority"
    std::string filter = "all";                   // or "open", "closed"
    std::array<int, 3> columns = {12, 232, 342};  // where the columns of the list begin
    std::vector<std::string> recent;              // addresses of documents, the last one first
    qx::Reference<IQXUnknown> note;  // pinned to the list, kept also when nobody makes its class

    // A value that is missing, or of another type, leaves what is here.
    void Read(IParam* tree);
    void Write(IParam* tree) const;
    // Puts a document in front of the recent ones.
    void Remember(std::string const& address);
};

#endif
