// The simulator's joystick datarefs: the mapped axes (availability and value by the
// simulator's axis function index) and the raw arrays of every hardware axis
// (assignment code, value, calibration, reverse flag). Tests and scenarios move axes
// here; plug-ins read them through XPLM.
#pragma once

namespace xphost {

constexpr int kMappedAxisSlots = 100;
constexpr int kRawAxisSlots = 500;

// A mapped axis function (e.g. 41 view heading): whether one is assigned, and its value.
void setMappedAxis(int index, bool available, float value);
// One hardware axis of the raw arrays, with its assignment code and calibration.
void setRawAxis(int position, int assignment, float value, float minimum, float maximum, int reverse);
// Moves a raw axis without touching its calibration.
void setRawAxisValue(int position, float value);

}  // namespace xphost
