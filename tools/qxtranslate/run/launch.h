// A program that runs with the agent in it.
#ifndef QXTRANSLATE_RUN_LAUNCH_H
#define QXTRANSLATE_RUN_LAUNCH_H

#include "tools/qxagent/orders.h"

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace qx {

class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) : m_handle(handle) {}
    Handle(Handle&& other) noexcept : m_handle(other.m_handle) { other.m_handle = nullptr; }
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle() {
        if (m_handle && m_handle != INVALID_HANDLE_VALUE) CloseHandle(m_handle);
    }
    operator HANDLE() const { return m_handle; }

private:
    HANDLE m_handle;
};

// Started suspended; ended with this object unless it has ended by itself. All failures are
// BadInput.
class LaunchedProgram {
public:
    // The first word is the program, looked for as the system does.
    explicit LaunchedProgram(const std::vector<std::string>& words);
    ~LaunchedProgram();
    LaunchedProgram(const LaunchedProgram&) = delete;
    LaunchedProgram& operator=(const LaunchedProgram&) = delete;

    // Loads the agent and gives it the orders, before any code of the program runs. `asks`: it will
    // be asked to settle or to dump.
    void LoadAgent(AgentOrders& orders, bool asks);
    void Resume();

    // Whether the program ends within the time.
    bool EndsWithin(DWORD milliseconds) const;
    // Waits until the program shows a window, ends, or lets long pass without either.
    void AwaitWindow() const;
    // Waits until the program's threads have done what was asked of them and open no more windows.
    void Settle();
    // To the first of the program's windows with a menu, else to the first; waits for what it
    // opens.
    void SendCommand(unsigned command);
    // Lets the agent write the dump.
    void Dump();
    // Whether all lines of the record could be written so far.
    bool HasWholeRecord() const;
    // Asks all windows to close, and ends the program when it does not.
    void Close();

private:
    HANDLE SharedEvent(Handle& own) const;
    void LoadRemote(const std::wstring& path);
    DWORD RunRemote(void* function, void* argument);
    bool Ask(HANDLE wanted) const;
    void* Remote(const char* entry) const;
    void* WriteRemote(const void* bytes, size_t size);

    std::string m_name;
    Handle m_process;
    Handle m_thread;
    Handle m_recordFailed, m_settleWanted, m_dumpWanted, m_done, m_failed;
    DWORD m_processId = 0;
    DWORD m_threadId = 0;
};

}  // namespace qx

#endif
