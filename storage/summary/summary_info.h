// The text properties of a document over its two standard property sets.
#ifndef QXCORE_STORAGE_SUMMARY_INFO_H
#define QXCORE_STORAGE_SUMMARY_INFO_H

#include <qxcore/property.h>

struct IStorage;

namespace qx {

// A new object with one reference; null without memory. A storage without property sets gives one
// that knows no names.
IQXProperty* new_SummaryInfo(IStorage* storage);

}  // namespace qx

#endif
