// Menus: the Plugins and Aircraft menus, plug-ins' menus and items with their check
// marks and handlers, picking an item by its path, and what is left after stop.
#include <algorithm>
#include <memory>
#include <sstream>

#include "XPLMMenus.h"
#include "host/host_internal.h"

namespace xphost {

namespace {

struct Menu;

struct MenuItem {
    std::string name;
    void* itemRef = nullptr;
    int check = xplm_Menu_NoCheck;
    bool enabled = true;
    bool separator = false;
    XPLMCommandRef command = nullptr;
    Menu* submenu = nullptr;
    int owner = 0;
};

struct Menu {
    std::string name;
    Menu* parent = nullptr;
    XPLMMenuHandler_f handler = nullptr;
    void* menuRef = nullptr;
    int owner = 0;
    bool dead = false;
    std::vector<MenuItem> items;
};

struct MenuTable {
    // Never freed before a reset: a destroyed menu's handle stays a valid pointer.
    std::vector<std::unique_ptr<Menu>> all;
    Menu* plugins = nullptr;
    Menu* aircraft = nullptr;
    std::vector<Menu*> bar;  // top-level menus, in order
};

MenuTable& menus() {
    static MenuTable t;
    return t;
}

Menu* newMenu(const std::string& name, int owner) {
    menus().all.push_back(std::make_unique<Menu>());
    Menu* m = menus().all.back().get();
    m->name = name;
    m->owner = owner;
    return m;
}

Menu* live(XPLMMenuID id) {
    auto* m = static_cast<Menu*>(id);
    return m && !m->dead ? m : nullptr;
}

MenuItem* itemAt(XPLMMenuID id, int index) {
    Menu* m = live(id);
    if (!m || index < 0 || index >= static_cast<int>(m->items.size())) return nullptr;
    return &m->items[index];
}

void destroy(Menu* m) {
    if (!m || m->dead) return;
    m->dead = true;
    for (auto& item : m->items) destroy(item.submenu);
    if (m->parent)
        for (auto& item : m->parent->items)
            if (item.submenu == m) item.submenu = nullptr;
    auto& bar = menus().bar;
    bar.erase(std::remove(bar.begin(), bar.end(), m), bar.end());
}

void resetMenus() {
    MenuTable& t = menus();
    t = MenuTable();
    t.plugins = newMenu("Plugins", 0);
    t.aircraft = newMenu("Aircraft", 0);
    t.bar = {t.plugins, t.aircraft};
}

void listLeaks(int plugin, std::vector<std::string>& out) {
    for (auto& m : menus().all) {
        if (m->dead) continue;
        if (m->owner == plugin) out.push_back("menu \"" + m->name + "\"");
        // Items a plug-in put into the simulator's own menus.
        if (m->owner == 0)
            for (auto& item : m->items)
                if (item.owner == plugin) out.push_back("menu item \"" + item.name + "\" in " + m->name);
    }
}

HostModule module("menus", resetMenus, listLeaks);

void describe(const Menu* m, int depth, std::ostringstream& out) {
    for (const auto& item : m->items) {
        out << std::string(depth * 2, ' ');
        if (item.separator) {
            out << "----\n";
            continue;
        }
        out << (item.check == xplm_Menu_Checked ? "[x] " : item.check == xplm_Menu_Unchecked ? "[ ] " : "")
            << item.name << (item.enabled ? "" : " (disabled)") << "\n";
        if (item.submenu && !item.submenu->dead) describe(item.submenu, depth + 1, out);
    }
}

std::vector<std::string> split(const std::string& path) {
    std::vector<std::string> parts;
    std::string part;
    for (char c : path) {
        if (c == '/') {
            parts.push_back(part);
            part.clear();
        } else {
            part += c;
        }
    }
    parts.push_back(part);
    return parts;
}

ScenarioVerbRegistration menuVerb("menu", "menu \"Plugins/NAME/ITEM\"   (picks a menu item)", [](ScenarioLine& line) {
    if (line.args.size() != 2) return std::string("usage: menu \"Plugins/NAME/ITEM\"");
    std::string error;
    if (!pickMenuItem(line.args[1], error)) return error;
    return std::string();
});

ScenarioVerbRegistration expectMenuVerb(
    "expect_menu", "expect_menu \"Plugins/NAME/ITEM\" enabled|disabled|absent", [](ScenarioLine& line) {
        if (line.args.size() != 3) return std::string("usage: expect_menu \"Plugins/NAME/ITEM\" enabled|disabled|absent");
        std::string state = menuItemState(line.args[1]);
        if (state != line.args[2]) return line.args[1] + " is " + state + ", not " + line.args[2];
        return std::string();
    });

ScenarioVerbRegistration menusVerb("menus", "menus   (prints the menu bar)", [](ScenarioLine& line) {
    *line.out << menuText();
    return std::string();
});

}  // namespace

std::string menuText() {
    ensureInitialized();
    std::ostringstream out;
    for (Menu* m : menus().bar) {
        out << m->name << "\n";
        describe(m, 1, out);
    }
    return out.str();
}

std::string menuItemState(const std::string& path) {
    ensureInitialized();
    std::vector<std::string> parts = split(path);
    Menu* menu = nullptr;
    for (Menu* m : menus().bar)
        if (m->name == parts[0]) menu = m;
    for (size_t i = 1; menu && i < parts.size(); ++i) {
        MenuItem* found = nullptr;
        for (auto& item : menu->items)
            if (!item.separator && item.name == parts[i]) {
                found = &item;
                break;
            }
        if (!found) break;
        if (i + 1 == parts.size()) return found->enabled ? "enabled" : "disabled";
        menu = found->submenu && !found->submenu->dead ? found->submenu : nullptr;
    }
    return "absent";
}

bool pickMenuItem(const std::string& path, std::string& error) {
    ensureInitialized();
    std::vector<std::string> parts = split(path);
    Menu* menu = nullptr;
    for (Menu* m : menus().bar)
        if (m->name == parts[0]) menu = m;
    if (!menu) {
        error = "no menu " + parts[0];
        return false;
    }
    for (size_t i = 1; i < parts.size(); ++i) {
        MenuItem* found = nullptr;
        int index = 0;
        for (auto& item : menu->items) {
            if (!item.separator && item.name == parts[i]) {
                found = &item;
                break;
            }
            ++index;
        }
        if (!found) {
            error = "no item \"" + parts[i] + "\" in " + menu->name;
            return false;
        }
        if (i + 1 < parts.size()) {
            if (!found->submenu || found->submenu->dead) {
                error = "\"" + parts[i] + "\" has no submenu";
                return false;
            }
            menu = found->submenu;
            continue;
        }
        if (!found->enabled) {
            error = "\"" + parts[i] + "\" is disabled";
            return false;
        }
        if (found->command) {
            XPLMCommandOnce(found->command);
        } else if (menu->handler && pluginActive(menu->owner)) {
            XPLMMenuHandler_f handler = menu->handler;
            void* menuRef = menu->menuRef;
            void* itemRef = found->itemRef;
            PluginScope scope(menu->owner);
            handler(menuRef, itemRef);
        }
        return true;
    }
    error = "no item named in " + path;
    return false;
}

}  // namespace xphost

using namespace xphost;

XPLMMenuID XPLMFindPluginsMenu(void) {
    if (!checkThread("XPLMFindPluginsMenu")) return nullptr;
    return menus().plugins;
}

XPLMMenuID XPLMFindAircraftMenu(void) {
    if (!checkThread("XPLMFindAircraftMenu")) return nullptr;
    return menus().aircraft;
}

XPLMMenuID XPLMCreateMenu(const char* inName, XPLMMenuID inParentMenu, int inParentItem, XPLMMenuHandler_f inHandler,
                          void* inMenuRef) {
    if (!checkThread("XPLMCreateMenu")) return nullptr;
    Menu* m = newMenu(inName ? inName : "", callingPlugin());
    m->handler = inHandler;
    m->menuRef = inMenuRef;
    if (inParentMenu) {
        MenuItem* parentItem = itemAt(inParentMenu, inParentItem);
        if (!parentItem) {
            m->dead = true;
            return nullptr;
        }
        m->parent = static_cast<Menu*>(inParentMenu);
        parentItem->submenu = m;
    } else {
        menus().bar.push_back(m);
    }
    return m;
}

void XPLMDestroyMenu(XPLMMenuID inMenuID) {
    if (!checkThread("XPLMDestroyMenu")) return;
    destroy(live(inMenuID));
}

void XPLMClearAllMenuItems(XPLMMenuID inMenuID) {
    if (!checkThread("XPLMClearAllMenuItems")) return;
    Menu* m = live(inMenuID);
    if (!m) return;
    int plugin = callingPlugin();
    // In the simulator's own menus a plug-in clears only its own items.
    auto& items = m->items;
    for (auto& item : items)
        if (m->owner != 0 || item.owner == plugin) destroy(item.submenu);
    items.erase(std::remove_if(items.begin(), items.end(),
                               [&](const MenuItem& item) { return m->owner != 0 || item.owner == plugin; }),
                items.end());
}

int XPLMAppendMenuItem(XPLMMenuID inMenu, const char* inItemName, void* inItemRef, int inDeprecatedAndIgnored) {
    if (!checkThread("XPLMAppendMenuItem")) return -1;
    Menu* m = live(inMenu);
    if (!m) return -1;
    MenuItem item;
    item.name = inItemName ? inItemName : "";
    item.itemRef = inItemRef;
    item.owner = callingPlugin();
    m->items.push_back(item);
    return static_cast<int>(m->items.size()) - 1;
}

int XPLMAppendMenuItemWithCommand(XPLMMenuID inMenu, const char* inItemName, XPLMCommandRef inCommandToExecute) {
    if (!checkThread("XPLMAppendMenuItemWithCommand")) return -1;
    int index = XPLMAppendMenuItem(inMenu, inItemName, nullptr, 0);
    if (MenuItem* item = itemAt(inMenu, index)) item->command = inCommandToExecute;
    return index;
}

void XPLMAppendMenuSeparator(XPLMMenuID inMenu) {
    if (!checkThread("XPLMAppendMenuSeparator")) return;
    int index = XPLMAppendMenuItem(inMenu, "", nullptr, 0);
    if (MenuItem* item = itemAt(inMenu, index)) item->separator = true;
}

void XPLMSetMenuItemName(XPLMMenuID inMenu, int inIndex, const char* inItemName, int inDeprecatedAndIgnored) {
    if (!checkThread("XPLMSetMenuItemName")) return;
    if (MenuItem* item = itemAt(inMenu, inIndex)) item->name = inItemName ? inItemName : "";
}

void XPLMCheckMenuItem(XPLMMenuID inMenu, int index, XPLMMenuCheck inCheck) {
    if (!checkThread("XPLMCheckMenuItem")) return;
    if (MenuItem* item = itemAt(inMenu, index)) item->check = inCheck;
}

void XPLMCheckMenuItemState(XPLMMenuID inMenu, int index, XPLMMenuCheck* outCheck) {
    if (!checkThread("XPLMCheckMenuItemState") || !outCheck) return;
    MenuItem* item = itemAt(inMenu, index);
    *outCheck = item ? item->check : xplm_Menu_NoCheck;
}

void XPLMEnableMenuItem(XPLMMenuID inMenu, int index, int enabled) {
    if (!checkThread("XPLMEnableMenuItem")) return;
    if (MenuItem* item = itemAt(inMenu, index)) item->enabled = enabled != 0;
}

void XPLMRemoveMenuItem(XPLMMenuID inMenu, int inIndex) {
    if (!checkThread("XPLMRemoveMenuItem")) return;
    Menu* m = live(inMenu);
    if (!m || inIndex < 0 || inIndex >= static_cast<int>(m->items.size())) return;
    destroy(m->items[inIndex].submenu);
    m->items.erase(m->items.begin() + inIndex);
}
