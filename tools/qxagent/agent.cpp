// qxagent.dll: what qxtranslate loads into a program before the program runs.
#include "tools/qxagent/modules/make_up.h"
#include "tools/qxagent/modules/modules.h"
#include "tools/qxagent/orders.h"
#include "tools/qxagent/service.h"
#include "tools/qxagent/texts/recorder.h"
#include "tools/qxagent/windows/message_watch.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

#include <string>

namespace qx {

namespace {

// The path in the code page, by its short form where the code page lacks a character of it; empty
// when it has none either.
std::string NarrowPath(const wchar_t* path) {
    wchar_t shortPath[kOrderPath] = L"";
    for (const wchar_t* form : {path, static_cast<const wchar_t*>(shortPath)}) {
        if (form == shortPath) GetShortPathNameW(path, shortPath, kOrderPath);
        char narrow[2 * kOrderPath];
        BOOL isLossy = FALSE;
        int size =
            WideCharToMultiByte(CP_ACP, 0, form, -1, narrow, sizeof narrow, nullptr, &isLossy);
        if (size > 1 && !isLossy) return narrow;
    }
    return {};
}

// Without a dictionary the program is as it is: also its dialogs keep their fonts.
bool ReadDictionaries(const AgentOrders& orders) {
    if (!*orders.dictionaries) {
        g_Wld.SetDialogFont(0, 0, nullptr);
        return true;
    }
    for (const wchar_t* path = orders.dictionaries; *path; path += wcslen(path) + 1) {
        std::string narrow = NarrowPath(path);
        if (narrow.empty() || !Supp_AddWld(narrow.c_str())) return false;
    }
    return true;
}

}  // namespace

}  // namespace qx

extern "C" __declspec(dllexport) DWORD WINAPI QxAgentStart(void* memory) {
    const auto& orders = *static_cast<const qx::AgentOrders*>(memory);
    // The library patches modules when it reads its first dictionary; the agent comes before it.
    qx::PrepareMakeUp(orders.wideBoxes != 0);
    qx::StartModules(orders.modules);
    if (!qx::ReadDictionaries(orders)) return qx::kAgentNoDictionary;
    if (*orders.record && !qx::StartRecord(orders.record, orders.recordFailed))
        return qx::kAgentNoRecord;
    qx::WatchThread(orders.mainThread);
    qx::StartService(orders);
    return qx::kAgentDone;
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    if (reason == DLL_THREAD_ATTACH) qx::WatchThread(GetCurrentThreadId());
    return TRUE;
}
