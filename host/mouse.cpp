// The mouse of the simulator stand-in: position, buttons, wheel, the XPLM location
// calls, drags of held buttons once a frame, and the scenario verbs that drive it.
#include "host/mouse.h"

#include "XPLMDisplay.h"
#include "host/host_internal.h"

namespace xphost {

namespace {

struct MouseDevice {
    int x = 512, y = 384;
    bool down[3] = {false, false, false};
    MouseRouter router;
};

MouseDevice& device() {
    static MouseDevice state;
    return state;
}

int indexOf(MouseButton button) { return static_cast<int>(button); }

bool route(const MouseEvent& event) {
    MouseRouter& router = device().router;
    return router ? router(event) : false;
}

MouseEvent buttonEvent(MouseEventKind kind, MouseButton button) {
    MouseEvent event;
    event.kind = kind;
    event.button = button;
    event.x = device().x;
    event.y = device().y;
    return event;
}

// The simulator sends a held button's drag at every frame, moved or not.
void sendDrags() {
    for (int i = 0; i < 3; ++i) {
        if (!device().down[i]) continue;
        route(buttonEvent(MouseEventKind::Drag, static_cast<MouseButton>(i)));
    }
}

HostModule module("mouse", [] {
    MouseRouter router = std::move(device().router);
    device() = MouseDevice{};
    device().router = std::move(router);
    addFrameHook(FramePoint::Input, "mouse drags", sendDrags);
});

bool parseInt(const std::string& text, int& value) {
    double d = 0;
    if (!parseNumber(text, d)) return false;
    value = static_cast<int>(d);
    return true;
}

bool parseButton(const std::string& text, MouseButton& button) {
    if (text == "left") button = MouseButton::Left;
    else if (text == "right") button = MouseButton::Right;
    else if (text == "middle") button = MouseButton::Middle;
    else return false;
    return true;
}

ScenarioVerbRegistration moveVerb("mouse", "mouse X Y | mouse down|up left|right|middle | mouse wheel CLICKS",
                                  [](ScenarioLine& line) -> std::string {
                                      const auto& a = line.args;
                                      int x = 0, y = 0;
                                      MouseButton button;
                                      if (a.size() == 3 && parseInt(a[1], x) && parseInt(a[2], y)) {
                                          setMousePosition(x, y);
                                      } else if (a.size() == 3 && a[1] == "down" && parseButton(a[2], button)) {
                                          pressMouseButton(button);
                                      } else if (a.size() == 3 && a[1] == "up" && parseButton(a[2], button)) {
                                          releaseMouseButton(button);
                                      } else if (a.size() == 3 && a[1] == "wheel" && parseInt(a[2], x)) {
                                          turnMouseWheel(x);
                                      } else {
                                          return "expected 'mouse X Y', 'mouse down|up left|right|middle' or "
                                                 "'mouse wheel CLICKS'";
                                      }
                                      return "";
                                  });

}  // namespace

void setMousePosition(int x, int y) {
    device().x = x;
    device().y = y;
}

int mouseX() { return device().x; }
int mouseY() { return device().y; }

void pressMouseButton(MouseButton button) {
    if (device().down[indexOf(button)]) return;
    device().down[indexOf(button)] = true;
    route(buttonEvent(MouseEventKind::Down, button));
}

void releaseMouseButton(MouseButton button) {
    if (!device().down[indexOf(button)]) return;
    device().down[indexOf(button)] = false;
    route(buttonEvent(MouseEventKind::Up, button));
}

bool mouseButtonDown(MouseButton button) { return device().down[indexOf(button)]; }

void turnMouseWheel(int clicks, int axis) {
    MouseEvent event;
    event.kind = MouseEventKind::Wheel;
    event.x = device().x;
    event.y = device().y;
    event.wheelAxis = axis;
    event.clicks = clicks;
    route(event);
}

void setMouseRouter(MouseRouter router) { device().router = std::move(router); }

}  // namespace xphost

// One monitor at the origin: global desktop boxels and the old screen coordinates agree.
void XPLMGetMouseLocation(int* outX, int* outY) {
    if (!xphost::checkThread("XPLMGetMouseLocation")) return;
    if (outX) *outX = xphost::mouseX();
    if (outY) *outY = xphost::mouseY();
}

void XPLMGetMouseLocationGlobal(int* outX, int* outY) {
    if (!xphost::checkThread("XPLMGetMouseLocationGlobal")) return;
    if (outX) *outX = xphost::mouseX();
    if (outY) *outY = xphost::mouseY();
}

// The platform layer's optional query of the physical middle button.
extern "C" __attribute__((visibility("default"))) int vistarig_middle_button_down(void) {
    return xphost::mouseButtonDown(xphost::MouseButton::Middle) ? 1 : 0;
}
