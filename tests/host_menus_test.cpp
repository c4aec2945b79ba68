// The host's menus: a plug-in's submenu in the Plugins menu, picking items by path,
// check marks, and menus left behind after XPluginStop.
#include <gtest/gtest.h>

#include <cstring>

#include "XPLMMenus.h"
#include "XPLMPlugin.h"
#include "host/host.h"

namespace {

std::vector<std::string> picks;
void handler(void* menuRef, void* itemRef) {
    picks.push_back(std::string(static_cast<const char*>(menuRef)) + "/" + static_cast<const char*>(itemRef));
}

XPLMMenuID built = nullptr;
int start(char* name, char* signature, char* description) {
    std::strcpy(name, "Menu Plugin");
    std::strcpy(signature, "test.menus");
    description[0] = 0;
    return 1;
}
int enable() {
    static char menuRef[] = "menu", first[] = "first", second[] = "second";
    int item = XPLMAppendMenuItem(XPLMFindPluginsMenu(), "Menu Plugin", nullptr, 0);
    built = XPLMCreateMenu("Menu Plugin", XPLMFindPluginsMenu(), item, handler, menuRef);
    XPLMAppendMenuItem(built, "First", first, 0);
    XPLMAppendMenuSeparator(built);
    XPLMAppendMenuItem(built, "Second", second, 0);
    XPLMAppendMenuItemWithCommand(built, "Chase", XPLMFindCommand("sim/view/chase"));
    XPLMCheckMenuItem(built, 0, xplm_Menu_Checked);
    XPLMEnableMenuItem(built, 2, 0);
    return 1;
}
void nothing() {}
void receive(int, int, void*) {}

TEST(HostMenus, PluginMenusArePickedByPathAndReportedWhenLeft) {
    xphost::reset();
    picks.clear();
    xphost::EntryPoints e{start, enable, nothing, nothing, receive};
    int id = xphost::loadPlugin(e, "/tmp/menus.xpl");
    ASSERT_TRUE(xphost::enablePlugin(id));

    EXPECT_EQ(xphost::menuText(),
              "Plugins\n  Menu Plugin\n    [x] First\n    ----\n    Second (disabled)\n    Chase\nAircraft\n");
    std::string error;
    EXPECT_TRUE(xphost::pickMenuItem("Plugins/Menu Plugin/First", error)) << error;
    EXPECT_EQ(picks, (std::vector<std::string>{"menu/first"}));
    EXPECT_FALSE(xphost::pickMenuItem("Plugins/Menu Plugin/Second", error));
    EXPECT_EQ(error, "\"Second\" is disabled");
    EXPECT_TRUE(xphost::pickMenuItem("Plugins/Menu Plugin/Chase", error));
    EXPECT_EQ(xphost::viewType(), xphost::viewChase);
    EXPECT_FALSE(xphost::pickMenuItem("Plugins/Nothing", error));

    XPLMMenuCheck check = xplm_Menu_NoCheck;
    XPLMCheckMenuItemState(built, 0, &check);
    EXPECT_EQ(check, xplm_Menu_Checked);

    // The plug-in never removes its menu.
    xphost::stopPlugin(id);
    ASSERT_EQ(xphost::leaks().size(), 2u);
    EXPECT_EQ(xphost::leaks()[0], "Menu Plugin: menu item \"Menu Plugin\" in Plugins");
    EXPECT_EQ(xphost::leaks()[1], "Menu Plugin: menu \"Menu Plugin\"");
    // A stopped plug-in's handler is never called again.
    EXPECT_TRUE(xphost::pickMenuItem("Plugins/Menu Plugin/First", error));
    EXPECT_EQ(picks.size(), 1u);
}

}  // namespace
