// What is wrong with the geometry file that stands beside a dictionary.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_GEOMETRY_CHECKS_H
#define QXTRANSLATE_MODEL_TRANSLATION_GEOMETRY_CHECKS_H

#include "tools/qxtranslate/model/dictionary/geometry.h"
#include "tools/qxtranslate/model/translation/checks.h"

namespace qx {

// Lines that change nothing, and dialogs that none of the translations stands in. Without a code
// page names are compared as bytes.
std::vector<Finding> CheckGeometry(const Geometry& geometry, const PoFile& po,
                                   const CodePage* page);

}  // namespace qx

#endif
