// Reads the modal dialogs of this thread and answers them with Cancel, each as soon as it has been
// filled and before it is shown.
#ifndef HOST_MODAL_READER_H
#define HOST_MODAL_READER_H

#include <qxcore/platform.h>

#include <functional>

class ModalReader {
public:
    // One at a time. `read` gets the dialog's window.
    explicit ModalReader(std::function<void(HWND)> read);
    ~ModalReader();
    ModalReader(ModalReader const&) = delete;
    ModalReader& operator=(ModalReader const&) = delete;

private:
    static LRESULT CALLBACK AfterMessage(int code, WPARAM wparam, LPARAM lparam);

    static ModalReader* s_current;
    std::function<void(HWND)> m_read;
    HHOOK m_hook;
};

#endif
