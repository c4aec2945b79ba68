// The queues through which any layer asks to tell the user something: message boxes
// and spoken announcements. Asking only queues; the panels own the delivery (they
// open the boxes from a flight loop of their own and speak from the main flight
// loop), so nothing is drawn or spoken inside another window's frame or in the middle
// of a file operation.
#pragma once

#include <string>
#include <vector>

// Called by a box's "Ok" button, in the frame of the click.
using MessageBoxCallback = void (*)();

struct MessageBoxRequest {
    std::string title;
    std::string text;
    MessageBoxCallback callback = nullptr;
};

// A box with a single "Ok" button.
void showMessageBox(const std::string& title, const std::string& text);
// A box with "Cancel" and "Ok"; only "Ok" calls `callback`.
void showMessageBoxWithCallback(const std::string& title, const std::string& text, MessageBoxCallback callback);
// printf-style; does nothing while DISABLE_VOICE_PROMPTS is set.
void announce(const char* format, ...) __attribute__((format(printf, 1, 2)));

// What is waiting, oldest first, for tests and the runner.
std::vector<MessageBoxRequest> queuedMessageBoxes();
std::vector<std::string> queuedAnnouncements();

// ---- for the one deliverer
// Told after every box request, so that it can see to its delivery; null for none.
void setMessageBoxListener(void (*requested)());
// The oldest waiting request, taken off the queue; false when none waits.
bool takeMessageBox(MessageBoxRequest& request);
bool takeAnnouncement(std::string& text);
// Forgets the waiting boxes (host disable).
void dropQueuedMessageBoxes();
