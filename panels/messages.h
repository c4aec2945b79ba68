// The two ways the plug-in talks to the user outside its panels: message boxes and
// spoken announcements. Both only queue when asked; the message box queue's own flight
// loop opens the boxes, and the main flight loop speaks the announcements, so nothing
// is drawn or spoken inside another window's frame or in the middle of a file operation.
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
// Drops waiting requests and the queue's flight loop, and closes the boxes still open
// (host disable). Never call it from inside a box's own callback.
void destroyMessageBoxQueue();

// printf-style; does nothing while DISABLE_VOICE_PROMPTS is set.
void announce(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Hands every queued announcement to XPLMSpeakString, oldest first.
void speakQueuedAnnouncements();

// What is waiting, oldest first, for tests and the runner.
std::vector<MessageBoxRequest> queuedMessageBoxes();
std::vector<std::string> queuedAnnouncements();
// Boxes currently open (made by the queue and not yet destroyed).
int openMessageBoxCount();
