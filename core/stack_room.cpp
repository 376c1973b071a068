#include "core/stack_room.h"

#include <qxcore/platform.h>

#include <algorithm>
#include <cstddef>

namespace qx {

namespace {

constexpr ptrdiff_t kRoom = 128 * 1024;

// The stack that the thread runs on; a fiber has one of its own.
struct Stack {
    const char* low;   // calls come near it no more
    const char* high;  // where the stack begins
};
constinit thread_local Stack t_stack = {};

Stack StackAround(const char* here) {
    MEMORY_BASIC_INFORMATION info;
    if (!VirtualQuery(here, &info, sizeof info)) return {};
    auto bottom = static_cast<const char*>(info.AllocationBase);
    auto high = static_cast<const char*>(info.BaseAddress) + info.RegionSize;
    return {bottom + std::min(kRoom, (high - bottom) / 4), high};
}

}  // namespace

bool HasStackRoom() {
    char mark = 0;
    const char* here = &mark;
    if (here <= t_stack.low || here >= t_stack.high) t_stack = StackAround(here);
    return here > t_stack.low;
}

}  // namespace qx
