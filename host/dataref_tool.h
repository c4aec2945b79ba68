// Stand-in for the DataRefTool plug-in: it runs inside the host under DataRefTool's
// signature and records every name that a plug-in sends it to list.
#pragma once

#include <string>
#include <vector>

namespace xphost {

// The message with which a plug-in hands DataRefTool a dataref or command name.
constexpr int kDataRefToolAddName = 0x1000000;

// Loads the stand-in (once per reset); returns its plug-in id.
int addDataRefTool();
// The names received since the stand-in was added, in order.
const std::vector<std::string>& dataRefToolNames();

}  // namespace xphost
