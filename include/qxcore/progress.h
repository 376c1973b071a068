// The sink through which a program watches work on streams, and stops it.
//
// A program implements it over its progress dialog:
//
//     class Dialog final : public CQXUnknownImpl<IProgress> {
//         int IsCancelled() override { return m_cancelled; }  // set by the Cancel button
//         void SetRange(int low, int high) override { m_bar.SetRange(low, high); }
//         ...
//     };
//
// Memory streams take one (new_StreamOnMemory), and so do documents (new_CIXDocStorage), which hand
// it to all their streams. Ownership: whoever takes a sink holds a reference until its end.
// Errors: a sink may throw; what it throws reaches whoever works on the stream.
// Threading: the sink is called on the thread that works on the stream, in the middle of that work.
#ifndef QXCORE_PROGRESS_H
#define QXCORE_PROGRESS_H

#include <qxcore/unknown.h>

struct IProgress : IQXUnknown {
    // Whether to stop: any value but 0 ends the work under way by CXException code 1. Asked with
    // each operation of a stream, thousands of times in a second, so it must answer fast: a dialog
    // is redrawn, and waiting messages are handled, once in a while and not each time. In its
    // answer a sink may use other streams and let go of the one that asks.
    virtual int IsCancelled() = 0;
    // Two operations that the library never calls; their places are kept.
    virtual void Unused1() {}
    virtual void Unused2() {}
    // The range that the work counts in, told once before it begins: 0 and 100, when a document is
    // wrapped. A memory stream tells none.
    virtual void SetRange(int low, int high) = 0;

protected:
    ~IProgress() = default;
};
QX_DECLARE_TYPEID(IProgress, ".?AUIProgress@@");

#endif
