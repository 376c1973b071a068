// The texts of the program's live windows.
#ifndef QXAGENT_WINDOWS_DUMP_H
#define QXAGENT_WINDOWS_DUMP_H

namespace qx {

// A line each, in UTF-8: "menu<TAB>path of positions<TAB>text", "dialog<TAB>title<TAB>control
// index<TAB>text" with -1 for the title itself, "window<TAB>path of child indexes<TAB>text". The
// top-level windows come in the order of their making. False when the file cannot be written.
bool DumpInterface(const wchar_t* path);

}  // namespace qx

#endif
