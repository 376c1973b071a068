// The words that the second process of the lock tests understands.
#ifndef QXCORE_TESTS_CORE_LOCK_CHILD_H
#define QXCORE_TESTS_CORE_LOCK_CHILD_H

// lock_child MODE: enters a lock of its own, signals "qxcore_test_entered", then
inline constexpr char kChildWaits[] = "wait";  // waits for "qxcore_test_leave" and leaves the lock
inline constexpr char kChildDies[] =
    "die";  // waits for "qxcore_test_leave" and dies inside the lock

inline constexpr char kEntered[] = "qxcore_test_entered";
inline constexpr char kLeave[] = "qxcore_test_leave";

#endif
