#include "host/joystick.h"

#include "host/host_internal.h"

namespace xphost {
namespace {

struct JoystickRefs {
    SimDataRef* mappedAvail = nullptr;
    SimDataRef* mappedValue = nullptr;
    SimDataRef* assignments = nullptr;
    SimDataRef* values = nullptr;
    SimDataRef* minimum = nullptr;
    SimDataRef* maximum = nullptr;
    SimDataRef* reverse = nullptr;
};

JoystickRefs refs;

// Nothing assigned: every mapped function unavailable, every raw axis unassigned.
void defineJoystick() {
    refs.mappedAvail = defineIntArray("sim/joystick/joy_mapped_axis_avail", kMappedAxisSlots, false);
    refs.mappedValue = defineFloatArray("sim/joystick/joy_mapped_axis_value", kMappedAxisSlots, false);
    refs.assignments = defineIntArray("sim/joystick/joystick_axis_assignments", kRawAxisSlots, true);
    refs.values = defineFloatArray("sim/joystick/joystick_axis_values", kRawAxisSlots, false);
    refs.minimum = defineFloatArray("sim/joystick/joystick_axis_minimum", kRawAxisSlots, true);
    refs.maximum = defineFloatArray("sim/joystick/joystick_axis_maximum", kRawAxisSlots, true);
    refs.reverse = defineIntArray("sim/joystick/joystick_axis_reverse", kRawAxisSlots, true);
}

HostModule joystickModule("joystick", defineJoystick);

bool inRange(int index, int size) { return index >= 0 && index < size; }

}  // namespace

void setMappedAxis(int index, bool available, float value) {
    ensureInitialized();
    if (!inRange(index, kMappedAxisSlots)) return;
    refs.mappedAvail->ints[index] = available ? 1 : 0;
    refs.mappedValue->floats[index] = value;
}

void setRawAxis(int position, int assignment, float value, float minimum, float maximum, int reverse) {
    ensureInitialized();
    if (!inRange(position, kRawAxisSlots)) return;
    refs.assignments->ints[position] = assignment;
    refs.values->floats[position] = value;
    refs.minimum->floats[position] = minimum;
    refs.maximum->floats[position] = maximum;
    refs.reverse->ints[position] = reverse;
}

void setRawAxisValue(int position, float value) {
    ensureInitialized();
    if (!inRange(position, kRawAxisSlots)) return;
    refs.values->floats[position] = value;
}

}  // namespace xphost
