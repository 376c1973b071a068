// A module with creatable classes. Tests load it, and copies of it, by the registry.
#include "objects/ticket.h"

#include <qxcore/exception.h>
#include <qxcore/registry.h>

namespace {

char g_anchor;

class CTicket : public CQXUnknownImpl<ITicket> {
public:
    int Number() override { return 41; }
    void* Module() override { return &g_anchor; }
};

// A class that takes part in an aggregate.
class CAggregatedTicket final : public CQXContainedObject<CAggregatedTicket>, public ITicket {
public:
    unsigned AddRef() override { return CQXContainedObject::AddRef(); }
    unsigned Release() override { return CQXContainedObject::Release(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return CQXContainedObject::QueryInterface(id, out);
    }
    int ContainedQueryInterface(qx_type_info const& id, IQXUnknown** out) {
        ITicket* self = this;
        return QXAnswerQuery(id == qx_typeid<ITicket>() ? self : nullptr, out);
    }
    int Number() override { return 43; }
    void* Module() override { return &g_anchor; }
};

}  // namespace

QX_CREATOR(TestTicket) {
    return QXCreateInstance<CTicket>(outer, id, out);
}

QX_CREATOR(TestAggregatedTicket) {
    if (outer && id != qx_typeid<IQXUnknown>()) return 0;
    auto object = new CQXAggObject<CAggregatedTicket>(outer);
    int known = object->QueryInterface(id, out);
    object->Release();
    return known;
}

// Answers with a number of its own.
QX_CREATOR(TestTicketByFortyTwo) {
    return QXCreateInstance<CTicket>(outer, id, out) ? 42 : 0;
}

QX_CREATOR(TestFailing) {
    (void)outer, (void)id, (void)out;
    return 0;
}

// Fails and leaves a value behind that is no object.
QX_CREATOR(TestFailingUntidily) {
    (void)outer, (void)id;
    *out = reinterpret_cast<IQXUnknown*>(&g_anchor);
    return 0;
}

QX_CREATOR(TestThrowing) {
    (void)outer, (void)id, (void)out;
    throw CXFileException(QXERR_SHARING, "throwing", QXOP_OPEN);
}
