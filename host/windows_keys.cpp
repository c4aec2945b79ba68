// Keys as X-Plane routes them: key sniffers before windows, the window with keyboard
// focus, sniffers after windows, then the hot keys; and the XPLM calls of sniffers
// and hot keys.
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "XPLMDisplay.h"
#include "host/host_internal.h"
#include "host/windows.h"

namespace xphost {

namespace {

struct KeySniffer {
    uint64_t serial = 0;
    int plugin = 0;
    XPLMKeySniffer_f callback = nullptr;
    int beforeWindows = 0;
    void* refcon = nullptr;
};

struct HotKey {
    int plugin = 0;
    char virtualKey = 0;
    XPLMKeyFlags flags = 0;
    std::string description;
    XPLMHotKey_f callback = nullptr;
    void* refcon = nullptr;
};

struct KeyState {
    std::vector<KeySniffer> sniffers;
    std::map<uintptr_t, HotKey> hotKeys;
    uintptr_t nextHotKey = 1;
    uint64_t nextSerial = 1;
};

KeyState& keys() {
    static KeyState s;
    return s;
}

void listLeaks(int plugin, std::vector<std::string>& out) {
    for (auto& k : keys().sniffers)
        if (k.plugin == plugin) out.push_back("key sniffer still registered");
    for (auto& [id, h] : keys().hotKeys)
        if (h.plugin == plugin) out.push_back("hot key \"" + h.description + "\" still registered");
}

HostModule keysModule("keys", [] { keys() = KeyState{}; }, listLeaks);

}  // namespace

void key(char keyChar, int flags, int virtualKey) {
    KeyState& s = keys();
    auto sniff = [&](int before) {
        std::vector<KeySniffer> list = s.sniffers;
        for (const KeySniffer& k : list) {
            if ((k.beforeWindows != 0) != (before != 0) || !pluginActive(k.plugin)) continue;
            PluginScope scope(k.plugin);
            if (k.callback(keyChar, flags, static_cast<char>(virtualKey), k.refcon) == 0) return true;
        }
        return false;
    };
    if (sniff(1)) return;
    if (sendKeyToFocusedWindow(keyChar, flags, virtualKey)) return;
    if (sniff(0)) return;
    if (!(flags & xplm_DownFlag)) return;
    const int modifiers = flags & (xplm_ShiftFlag | xplm_OptionAltFlag | xplm_ControlFlag);
    std::map<uintptr_t, HotKey> copy = s.hotKeys;
    for (auto& [id, h] : copy) {
        if (static_cast<unsigned char>(h.virtualKey) != static_cast<unsigned char>(virtualKey)) continue;
        if ((h.flags & (xplm_ShiftFlag | xplm_OptionAltFlag | xplm_ControlFlag)) != modifiers) continue;
        if (!pluginActive(h.plugin) || !h.callback) continue;
        PluginScope scope(h.plugin);
        h.callback(h.refcon);
    }
}

void typeKey(char keyChar, int virtualKey, int modifierFlags) {
    key(keyChar, modifierFlags | xplm_DownFlag, virtualKey);
    key(keyChar, modifierFlags | xplm_UpFlag, virtualKey);
}

}  // namespace xphost

using namespace xphost;

int XPLMRegisterKeySniffer(XPLMKeySniffer_f callback, int beforeWindows, void* refcon) {
    if (!checkThread("XPLMRegisterKeySniffer") || !callback) return 0;
    keys().sniffers.push_back(KeySniffer{keys().nextSerial++, callingPlugin(), callback, beforeWindows, refcon});
    return 1;
}

int XPLMUnregisterKeySniffer(XPLMKeySniffer_f callback, int beforeWindows, void* refcon) {
    if (!checkThread("XPLMUnregisterKeySniffer")) return 0;
    auto& list = keys().sniffers;
    for (auto it = list.begin(); it != list.end(); ++it)
        if (it->callback == callback && (it->beforeWindows != 0) == (beforeWindows != 0) && it->refcon == refcon) {
            list.erase(it);
            return 1;
        }
    return 0;
}

XPLMHotKeyID XPLMRegisterHotKey(char virtualKey, XPLMKeyFlags flags, const char* description, XPLMHotKey_f callback,
                                void* refcon) {
    if (!checkThread("XPLMRegisterHotKey")) return nullptr;
    const uintptr_t id = keys().nextHotKey++;
    keys().hotKeys[id] = HotKey{callingPlugin(), virtualKey, flags, description ? description : "", callback, refcon};
    return reinterpret_cast<XPLMHotKeyID>(id);
}

void XPLMUnregisterHotKey(XPLMHotKeyID id) {
    if (!checkThread("XPLMUnregisterHotKey")) return;
    keys().hotKeys.erase(reinterpret_cast<uintptr_t>(id));
}

int XPLMCountHotKeys() {
    if (!checkThread("XPLMCountHotKeys")) return 0;
    return static_cast<int>(keys().hotKeys.size());
}

XPLMHotKeyID XPLMGetNthHotKey(int index) {
    if (!checkThread("XPLMGetNthHotKey") || index < 0) return nullptr;
    for (auto& [id, h] : keys().hotKeys)
        if (index-- == 0) return reinterpret_cast<XPLMHotKeyID>(id);
    return nullptr;
}

void XPLMGetHotKeyInfo(XPLMHotKeyID id, char* virtualKey, XPLMKeyFlags* flags, char* description,
                       XPLMPluginID* plugin) {
    if (!checkThread("XPLMGetHotKeyInfo")) return;
    auto it = keys().hotKeys.find(reinterpret_cast<uintptr_t>(id));
    if (it == keys().hotKeys.end()) return;
    if (virtualKey) *virtualKey = it->second.virtualKey;
    if (flags) *flags = it->second.flags;
    if (description) std::strcpy(description, it->second.description.c_str());
    if (plugin) *plugin = it->second.plugin;
}

void XPLMSetHotKeyCombination(XPLMHotKeyID id, char virtualKey, XPLMKeyFlags flags) {
    if (!checkThread("XPLMSetHotKeyCombination")) return;
    auto it = keys().hotKeys.find(reinterpret_cast<uintptr_t>(id));
    if (it == keys().hotKeys.end()) return;
    it->second.virtualKey = virtualKey;
    it->second.flags = flags;
}
