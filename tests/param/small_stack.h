// Work on a thread whose stack is far smaller than a program's.
#ifndef QXCORE_TESTS_PARAM_SMALL_STACK_H
#define QXCORE_TESTS_PARAM_SMALL_STACK_H

#include <qxcore/platform.h>

#include <functional>

// Levels that no stack would hold a call for each of, and enough of them where each is walked
// several times; and what a line of an ini text has room for. Under guard pages each block of the
// heap takes pages of its own.
#if defined(QXCORE_GUARD_HEAP)
inline constexpr int kManyLevels = 400, kTooManyCalls = 200, kLevelsOfALine = 300;
#else
inline constexpr int kManyLevels = 100000, kTooManyCalls = 25000, kLevelsOfALine = 6000;
#endif

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
