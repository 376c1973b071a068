// What qxtranslate tells the agent that it has loaded into a program. Both sides are of one build.
#ifndef QXAGENT_ORDERS_H
#define QXAGENT_ORDERS_H

#include <windows.h>

namespace qx {

constexpr unsigned kOrderPath = 1024;
constexpr unsigned kOrderList = 8192;

// Written into the program's memory. Lists are texts one behind the other, ended by an empty one.
struct AgentOrders {
    wchar_t dictionaries[kOrderList];
    wchar_t modules[kOrderList];  // file names of further modules to translate
    wchar_t record[kOrderPath];   // empty: no record
    wchar_t dump[kOrderPath];
    DWORD mainThread;
    int wideBoxes;

    // Events, as handles of the program.
    HANDLE recordFailed;  // set when a line of the record cannot be written
    HANDLE settleWanted;  // null when nothing will be asked of the running program
    HANDLE dumpWanted;
    HANDLE done;  // one of these two answers what was wanted
    HANDLE failed;
};

// The exit code of the thread that the entry runs in.
enum AgentAnswer : DWORD {
    kAgentDone = 1,
    kAgentNoDictionary = 2,
    kAgentNoRecord = 3,
};

// The entry of qxagent.dll, run as a thread of the program with its copy of the orders before the
// program's own code runs. A running program gets no thread from outside: under Wine one of its own
// makes it in the midst of whatever it does, which may be allocating memory.
inline constexpr const char* kAgentStart = "QxAgentStart";

}  // namespace qx

#endif
