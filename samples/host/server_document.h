// Documents that lie on an FTP server, as the File menu opens and saves them.
#ifndef HOST_SERVER_DOCUMENT_H
#define HOST_SERVER_DOCUMENT_H

#include <qxcore/platform.h>

#include "document.h"

struct ServerDocument {
    std::string address;
    Document document;
};

// Asks for an address and loads what lies there, watched by a dialog with a Cancel button. False
// when the user gave up or a message box has told what went wrong; `opened` then stays.
bool OpenFromServer(HINSTANCE instance, HWND owner, ServerDocument& opened);

// Puts the document back where it came from. False when the user has stopped it before the server
// was sent anything, or a message box has told that it failed.
bool SaveToServer(HINSTANCE instance, HWND owner, ServerDocument const& open);

#endif
