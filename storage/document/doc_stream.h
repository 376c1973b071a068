// The stream that asks its document's sink whether to go on.
#ifndef QXCORE_STORAGE_DOCUMENT_DOC_STREAM_H
#define QXCORE_STORAGE_DOCUMENT_DOC_STREAM_H

#include <qxcore/reference.h>
#include <qxcore/stream.h>

namespace qx {

class CIXDocStorage;

// A new wrapper of the stream, with one reference; null when the heap gives no memory. The storage
// may be null.
IXStream* NewDocStream(CIXDocStorage* storage, Reference<IXStream> stream, int flag);

}  // namespace qx

#endif
