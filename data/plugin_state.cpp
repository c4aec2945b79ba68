#include "data/plugin_state.h"

namespace {
PluginState gState;
}

PluginState& pluginState() { return gState; }
