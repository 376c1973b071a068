// The names of one moment: an enumerator over copies, safe against changes of the key.
#ifndef QXCORE_PARAM_REGISTRY_NAME_SNAPSHOT_H
#define QXCORE_PARAM_REGISTRY_NAME_SNAPSHOT_H

#include <qxcore/enum.h>
#include <qxcore/string.h>

#include <memory>

namespace qx {

class _CTValEnum final : public CQXUnknownImpl<CTEnum<const char*>> {
public:
    void Append(const char* name);

    int Next(unsigned count, const char** out, unsigned* fetched) override;
    // Always 1, also beyond the end, where Next then delivers nothing.
    int Skip(unsigned count) override;
    void Reset() override { m_position = 0; }

private:
    std::unique_ptr<CXString[]> m_names;
    unsigned m_count = 0;
    unsigned m_capacity = 0;
    unsigned m_position = 0;

    void Grow();
};

}  // namespace qx

#endif
