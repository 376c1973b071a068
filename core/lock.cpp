#include "core/unqueried.h"
#include "core/wait_result.h"

#include <qxcore/lock.h>

#include <new>

namespace {

// All modules and all processes share this mutex; the name is fixed.
constexpr char kAllLocksName[] = "QX_Fix_Fucking_NT_Bugs_Mutex";

constinit int critSectCount = 0;
constinit HANDLE allLocksMutex =
    nullptr;  // null while no lock lives, or when the system refused it

class CCritSect : public CUnqueried<ICritSect> {
public:
    CCritSect() {
        InitializeCriticalSection(&section);
        ready = 1;
        if (critSectCount == 0) allLocksMutex = CreateMutexA(nullptr, FALSE, kAllLocksName);
        ++critSectCount;
    }
    ~CCritSect() override {
        DeleteCriticalSection(&section);
        if (--critSectCount == 0 && allLocksMutex) {
            CloseHandle(allLocksMutex);
            allLocksMutex = nullptr;
        }
    }

    // The mutex is taken first and released last, so its owner stops every lock there is.
    void Enter() override {
        if (allLocksMutex) WaitForSingleObject(allLocksMutex, INFINITE);
        EnterCriticalSection(&section);
    }
    void Leave() override {
        LeaveCriticalSection(&section);
        if (allLocksMutex) ReleaseMutex(allLocksMutex);
    }

private:
    CRITICAL_SECTION section = {};
    int ready = 0;
};

}  // namespace

ICritSect* CriticalSection_New() {
    return new CCritSect;
}

ICritSect* _CriticalSection_New_For_Core(void* memory, int* size) {
    if (memory) return new (memory) CCritSect;
    *size = sizeof(CCritSect);
    return nullptr;
}

int Wait_All(int timeout) {
    if (!allLocksMutex) return QXWAIT_ACQUIRED;
    return WaitResult(WaitForSingleObject(allLocksMutex, static_cast<DWORD>(timeout)));
}

void Wait_Release() {
    if (allLocksMutex) ReleaseMutex(allLocksMutex);
}
