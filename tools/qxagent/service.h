// What qxtranslate asks of the running program.
#ifndef QXAGENT_SERVICE_H
#define QXAGENT_SERVICE_H

#include "tools/qxagent/orders.h"

namespace qx {

// Answers in a thread of its own from now on, if anything will be asked. The orders stay for good.
void StartService(const AgentOrders& orders);

}  // namespace qx

#endif
