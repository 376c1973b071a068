// Whether the running thread's stack has room for more calls, where input decides how deep they
// nest.
#ifndef QXCORE_CORE_STACK_ROOM_H
#define QXCORE_CORE_STACK_ROOM_H

namespace qx {

// True while more than 128 KB are left of the stack, or more than a quarter of a smaller one: room
// enough for a host's code on the way down and for an exception on the way up.
bool HasStackRoom();

}  // namespace qx

#endif
