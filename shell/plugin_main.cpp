// The five functions the simulator calls.
// Every entry point catches everything: an exception must never cross into the
// simulator, which would take the whole flight down with it.
#include <cstdio>
#include <exception>
#include <string>

#include "data/aircraft_files.h"
#include "inputs/effects.h"
#include "panels/messages.h"
#include "platform/network.h"
#include "shell/host_interface.h"
#include "shell/lifecycle.h"

namespace {

template <typename F>
void guarded(const char* where, F&& body) {
    try {
        body();
    } catch (const std::exception& e) {
        logMessage("%s failed: %s", where, e.what());
    } catch (...) {
        logMessage("%s failed", where);
    }
}

}  // namespace

PLUGIN_API int XPluginStart(char* outName, char* outSignature, char* outDescription) {
    guarded("XPluginStart", [&] {
        char description[256];
        std::snprintf(description, sizeof description, "Advanced Camera Plugin version %s", versionText());
        std::snprintf(outName, 256, "%.255s", VISTARIG_NAME);
        std::snprintf(outSignature, 256, "%.255s", VISTARIG_SIGNATURE);
        std::snprintf(outDescription, 256, "%.255s", description);
        XPLMEnableFeature("XPLM_USE_NATIVE_WIDGET_WINDOWS", 1);
        XPLMEnableFeature("XPLM_USE_NATIVE_PATHS", 1);
        monotonicMilliseconds();
        // Asked afresh at every start (the folder, the HeadShake look-up): a plug-in started
        // again in one process, as the host's in-process tests do, may stand elsewhere.
        // Nor does a message of its earlier life wait in front of the new one's.
        overridePluginDirectory(nullptr);
        forgetHeadShake();
        forgetMessageBoxQueue();
        for (std::string spoken; takeAnnouncement(spoken);) {
        }
        int error = startNetwork();
        if (error != 0) logMessage("Network failed to start: %d\n", error);
        pluginStart();
    });
    return 1;
}

PLUGIN_API int XPluginEnable() {
    guarded("XPluginEnable", [] { hostEnable(); });
    return 1;
}

PLUGIN_API void XPluginDisable() {
    guarded("XPluginDisable", [] { hostDisable(); });
}

PLUGIN_API void XPluginStop() {
    guarded("XPluginStop", [] { pluginStop(); });
}

PLUGIN_API void XPluginReceiveMessage(XPLMPluginID from, int message, void* param) {
    guarded("XPluginReceiveMessage", [&] { receiveMessage(from, message, param); });
}
