// Another module with classes that deal with those of the first.
#include "objects/ticket.h"

#include <qxcore/registry.h>

namespace {

char g_anchor;

class CTicket : public CQXUnknownImpl<ITicket> {
public:
    int Number() override { return 7; }
    void* Module() override { return &g_anchor; }
};

class CInspector : public CQXUnknownImpl<IInspector> {
public:
    int Inspect(IQXUnknown* object) override {
        IQXUnknown* answer;
        if (!object->QueryInterface(qx_typeid<ITicket>(), &answer)) return -1;
        int number = static_cast<ITicket*>(answer)->Number();
        answer->Release();
        return number;
    }
    IQXUnknown* Issue(qx_type_info const& id) override {
        IQXUnknown* answer = nullptr;
        QXCreateInstance<CTicket>(nullptr, id, &answer);
        return answer;
    }
};

}  // namespace

QX_CREATOR(TestInspector) {
    return QXCreateInstance<CInspector>(outer, id, out);
}
