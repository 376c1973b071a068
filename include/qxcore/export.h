// The one place that knows how compilers mark what crosses the module boundary.
#ifndef QXCORE_EXPORT_H
#define QXCORE_EXPORT_H

#if defined(QXCORE_BUILDING)
#define QXCORE_API __declspec(dllexport)
#else
#define QXCORE_API __declspec(dllimport)
#endif

#if defined(_MSC_VER)
#define QXCORE_NOINLINE __declspec(noinline)
#else
#define QXCORE_NOINLINE __attribute__((noinline))
#endif

#include <qxcore/new_delete.h>

#endif
