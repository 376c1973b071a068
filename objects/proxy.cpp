#include "objects/proxy.h"

#include <qxcore/exception.h>
#include <qxcore/stream.h>

namespace qx {

namespace {

int BytesLeft(IXStream* stream) {
    int here = stream->Seek(0, 1);
    int end = stream->Seek(0, 2);
    stream->Seek(here, 0);
    return end - here;
}

}  // namespace

int CXProxy::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (InternalQueryInterface(id, out)) return 1;
    bool known = id == qx_typeid<IPersistX>() || id == qx_typeid<IPersistXStream>();
    return QXAnswerQuery(known ? this : nullptr, out);
}

void CXProxy::Load(IXStream* stream) {
    delete[] m_data;
    m_data = nullptr;
    // A stream holds less than 2 GiB, so a m_size that is negative as an int is a lie too.
    int claimed = static_cast<int>(m_size);
    if (claimed < 0 || claimed > BytesLeft(stream)) throw CXException(QXERR_OBJECT_SIZE);
    m_data = new char[m_size];
    stream->Read(m_data, claimed);
}

void CXProxy::Save(IXStream* stream) {
    if (m_data) stream->Write(m_data, static_cast<int>(m_size));
}

}  // namespace qx
