// A variant on the wire: a 2-byte tag and a payload by tag. Every stream class reads and writes it
// here.
#ifndef QXCORE_STORAGE_STREAMS_STREAM_VARIANT_H
#define QXCORE_STORAGE_STREAMS_STREAM_VARIANT_H

#include <qxcore/stream.h>

namespace qx {

// 1 when the last read delivered anything, or the variant had nothing more to deliver. A tag above
// 18, or a length that no stream can hold, is code 15.
int ReadStreamVariant(IXStream* stream, tagQXVARIANT* variant);
void WriteStreamVariant(IXStream* stream, const tagQXVARIANT* variant);

}  // namespace qx

#endif
