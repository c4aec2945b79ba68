// Services a process offers the plug-in beside the XPLM API, looked up by the plug-in
// with dlsym: where the community file server stands for this run, and a system
// clipboard that keeps what was copied so that tests and scenarios can read it.
#pragma once

#include <string>

namespace xphost {

// "host:port" of the community server the plug-in uses; empty gives it its own.
void setCommunityServer(const std::string& address);
const std::string& communityServer();

// The last text the plug-in copied; empty when none.
std::string clipboardText();
void clearClipboard();

}  // namespace xphost
