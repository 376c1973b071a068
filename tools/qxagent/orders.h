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
    HANDLE recordFailed;  // an event of the program: set when a line cannot be written
    DWORD mainThread;
    int wideBoxes;
};

// The exit code of the thread that an entry runs in.
enum AgentAnswer : DWORD {
    kAgentDone = 1,
    kAgentNoDictionary = 2,
    kAgentNoRecord = 3,
    kAgentNoDump = 4,
};

// Entries of qxagent.dll, all run as threads of the program with its copy of the orders.
inline constexpr const char* kAgentStart = "QxAgentStart";
inline constexpr const char* kAgentSettle = "QxAgentSettle";
inline constexpr const char* kAgentDump = "QxAgentDump";

}  // namespace qx

#endif
