// The geometry file of a dictionary: how dialogs and their controls grow with the translations.
#ifndef QXCORE_TRANSLATE_GEOMETRY_FILE_H
#define QXCORE_TRANSLATE_GEOMETRY_FILE_H

#include <qxcore/dictionary.h>

// Reads the ini file at `path` into the dictionary. A later record of a dialog replaces an earlier
// one. 0 on a file failure, such as a missing file.
int ReadDlgFile(CWld& dictionary, const char* path);

#endif
