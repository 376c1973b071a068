// A variant on the wire: a 2-byte tag and a payload by tag. Every stream class reads and writes it here.
#ifndef QXCORE_STORAGE_STREAM_VARIANT_H
#define QXCORE_STORAGE_STREAM_VARIANT_H

#include <qxcore/stream.h>

// What the result of a stream's Read means.
enum class ReadAnswer {
    Count,  // the bytes delivered
    Flag    // non-zero when all bytes asked for were delivered
};

// 1 when the variant was read whole. A tag above 18, or a length that no stream can hold, is code 15.
int ReadStreamVariant(IXStream* stream, ReadAnswer answer, tagQXVARIANT* variant);
void WriteStreamVariant(IXStream* stream, const tagQXVARIANT* variant);

#endif
