// A module that changes the registry while it is loaded, in the way that the environment says.
#include "objects/ticket.h"

#include <qxcore/registry.h>

#include <cstdlib>
#include <cstring>

namespace {

class CTicket : public CQXUnknownImpl<ITicket> {
public:
    int Number() override { return 51; }
    void* Module() override { return nullptr; }
};

bool IsAsked(const char* meddling) {
    char value[64] = "";
    GetEnvironmentVariableA("QXCORE_TEST_MEDDLING", value, sizeof value);
    return strstr(value, meddling) != nullptr;
}

// Fills the places that forgotten entries leave, so that one that is used after all reads others'
// bytes.
void TakeMemory() {
    for (int i = 0; i < 200; ++i) memset(::operator new(64), 0x5A, 64);
}

}  // namespace

QX_CREATOR(TestMeddling) {
    return QXCreateInstance<CTicket>(outer, id, out);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    if (IsAsked("forget")) UnregisterObject("TestMeddling");
    TakeMemory();
    if (IsAsked("handle")) RegisterObject("TestMeddling", module);
    if (IsAsked("path")) RegisterObject("TestMeddling", "test_ticket_module.dll");
    return TRUE;
}
