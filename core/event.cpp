#include "core/unqueried.h"
#include "core/wait_result.h"

#include <qxcore/exception.h>
#include <qxcore/lock.h>

namespace {

class CEvent : public CUnqueried<IEvent> {
public:
    explicit CEvent(int initialState)
        : handle(CreateEventA(nullptr, FALSE, initialState, nullptr)) {
        if (!handle) throw CXMemException();
        ready = 1;
    }
    ~CEvent() override { CloseHandle(handle); }

    int Set() override { return SetEvent(handle); }
    int Reset() override { return ResetEvent(handle); }
    int Wait(unsigned timeout) override { return WaitResult(WaitForSingleObject(handle, timeout)); }

private:
    HANDLE handle;
    int ready = 0;
};

}  // namespace

IEvent* Event_New(int initialState) {
    return new CEvent(initialState);
}
