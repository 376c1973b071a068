// Long work on a thread of its own, behind a dialog that tells how far it is and offers Cancel. The
// program's windows stay alive meanwhile: they move and paint.
#ifndef HOST_PROGRESS_DIALOG_H
#define HOST_PROGRESS_DIALOG_H

#include <qxcore/platform.h>
#include <qxcore/progress.h>

#include <atomic>
#include <functional>

// What the work tells the dialog and asks it. Handed to the library as the sink of a watched
// document, it stops the work at the next operation on one of its streams.
class WorkProgress : public CQXUnknownImpl<IProgress> {
public:
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        return QXAnswerQuery(id == qx_typeid<IProgress>() ? this : nullptr, out);
    }
    int IsCancelled() override { return m_isCancelled; }
    void SetRange(int, int) override {}  // the dialog counts objects, which it knows better

    void Cancel() { m_isCancelled = 1; }
    void Tell(int done, int total) {
        m_total = total;
        m_done = done;
    }
    int Done() const { return m_done; }
    int Total() const { return m_total; }  // 0 until it is known

private:
    std::atomic<int> m_isCancelled{0};
    std::atomic<int> m_done{0};
    std::atomic<int> m_total{0};
};

// Runs the work and returns when it has ended, one way or the other; what it throws is thrown here.
void RunWithProgress(HINSTANCE instance, HWND owner, std::function<void(WorkProgress&)> work);

#endif
