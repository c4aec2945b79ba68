#include "data/user_messages.h"

#include <cstdarg>
#include <cstdio>
#include <deque>

#include "data/settings.h"

namespace {

std::deque<MessageBoxRequest> boxes;
std::deque<std::string> announcements;
void (*boxListener)() = nullptr;

}  // namespace

void showMessageBox(const std::string& title, const std::string& text) {
    showMessageBoxWithCallback(title, text, nullptr);
}

void showMessageBoxWithCallback(const std::string& title, const std::string& text, MessageBoxCallback callback) {
    boxes.push_back(MessageBoxRequest{title, text, callback});
    if (boxListener) boxListener();
}

void announce(const char* format, ...) {
    if (settings().DISABLE_VOICE_PROMPTS) return;
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    announcements.emplace_back(text);
}

std::vector<MessageBoxRequest> queuedMessageBoxes() {
    return std::vector<MessageBoxRequest>(boxes.begin(), boxes.end());
}

std::vector<std::string> queuedAnnouncements() {
    return std::vector<std::string>(announcements.begin(), announcements.end());
}

void setMessageBoxListener(void (*requested)()) { boxListener = requested; }

bool takeMessageBox(MessageBoxRequest& request) {
    if (boxes.empty()) return false;
    request = std::move(boxes.front());
    boxes.pop_front();
    return true;
}

bool takeAnnouncement(std::string& text) {
    if (announcements.empty()) return false;
    text = std::move(announcements.front());
    announcements.pop_front();
    return true;
}

void dropQueuedMessageBoxes() { boxes.clear(); }
