// Locks and events over those of the system.
#include <qxcore/exception.h>
#include <qxcore/lock.h>
#include <qxcore/platform.h>

#include <new>

namespace qx {

namespace {

// All modules and all processes share this mutex; the name is fixed.
constexpr char kAllLocksName[] = "QX_Fix_Fucking_NT_Bugs_Mutex";

constinit int g_critSectCount = 0;
// Null while no lock lives, or when the system refused it.
constinit HANDLE g_allLocksMutex = nullptr;

// The counting of objects that answer no query at all.
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

class CCritSect final : public CUnqueried<ICritSect> {
public:
    CCritSect() {
        InitializeCriticalSection(&m_section);
        m_ready = 1;
        if (g_critSectCount == 0) g_allLocksMutex = CreateMutexA(nullptr, FALSE, kAllLocksName);
        ++g_critSectCount;
    }
    ~CCritSect() override {
        DeleteCriticalSection(&m_section);
        if (--g_critSectCount == 0 && g_allLocksMutex) {
            CloseHandle(g_allLocksMutex);
            g_allLocksMutex = nullptr;
        }
    }

    // The mutex is taken first and released last, so its owner stops every lock there is.
    void Enter() override {
        if (g_allLocksMutex) WaitForSingleObject(g_allLocksMutex, INFINITE);
        EnterCriticalSection(&m_section);
    }
    void Leave() override {
        LeaveCriticalSection(&m_section);
        if (g_allLocksMutex) ReleaseMutex(g_allLocksMutex);
    }

private:
    CRITICAL_SECTION m_section = {};
    int m_ready = 0;
};

// The library's words for what a wait of the system answered.
int WaitResult(DWORD systemAnswer) {
    switch (systemAnswer) {
        case WAIT_TIMEOUT:
            return QXWAIT_TIMEOUT;
        case WAIT_ABANDONED:
            return QXWAIT_ABANDONED;
        default:
            return QXWAIT_ACQUIRED;
    }
}

class CEvent final : public CUnqueried<IEvent> {
public:
    explicit CEvent(int initialState)
        : m_handle(CreateEventA(nullptr, FALSE, initialState, nullptr)) {
        if (!m_handle) throw CXMemException();
        m_ready = 1;
    }
    ~CEvent() override { CloseHandle(m_handle); }

    int Set() override { return SetEvent(m_handle); }
    int Reset() override { return ResetEvent(m_handle); }
    int Wait(unsigned timeout) override {
        return WaitResult(WaitForSingleObject(m_handle, timeout));
    }

private:
    HANDLE m_handle;
    int m_ready = 0;
};

}  // namespace

}  // namespace qx

ICritSect* CriticalSection_New() {
    return new qx::CCritSect;
}

ICritSect* _CriticalSection_New_For_Core(void* memory, int* size) {
    if (memory) return new (memory) qx::CCritSect;
    *size = sizeof(qx::CCritSect);
    return nullptr;
}

int Wait_All(int timeout) {
    if (!qx::g_allLocksMutex) return QXWAIT_ACQUIRED;
    return qx::WaitResult(WaitForSingleObject(qx::g_allLocksMutex, static_cast<DWORD>(timeout)));
}

void Wait_Release() {
    if (qx::g_allLocksMutex) ReleaseMutex(qx::g_allLocksMutex);
}

IEvent* Event_New(int initialState) {
    return new qx::CEvent(initialState);
}
