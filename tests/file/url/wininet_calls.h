// What the library asks of the platform's network service, and the handles that it holds there.
#ifndef QXCORE_TESTS_FILE_URL_WININET_CALLS_H
#define QXCORE_TESTS_FILE_URL_WININET_CALLS_H

#include "support/import_slot.h"

#include <memory>
#include <string>
#include <vector>

// Watches the library's calls for a scope. One at a time.
class WinInetCalls {
public:
    // Is told the name of a call before it is made, and null when it has returned.
    using Teller = void (*)(const char* name);

    explicit WinInetCalls(Teller teller = nullptr);
    ~WinInetCalls();
    WinInetCalls(const WinInetCalls&) = delete;

    // Lets go of the calls so far, and of the memory that they take.
    void Forget();
    // From here on the calls go to the platform unseen.
    void Stop() { m_replaced.clear(); }

    // Each call with its arguments, but for handles and buffers: "InternetOpenA(null, 0, null,
    // null, 0)".
    const std::vector<std::string>& Texts() const;
    // Handles opened and not closed, and closings of what was not open, as of a connection behind
    // that of its internet handle.
    int OpenHandles() const;
    int WrongClosings() const;
    // The process's error mode during the last search on the server.
    UINT ErrorModeInSearch() const;

private:
    std::vector<std::unique_ptr<ReplacedImport>> m_replaced;
};

#endif
