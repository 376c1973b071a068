// The writer of ini text.
#ifndef QXCORE_PARAM_INI_TEXT_WRITER_H
#define QXCORE_PARAM_INI_TEXT_WRITER_H

#include <qxcore/file.h>
#include <qxcore/param.h>

namespace qx {

// Writes the node's section, its values, and depth first its children. The section is the node's
// path, null for a root. Of the file nothing but Write is called.
//
// A line has kIniLineSize - 1 bytes at most, its line end included, so that it is read back as one;
// what is longer is cut at a whole character. Serves one thread at a time.
void WriteIniText(IParam* node, IXFile* file, const char* section);

}  // namespace qx

#endif
