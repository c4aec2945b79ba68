// What the camera data tells the layers above it without knowing them: a table of
// callbacks, one subscriber each, that the frame driver fills at host enable and
// empties at host disable. An empty slot drops the event.
#pragma once

struct Camera;

struct DataEvents {
    // The current category or camera changed; the next frame acts on it.
    void (*selectionChanged)() = nullptr;
    // The camera is sent back to its home position; the next frame glides from where
    // it stands now.
    void (*restoreBegun)(Camera* camera) = nullptr;
    // The camera the simulator's camera callback reads, while the set's storage is
    // reloaded under it.
    void (*callbackCameraChanged)(Camera* camera) = nullptr;
};

void subscribeDataEvents(const DataEvents& events);
void unsubscribeDataEvents();

// Raised by the data layer.
void raiseSelectionChanged();
void raiseRestoreBegun(Camera* camera);
void raiseCallbackCameraChanged(Camera* camera);
