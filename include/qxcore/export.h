// The one place that knows how compilers mark what crosses the module boundary.
//
// Every header of the library includes this one, and through it <qxcore/new_delete.h>: a module
// that uses the library takes its memory from it.
#ifndef QXCORE_EXPORT_H
#define QXCORE_EXPORT_H

// Before a function or variable of the library: exported where it is built, imported elsewhere.
#if defined(QXCORE_BUILDING)
#define QXCORE_API __declspec(dllexport)
#else
#define QXCORE_API __declspec(dllimport)
#endif

// Keeps what is rare out of the code of what is not.
#if defined(_MSC_VER)
#define QXCORE_NOINLINE __declspec(noinline)
#else
#define QXCORE_NOINLINE __attribute__((noinline))
#endif

#include <qxcore/new_delete.h>

#endif
