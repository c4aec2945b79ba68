#include "host/outside_services.h"

#include <mutex>

#include "host/host.h"

namespace {
struct Services {
    std::mutex lock;
    std::string server;
    std::string clipboard;
};
Services& services() {
    static Services s;
    return s;
}
}  // namespace

namespace xphost {
void setCommunityServer(const std::string& address) {
    std::lock_guard<std::mutex> hold(services().lock);
    services().server = address;
}
const std::string& communityServer() { return services().server; }
std::string clipboardText() {
    std::lock_guard<std::mutex> hold(services().lock);
    return services().clipboard;
}
void clearClipboard() {
    std::lock_guard<std::mutex> hold(services().lock);
    services().clipboard.clear();
}
}  // namespace xphost

// The server is set before a session starts and kept for the run; sessions on worker
// threads read it.
extern "C" __attribute__((visibility("default"))) const char* vistarig_community_server(void) {
    std::lock_guard<std::mutex> hold(services().lock);
    return services().server.empty() ? nullptr : services().server.c_str();
}

extern "C" __attribute__((visibility("default"))) int vistarig_clipboard_set(const char* text) {
    std::lock_guard<std::mutex> hold(services().lock);
    services().clipboard = text ? text : "";
    return 1;
}

namespace {
xphost::ScenarioVerbRegistration serverVerb(
    "community_server", "community_server HOST:PORT", [](xphost::ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: community_server HOST:PORT");
        xphost::setCommunityServer(line.args[1]);
        return std::string();
    });
xphost::ScenarioVerbRegistration clipboardVerb(
    "expect_clipboard", "expect_clipboard TEXT", [](xphost::ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: expect_clipboard TEXT");
        const std::string text = xphost::clipboardText();
        if (text.find(line.args[1]) == std::string::npos) return "the clipboard holds \"" + text + "\"";
        return std::string();
    });
}  // namespace
