#include "data/events.h"

namespace {
DataEvents subscribers;
}

void subscribeDataEvents(const DataEvents& events) { subscribers = events; }
void unsubscribeDataEvents() { subscribers = DataEvents(); }

void raiseSelectionChanged() {
    if (subscribers.selectionChanged) subscribers.selectionChanged();
}

void raiseRestoreBegun(Camera* camera) {
    if (subscribers.restoreBegun) subscribers.restoreBegun(camera);
}

void raiseCallbackCameraChanged(Camera* camera) {
    if (subscribers.callbackCameraChanged) subscribers.callbackCameraChanged(camera);
}
