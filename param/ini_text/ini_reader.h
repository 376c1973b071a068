// The reader of ini text.
#ifndef QXCORE_PARAM_INI_TEXT_READER_H
#define QXCORE_PARAM_INI_TEXT_READER_H

#include <qxcore/file.h>
#include <qxcore/param.h>

namespace qx {

// Merges the file's text into the tree. 0 if file or root is null, else 1.
int ReadIniText(IXFile* file, IParam* root);

}  // namespace qx

#endif
