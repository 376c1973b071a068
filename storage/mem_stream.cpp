#include "storage/mem_stream.h"

#include <new>

int CMemStream::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (InternalQueryInterface(id, out)) return 1;
    IMemBlock* block = id == qx_typeid<IMemBlock>() ? this : nullptr;
    return QXAnswerQuery(block, out);
}

IXStream* new_StreamOnMemory() {
    return new_StreamOnMemory(nullptr);
}

IXStream* new_StreamOnMemory(IProgress* progress) {
    return new (std::nothrow) CMemStream(progress);
}
