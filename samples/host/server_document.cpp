#include "server_document.h"

#include <qxcore/document.h>
#include <qxcore/exception.h>

#include <cstdio>
#include <utility>

#include "dialogs.h"
#include "progress_dialog.h"
#include "resource.h"
#include "window.h"

namespace {

// open_Storage fetches the whole file; then every operation on a stream of the watched document
// asks `progress` whether to go on.
void LoadWatched(ServerDocument& opened, WorkProgress& progress) {
    qx::Reference<IXStorage> fetched(open_Storage(opened.address.c_str(), 1));
    qx::Reference<IXStorage> watched;
    new_CIXDocStorage(fetched.Get(), &progress, watched.Receive(), 0);
    opened.document.Load(watched.Get(),
                         [&progress](int done, int total) { progress.Tell(done, total); });
}

void TellFailure(HINSTANCE instance, HWND owner, unsigned text, CXException& failure) {
    char message[512];
    std::snprintf(message, sizeof message, LoadText(instance, text).c_str(), failure.GetCode());
    MessageBoxA(owner, message, LoadText(instance, IDS_TITLE).c_str(), MB_OK | MB_ICONERROR);
}

}  // namespace

bool OpenFromServer(HINSTANCE instance, HWND owner, ServerDocument& opened) {
    ServerDocument asked;
    if (!AskForAddress(instance, owner, asked.address)) return false;
    try {
        RunWithProgress(instance, owner, [&asked](WorkProgress& p) { LoadWatched(asked, p); });
    } catch (CXException& failure) {
        if (failure.GetCode() != QXERR_CANCELLED)
            TellFailure(instance, owner, IDS_NOT_FETCHED, failure);
        return false;
    }
    opened = std::move(asked);
    return true;
}

bool SaveToServer(HINSTANCE instance, HWND owner, ServerDocument const& open) {
    try {
        RunWithProgress(instance, owner,
                        [&open](WorkProgress& p) { open.document.Save(open.address.c_str(), &p); });
    } catch (CXException& failure) {
        if (failure.GetCode() != QXERR_CANCELLED)
            TellFailure(instance, owner, IDS_NOT_PUT_BACK, failure);
        return false;
    }
    return true;
}
