// The "Calibrate View Axis" panel: three steps in which the user sweeps each view axis,
// centres it (its centre setting is measured) and sets the null zone. While it is open
// no axis acts on the camera. "Finish" writes the settings file; "Cancel" puts back the
// centres and null zone it found; its close box leaves the settings as they stand,
// unwritten. At most one exists; it destroys itself when done.
#pragma once

#include <cstdint>

#include "inputs/axis_input.h"
#include "panels/kvt_im_window.h"

class CalibrateViewAxisWidget : public KvtImWindow {
public:
    CalibrateViewAxisWidget(int left, int top, int right, int bottom, int decoration);
    ~CalibrateViewAxisWidget() override;

    void ConfigureContext() override;
    void BuildContents() override;
    // The close box: calibration ends with the settings as they stand.
    void OnHidden() override;

    // The buttons.
    void next();
    void finish();
    void cancel();

    int32_t phase = 0;
    float savedNullZone = 0;
    float savedCentres[kAxisCount] = {};
};

// The menu item: opens the panel (an open one is only shown again, so that the
// centres it keeps aside are never the zeroed ones).
void openCalibrateViewAxisPanel();
// The open panel, or null.
CalibrateViewAxisWidget* calibrateViewAxisWidget();
// At host disable: an open panel is cancelled and goes at once.
void destroyCalibrateViewAxisPanel();

// A progress bar's fill for an axis reading: the zoom from 0, the others about the middle,
// in steps of 1/500.
float calibrationBarFraction(int32_t axis, float value);
