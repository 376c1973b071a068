// Work on a thread whose stack is far smaller than a program's.
#ifndef QXCORE_TESTS_PARAM_SMALL_STACK_H
#define QXCORE_TESTS_PARAM_SMALL_STACK_H

#include "support/build_kind.h"

#include <qxcore/platform.h>

#include <functional>

// Levels that no stack would hold a call for each of, and enough of them where each is walked
// several times; and what a line of an ini text has room for.
inline const int kManyLevels = kHasGuardPages ? 400 : 100000;
inline const int kTooManyCalls = kHasGuardPages ? 200 : 25000;
inline const int kLevelsOfALine = kHasGuardPages ? 300 : 6000;

inline void OnSmallStack(const std::function<void()>& work, size_t stack = 128 * 1024) {
    auto run = [](void* work) -> DWORD {
        (*static_cast<const std::function<void()>*>(work))();
        return 0;
    };
    HANDLE thread = CreateThread(nullptr, stack, run, const_cast<std::function<void()>*>(&work),
                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

#endif
