// The library's words for what a wait of the system answered.
#ifndef QXCORE_CORE_WAIT_RESULT_H
#define QXCORE_CORE_WAIT_RESULT_H

#include <qxcore/lock.h>
#include <qxcore/platform.h>

inline int WaitResult(DWORD systemAnswer) {
    switch (systemAnswer) {
        case WAIT_TIMEOUT:
            return QXWAIT_TIMEOUT;
        case WAIT_ABANDONED:
            return QXWAIT_ABANDONED;
        default:
            return QXWAIT_ACQUIRED;
    }
}

#endif
