// The sink through which a host watches and cancels work on streams.
#ifndef QXCORE_PROGRESS_H
#define QXCORE_PROGRESS_H

#include <qxcore/unknown.h>

struct IProgress : IQXUnknown {
    // Non-zero asks for a stop. Polled on each stream operation, so it must answer fast.
    virtual int IsCancelled() = 0;
    // Never called by the library.
    virtual void Unused1() {}
    virtual void Unused2() {}
    virtual void SetRange(int low, int high) = 0;

protected:
    ~IProgress() = default;
};
QX_DECLARE_TYPEID(IProgress, ".?AUIProgress@@");

#endif
