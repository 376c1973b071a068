// The stand-in for an object whose class cannot be made.
#ifndef QXCORE_OBJECTS_PROXY_H
#define QXCORE_OBJECTS_PROXY_H

#include <qxcore/persist.h>
#include <qxcore/string.h>

namespace qx {

// Keeps the payload of a frame without understanding it and writes it back unchanged, any number of
// times. It stays a proxy when its class becomes known later.
class CXProxy final : public CQXUnknownImpl<IPersistXStream> {
public:
    CXProxy(const char* className, unsigned size) : m_className(className), m_size(size) {}
    ~CXProxy() override { delete[] m_data; }

    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;

    const char* GetClassName() override { return m_className; }
    unsigned GetSizeMax() override { return m_size; }
    // Throws CXException code 16 if the stream holds fewer bytes than the frame claims.
    void Load(IXStream* stream) override;
    void Save(IXStream* stream) override;

private:
    CXString m_className;
    unsigned m_size;
    char* m_data =
        nullptr;  // null before Load, and after one that failed: there is no payload then
};

}  // namespace qx

#endif
