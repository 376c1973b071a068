// The counting of objects that answer no query at all.
#ifndef QXCORE_CORE_UNQUERIED_H
#define QXCORE_CORE_UNQUERIED_H

#include <qxcore/unknown.h>

template <class I>
class CUnqueried : public I {
public:
    CUnqueried() = default;
    CUnqueried(const CUnqueried&) = delete;
    CUnqueried& operator=(const CUnqueried&) = delete;

    unsigned AddRef() override { return ++m_refs; }
    unsigned Release() override {
        if (--m_refs != 0) return m_refs;
        delete this;
        return 0;
    }
    int QueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }

    virtual ~CUnqueried() = default;

private:
    unsigned m_refs = 1;
};

#endif
