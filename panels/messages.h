// The delivery of what the layers asked to tell the user (data/user_messages): the
// message box queue's own flight loop opens the waiting boxes, and the main flight
// loop speaks the announcements.
#pragma once

#include "data/user_messages.h"

// Drops waiting requests and the queue's flight loop, and closes the boxes still open
// (host disable). Never call it from inside a box's own callback.
void destroyMessageBoxQueue();

// At start: forgets the waiting requests and the queue's flight loop of an earlier life
// of the plug-in in this process, which went with it (the host destroys what a stopped
// plug-in left), so that the first box of the new life schedules its delivery again.
void forgetMessageBoxQueue();

// Hands every queued announcement to XPLMSpeakString, oldest first.
void speakQueuedAnnouncements();

// Boxes currently open (made by the queue and not yet destroyed).
int openMessageBoxCount();
