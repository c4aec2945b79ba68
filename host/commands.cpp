// Commands: creation and lookup, handlers before and after the simulator's own
// handling, the three phases, held commands, and the view selection that the
// simulator's view commands perform.
#include <algorithm>
#include <map>
#include <memory>

#include "XPLMUtilities.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

struct Handler {
    XPLMCommandCallback_f fn;
    int before;
    void* refcon;
    int plugin;
    uint64_t id;
};

// Never freed, like datarefs: a handle stays a valid pointer across resets.
struct Command {
    std::string name;
    std::string description;
    bool defined = false;
    std::function<void(int)> simAction;
    std::vector<Handler> handlers;
    bool held = false;
    int simCount = 0;
};

struct CommandTable {
    std::map<std::string, std::unique_ptr<Command>> byName;
    std::vector<Command*> held;  // in order of their begin
    uint64_t nextHandlerId = 1;
};

CommandTable& commands() {
    static CommandTable t;
    return t;
}

Command* entryFor(const std::string& name) {
    auto& slot = commands().byName[name];
    if (!slot) {
        slot = std::make_unique<Command>();
        slot->name = name;
    }
    return slot.get();
}

Command* live(XPLMCommandRef ref) {
    auto* c = static_cast<Command*>(ref);
    return c && c->defined ? c : nullptr;
}

bool stillRegistered(const Command* c, uint64_t id) {
    for (auto& h : c->handlers)
        if (h.id == id) return true;
    return false;
}

// Runs the handlers of one side; false when one of them stopped the command.
bool runSide(Command* c, int phase, bool before) {
    auto snapshot = c->handlers;  // a handler may register or unregister
    for (auto& h : snapshot) {
        if ((h.before != 0) != before || !stillRegistered(c, h.id) || !pluginActive(h.plugin)) continue;
        int result;
        {
            PluginScope scope(h.plugin);
            result = h.fn(c, phase, h.refcon);
        }
        if (result == 0) return false;
    }
    return true;
}

void dispatch(Command* c, int phase) {
    if (!runSide(c, phase, true)) return;
    if (c->simAction) {
        if (phase == xplm_CommandBegin) c->simCount += 1;
        c->simAction(phase);
    }
    runSide(c, phase, false);
}

}  // namespace

void resetCommands() {
    CommandTable& t = commands();
    for (auto& [name, c] : t.byName) {
        c->defined = false;
        c->handlers.clear();
        c->held = false;
        c->simAction = nullptr;
        c->simCount = 0;
    }
    t.held.clear();
}

void defineSimCommand(const char* name, const char* description, std::function<void(int)> action) {
    Command* c = entryFor(name);
    c->defined = true;
    c->description = description ? description : "";
    c->simAction = std::move(action);
}

void runHeldCommands() {
    auto held = commands().held;
    for (Command* c : held)
        if (c->held) dispatch(c, xplm_CommandContinue);
}

void listCommandLeaks(int plugin, std::vector<std::string>& out) {
    for (auto& [name, c] : commands().byName)
        for (auto& h : c->handlers)
            if (h.plugin == plugin)
                out.push_back(std::string("command handler ") + (h.before ? "(before) " : "(after) ") + name);
}

void dropCommandHandlersOf(int plugin) {
    for (auto& [name, c] : commands().byName) {
        auto& hs = c->handlers;
        hs.erase(std::remove_if(hs.begin(), hs.end(), [&](const Handler& h) { return h.plugin == plugin; }),
                 hs.end());
    }
}

bool runCommand(const std::string& name, Phase phase) {
    ensureInitialized();
    auto& m = commands().byName;
    auto it = m.find(name);
    if (it == m.end() || !it->second->defined) return false;
    Command* c = it->second.get();
    switch (phase) {
        case Phase::Begin: XPLMCommandBegin(c); break;
        case Phase::End: XPLMCommandEnd(c); break;
        case Phase::Once: XPLMCommandOnce(c); break;
        case Phase::Continue: dispatch(c, xplm_CommandContinue); break;
    }
    return true;
}

bool commandExists(const std::string& name) {
    ensureInitialized();
    auto& m = commands().byName;
    auto it = m.find(name);
    return it != m.end() && it->second->defined;
}

int simCommandCount(const std::string& name) {
    auto& m = commands().byName;
    auto it = m.find(name);
    return it == m.end() ? 0 : it->second->simCount;
}

}  // namespace xphost

using namespace xphost;

XPLMCommandRef XPLMFindCommand(const char* inName) {
    if (!checkThread("XPLMFindCommand") || !inName) return nullptr;
    auto& m = commands().byName;
    auto it = m.find(inName);
    if (it == m.end() || !it->second->defined) return nullptr;
    return it->second.get();
}

XPLMCommandRef XPLMCreateCommand(const char* inName, const char* inDescription) {
    if (!checkThread("XPLMCreateCommand") || !inName) return nullptr;
    Command* c = entryFor(inName);
    if (!c->defined) {
        c->defined = true;
        c->description = inDescription ? inDescription : "";
    }
    return c;
}

void XPLMCommandBegin(XPLMCommandRef inCommand) {
    if (!checkThread("XPLMCommandBegin")) return;
    Command* c = live(inCommand);
    if (!c || c->held) return;
    c->held = true;
    commands().held.push_back(c);
    dispatch(c, xplm_CommandBegin);
}

void XPLMCommandEnd(XPLMCommandRef inCommand) {
    if (!checkThread("XPLMCommandEnd")) return;
    Command* c = live(inCommand);
    if (!c || !c->held) return;
    c->held = false;
    auto& h = commands().held;
    h.erase(std::remove(h.begin(), h.end(), c), h.end());
    dispatch(c, xplm_CommandEnd);
}

void XPLMCommandOnce(XPLMCommandRef inCommand) {
    if (!checkThread("XPLMCommandOnce")) return;
    Command* c = live(inCommand);
    if (!c) return;
    dispatch(c, xplm_CommandBegin);
    dispatch(c, xplm_CommandEnd);
}

void XPLMRegisterCommandHandler(XPLMCommandRef inComand, XPLMCommandCallback_f inHandler, int inBefore,
                                void* inRefcon) {
    if (!checkThread("XPLMRegisterCommandHandler")) return;
    Command* c = live(inComand);
    if (!c || !inHandler) return;
    c->handlers.push_back({inHandler, inBefore, inRefcon, callingPlugin(), commands().nextHandlerId++});
}

void XPLMUnregisterCommandHandler(XPLMCommandRef inComand, XPLMCommandCallback_f inHandler, int inBefore,
                                  void* inRefcon) {
    if (!checkThread("XPLMUnregisterCommandHandler")) return;
    Command* c = live(inComand);
    if (!c) return;
    auto& hs = c->handlers;
    for (auto it = hs.begin(); it != hs.end(); ++it) {
        if (it->fn == inHandler && (it->before != 0) == (inBefore != 0) && it->refcon == inRefcon) {
            hs.erase(it);
            return;
        }
    }
}
