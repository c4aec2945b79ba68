// Plug-ins: loading from disk or from entry points, their life cycle, identity,
// messages, features, and the report of what a stopped plug-in left registered.
#include "host/portable.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "XPLMPlugin.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

struct Plugin {
    int id = 0;
    std::string name, signature, description, path;
    void* library = nullptr;
    EntryPoints entry;
    bool enabled = false;
    bool stopped = false;
    bool inLifecycle = false;  // inside XPluginStart/Enable/Disable/Stop
    bool standIn = false;
    std::map<std::string, int> features;
};

struct PluginTable {
    std::vector<Plugin> plugins;
    int nextId = 1;
    int scenarioPlugin = -1;
};

PluginTable& table() {
    static PluginTable t;
    return t;
}

Plugin* find(int id) {
    for (auto& p : table().plugins)
        if (p.id == id && !p.stopped) return &p;
    return nullptr;
}

// The features X-Plane 12 knows; all start off.
const char* const knownFeatures[] = {"XPLM_USE_NATIVE_PATHS", "XPLM_USE_NATIVE_WIDGET_WINDOWS",
                                     "XPLM_WANTS_REFLECTIONS", "XPLM_WANTS_DATAREF_NOTIFICATIONS"};

bool knownFeature(const char* name) {
    for (const char* f : knownFeatures)
        if (std::strcmp(f, name) == 0) return true;
    return false;
}

std::string text256(const char* s) {
    return std::string(s, strnlen(s, 255));
}

int addPlugin(const EntryPoints& entry, const std::string& path, void* library) {
    PluginTable& t = table();
    Plugin p;
    p.id = t.nextId++;
    p.entry = entry;
    p.path = path;
    p.library = library;
    t.plugins.push_back(p);
    char name[256] = {0}, signature[256] = {0}, description[256] = {0};
    int ok;
    {
        Plugin* me = find(p.id);
        me->inLifecycle = true;
        PluginScope scope(p.id);
        ok = entry.start ? entry.start(name, signature, description) : 0;
        find(p.id)->inLifecycle = false;
    }
    Plugin* me = find(p.id);
    me->name = text256(name);
    me->signature = text256(signature);
    me->description = text256(description);
    if (!ok) {
        writeLog("Plugin " + path + " did not start (XPluginStart returned 0).\n");
        dropPluginRegistrations(p.id);
        me->stopped = true;
        return -1;
    }
    writeLog("Loaded: " + path + " (" + me->signature + ").\n");
    if (t.scenarioPlugin < 0) t.scenarioPlugin = p.id;
    return p.id;
}

void deliver(Plugin& p, int from, int message, void* param) {
    if (!p.enabled || !p.entry.receive) return;
    int id = p.id;
    ReceiveFn receive = p.entry.receive;
    PluginScope scope(id);
    receive(from, message, param);
}

}  // namespace

void resetPlugins() {
    // Dropped without being called: a reset stands for a new simulator process.
    for (auto& p : table().plugins)
        if (p.library && !p.stopped) dlclose(p.library);
    table() = PluginTable();
}

bool pluginActive(int plugin) {
    if (plugin <= 0) return true;
    for (auto& p : table().plugins)
        if (p.id == plugin) return !p.stopped && (p.enabled || p.inLifecycle);
    return true;
}

std::string pluginName(int plugin) {
    if (plugin == 0) return "X-Plane";
    for (auto& p : table().plugins)
        if (p.id == plugin) return p.name.empty() ? p.path : p.name;
    return "plug-in " + std::to_string(plugin);
}

void dropPluginRegistrations(int plugin) {
    dropDataRefsOf(plugin);
    dropCommandHandlersOf(plugin);
    dropFlightLoopsOf(plugin);
    dropCameraOf(plugin);
}

int loadPlugin(const std::string& xplPath) {
    ensureInitialized();
    if (!checkThread("loadPlugin")) return -1;
    void* library = dlopen(xplPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* err = dlerror();
        writeLog("Failed to load plugin " + xplPath + ": " + (err ? err : "unknown error") + "\n");
        return -1;
    }
    EntryPoints e;
    e.start = reinterpret_cast<StartFn>(dlsym(library, "XPluginStart"));
    e.enable = reinterpret_cast<EnableFn>(dlsym(library, "XPluginEnable"));
    e.disable = reinterpret_cast<VoidFn>(dlsym(library, "XPluginDisable"));
    e.stop = reinterpret_cast<VoidFn>(dlsym(library, "XPluginStop"));
    e.receive = reinterpret_cast<ReceiveFn>(dlsym(library, "XPluginReceiveMessage"));
    if (!e.start || !e.enable || !e.disable || !e.stop || !e.receive) {
        writeLog("Plugin " + xplPath + " lacks one of the five XPlugin entry points.\n");
        dlclose(library);
        return -1;
    }
    int id = addPlugin(e, xplPath, library);
    if (id < 0) dlclose(library);
    return id;
}

int loadPlugin(const EntryPoints& entry, const std::string& xplPath) {
    ensureInitialized();
    if (!checkThread("loadPlugin")) return -1;
    int id = addPlugin(entry, xplPath, nullptr);
    if (id > 0) setDefaultCallingPlugin(id);
    return id;
}

int addStandInPlugin(const char* name, const char* signature, const char* description, ReceiveFn receive) {
    ensureInitialized();
    Plugin p;
    p.id = table().nextId++;
    p.name = name;
    p.signature = signature;
    p.description = description ? description : "";
    p.path = root() + "Resources/plugins/" + p.name + "/" + xplPlatformFolder() + "/" + p.name + ".xpl";
    p.entry.receive = receive;
    p.enabled = true;
    p.standIn = true;
    table().plugins.push_back(p);
    return p.id;
}

bool enablePlugin(int id) {
    ensureInitialized();
    Plugin* p = find(id);
    if (!p) return false;
    if (p->enabled) return true;
    if (!p->entry.enable) {
        p->enabled = true;
        return true;
    }
    p->inLifecycle = true;
    EnableFn fn = p->entry.enable;
    int ok;
    {
        PluginScope scope(id);
        ok = fn();
    }
    p = find(id);
    p->inLifecycle = false;
    p->enabled = ok != 0;
    if (!ok) writeLog("Plugin " + p->name + " refused to be enabled.\n");
    return p->enabled;
}

void disablePlugin(int id) {
    ensureInitialized();
    Plugin* p = find(id);
    if (!p || !p->enabled) return;
    if (p->entry.disable) {
        p->inLifecycle = true;
        VoidFn fn = p->entry.disable;
        {
            PluginScope scope(id);
            fn();
        }
        p = find(id);
        p->inLifecycle = false;
    }
    p->enabled = false;
    // Camera control ends with the plug-in's enabled state.
    dropCameraOf(id);
}

void stopPlugin(int id) {
    ensureInitialized();
    Plugin* p = find(id);
    if (!p) return;
    disablePlugin(id);
    p = find(id);
    if (p->entry.stop) {
        p->inLifecycle = true;
        VoidFn fn = p->entry.stop;
        {
            PluginScope scope(id);
            fn();
        }
        p = find(id);
        p->inLifecycle = false;
    }
    std::vector<std::string> left = collectLeaks(id);
    std::string name = pluginName(id);
    std::vector<std::string> lines;
    for (auto& l : left) {
        lines.push_back(name + ": " + l);
        writeLog("xplm_host: " + name + " still has registered after XPluginStop: " + l + "\n");
    }
    addLeakLines(lines);
    dropPluginRegistrations(id);
    p->stopped = true;
    if (callingPlugin() == id) setDefaultCallingPlugin(0);
    // A library that left registrations stays mapped: the host's tables still point into it.
    if (p->library && left.empty()) dlclose(p->library);
    p->library = nullptr;
}

void stopAllPlugins() {
    ensureInitialized();
    std::vector<int> ids;
    for (auto& p : table().plugins)
        if (!p.stopped && !p.standIn) ids.push_back(p.id);
    // X-Plane stops plug-ins in the reverse order of loading.
    for (auto it = ids.rbegin(); it != ids.rend(); ++it) stopPlugin(*it);
}

bool pluginEnabled(int id) {
    Plugin* p = find(id);
    return p && p->enabled;
}

int pluginBySignature(const char* signature) {
    for (auto& p : table().plugins)
        if (!p.stopped && p.signature == signature) return p.id;
    return -1;
}

void sendMessage(int message, intptr_t param) {
    ensureInitialized();
    std::vector<int> ids;
    for (auto& p : table().plugins) ids.push_back(p.id);
    for (int id : ids)
        if (Plugin* p = find(id)) deliver(*p, XPLM_PLUGIN_XPLANE, message, reinterpret_cast<void*>(param));
}

void sendPlaneLoaded(int aircraftIndex) {
    sendMessage(XPLM_MSG_PLANE_LOADED, aircraftIndex);
}
void sendAirportLoaded() {
    sendMessage(XPLM_MSG_AIRPORT_LOADED, 0);
}
void sendWillWritePrefs() {
    sendMessage(XPLM_MSG_WILL_WRITE_PREFS, 0);
}
void sendEnteredVr() {
    sendMessage(XPLM_MSG_ENTERED_VR, 0);
}

void setScenarioPlugin(int id) {
    table().scenarioPlugin = id;
}
int scenarioPlugin() {
    return table().scenarioPlugin;
}

}  // namespace xphost

using namespace xphost;

XPLMPluginID XPLMGetMyID(void) {
    if (!checkThread("XPLMGetMyID")) return XPLM_NO_PLUGIN_ID;
    return callingPlugin();
}

int XPLMCountPlugins(void) {
    if (!checkThread("XPLMCountPlugins")) return 0;
    int n = 0;
    for (auto& p : table().plugins)
        if (!p.stopped) ++n;
    return n;
}

XPLMPluginID XPLMGetNthPlugin(int inIndex) {
    if (!checkThread("XPLMGetNthPlugin")) return XPLM_NO_PLUGIN_ID;
    int n = 0;
    for (auto& p : table().plugins)
        if (!p.stopped && n++ == inIndex) return p.id;
    return XPLM_NO_PLUGIN_ID;
}

XPLMPluginID XPLMFindPluginByPath(const char* inPath) {
    if (!checkThread("XPLMFindPluginByPath") || !inPath) return XPLM_NO_PLUGIN_ID;
    for (auto& p : table().plugins)
        if (!p.stopped && p.path == inPath) return p.id;
    return XPLM_NO_PLUGIN_ID;
}

XPLMPluginID XPLMFindPluginBySignature(const char* inSignature) {
    if (!checkThread("XPLMFindPluginBySignature") || !inSignature) return XPLM_NO_PLUGIN_ID;
    return pluginBySignature(inSignature);
}

void XPLMGetPluginInfo(XPLMPluginID inPlugin, char* outName, char* outFilePath, char* outSignature,
                       char* outDescription) {
    if (!checkThread("XPLMGetPluginInfo")) return;
    std::string name, path, signature, description;
    if (inPlugin == XPLM_PLUGIN_XPLANE) {
        name = "X-Plane";
        path = root() + "X-Plane-x86_64";
        signature = "xplanesdk.x-plane";
        description = "The simulator";
    } else if (Plugin* p = find(inPlugin)) {
        name = p->name;
        path = p->path;
        signature = p->signature;
        description = p->description;
    }
    // X-Plane's buffers are 256 bytes.
    auto put = [](char* out, const std::string& s) {
        if (!out) return;
        size_t n = std::min<size_t>(s.size(), 255);
        std::memcpy(out, s.data(), n);
        out[n] = 0;
    };
    put(outName, name);
    put(outFilePath, nativePath(path));
    put(outSignature, signature);
    put(outDescription, description);
}

int XPLMIsPluginEnabled(XPLMPluginID inPluginID) {
    if (!checkThread("XPLMIsPluginEnabled")) return 0;
    return pluginEnabled(inPluginID) ? 1 : 0;
}

int XPLMEnablePlugin(XPLMPluginID inPluginID) {
    if (!checkThread("XPLMEnablePlugin")) return 0;
    return enablePlugin(inPluginID) ? 1 : 0;
}

void XPLMDisablePlugin(XPLMPluginID inPluginID) {
    if (!checkThread("XPLMDisablePlugin")) return;
    disablePlugin(inPluginID);
}

void XPLMReloadPlugins(void) {
    if (!checkThread("XPLMReloadPlugins")) return;
    writeLog("xplm_host: XPLMReloadPlugins ignored\n");
}

void XPLMSendMessageToPlugin(XPLMPluginID inPlugin, int inMessage, void* inParam) {
    if (!checkThread("XPLMSendMessageToPlugin")) return;
    int from = callingPlugin();
    std::vector<int> ids;
    for (auto& p : table().plugins)
        if (inPlugin == XPLM_NO_PLUGIN_ID || p.id == inPlugin) ids.push_back(p.id);
    for (int id : ids)
        if (Plugin* p = find(id)) deliver(*p, from, inMessage, inParam);
}

int XPLMHasFeature(const char* inFeature) {
    if (!checkThread("XPLMHasFeature") || !inFeature) return 0;
    return knownFeature(inFeature) ? 1 : 0;
}

int XPLMIsFeatureEnabled(const char* inFeature) {
    if (!checkThread("XPLMIsFeatureEnabled") || !inFeature) return 0;
    Plugin* p = find(callingPlugin());
    if (!p) return 0;
    auto it = p->features.find(inFeature);
    return it == p->features.end() ? 0 : it->second;
}

void XPLMEnableFeature(const char* inFeature, int inEnable) {
    if (!checkThread("XPLMEnableFeature") || !inFeature) return;
    if (!knownFeature(inFeature)) {
        writeLog(std::string("xplm_host: unknown feature ") + inFeature + "\n");
        return;
    }
    if (Plugin* p = find(callingPlugin())) p->features[inFeature] = inEnable ? 1 : 0;
}

void XPLMEnumerateFeatures(XPLMFeatureEnumerator_f inEnumerator, void* inRef) {
    if (!checkThread("XPLMEnumerateFeatures") || !inEnumerator) return;
    for (const char* f : knownFeatures) inEnumerator(f, inRef);
}
