// What a user would read, taken from the live menus, windows and loads and written to the standard
// output.
//
// One item a line, in UTF-8, the fields parted by tabs; a line feed, tab or backslash inside a text
// is written \n, \t or \\:
//
//     menu     path of positions, as 0/4/1        text
//     dialog   name       control index           text
//     string   id                                 text
//     message  caption                            text
//
// A dialog's name is its resource name or number. Its controls count from 0 in the order of the
// template; -1 is the caption. A list box gives a line for each of its items. Texts that the
// machine and not the program supplies, as in the combo boxes of the system's Open dialog, are left
// out, and so is what has no text.
#ifndef HOST_DUMP_H
#define HOST_DUMP_H

#include <qxcore/platform.h>

// The answer is the exit code: 0, or 1 when the user interface cannot be built.
int DumpInterface(HINSTANCE instance);

#endif
