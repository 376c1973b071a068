#include "tools/qxagent/service.h"

#include "tools/qxagent/windows/dump.h"
#include "tools/qxagent/windows/settling.h"

namespace qx {

namespace {

DWORD WINAPI Serve(void* memory) {
    const auto& orders = *static_cast<const AgentOrders*>(memory);
    const HANDLE wanted[] = {orders.settleWanted, orders.dumpWanted};
    for (;;) {
        switch (WaitForMultipleObjects(2, wanted, FALSE, INFINITE)) {
            case WAIT_OBJECT_0:
                Settle();
                SetEvent(orders.done);
                break;
            case WAIT_OBJECT_0 + 1:
                SetEvent(DumpInterface(orders.dump) ? orders.done : orders.failed);
                break;
            default:
                return 1;
        }
    }
}

}  // namespace

void StartService(const AgentOrders& orders) {
    if (!orders.settleWanted) return;
    CloseHandle(CreateThread(nullptr, 0, Serve, const_cast<AgentOrders*>(&orders), 0, nullptr));
}

}  // namespace qx
