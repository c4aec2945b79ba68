// A stand-in for the head tracker's client library, built as a real shared library so
// the plug-in loads it through its ordinary path. It answers with the vendor's signature
// strings, serves frames that a test queued, records every call, and can be told to
// fail any entry. Tests reach the controls by opening the same file again (the loader
// hands back the same instance).
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <string>

#define DOUBLE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr int kFrameBytes = 80;
constexpr int kFieldBytes = 200;

const char* const kDllSignature =
    "precise head tracking\n put your head into the game\n now go look around\n\n Copyright EyeControl "
    "Technologies";
const char* const kAppSignature =
    "hardware camera\n software processing data\n track user movement\n\n Copyright EyeControl Technologies";

struct Frame {
    unsigned char bytes[kFrameBytes];
};

struct State {
    std::map<std::string, int> results;
    std::map<std::string, int> calls;
    std::map<std::string, long> lastArgument;
    std::string dllSignature = kDllSignature;
    std::string appSignature = kAppSignature;
    std::deque<Frame> queued;
    Frame current{};
};

State& state() {
    static State s;
    return s;
}

int enter(const char* entry, long argument = 0) {
    State& s = state();
    ++s.calls[entry];
    s.lastArgument[entry] = argument;
    auto found = s.results.find(entry);
    return found == s.results.end() ? 0 : found->second;
}

}  // namespace

// ---- the client's entry points
DOUBLE_EXPORT int NP_GetSignature(void* record) {
    int result = enter("NP_GetSignature");
    if (result != 0 || record == nullptr) return result;
    char* fields = static_cast<char*>(record);
    std::memset(fields, 0, 2 * kFieldBytes);
    std::strncpy(fields, state().dllSignature.c_str(), kFieldBytes - 1);
    std::strncpy(fields + kFieldBytes, state().appSignature.c_str(), kFieldBytes - 1);
    return 0;
}
DOUBLE_EXPORT int NP_RegisterWindowHandle(void* window) {
    return enter("NP_RegisterWindowHandle", static_cast<long>(reinterpret_cast<intptr_t>(window)));
}
DOUBLE_EXPORT int NP_UnregisterWindowHandle() { return enter("NP_UnregisterWindowHandle"); }
DOUBLE_EXPORT int NP_RegisterProgramProfileID(unsigned short id) { return enter("NP_RegisterProgramProfileID", id); }
DOUBLE_EXPORT int NP_QueryVersion(unsigned short* version) {
    if (version) *version = 0x0500;
    return enter("NP_QueryVersion");
}
DOUBLE_EXPORT int NP_RequestData(unsigned short mask) { return enter("NP_RequestData", mask); }
DOUBLE_EXPORT int NP_GetData(void* buffer) {
    int result = enter("NP_GetData");
    if (result != 0 || buffer == nullptr) return result;
    State& s = state();
    // Queued frames go out one per call; after the last, the tracker repeats it.
    if (!s.queued.empty()) {
        s.current = s.queued.front();
        s.queued.pop_front();
    }
    std::memcpy(buffer, s.current.bytes, kFrameBytes);
    return 0;
}
DOUBLE_EXPORT int NP_StartCursor() { return enter("NP_StartCursor"); }
DOUBLE_EXPORT int NP_StopCursor() { return enter("NP_StopCursor"); }
DOUBLE_EXPORT int NP_ReCenter() { return enter("NP_ReCenter"); }
DOUBLE_EXPORT int NP_StartDataTransmission() { return enter("NP_StartDataTransmission"); }
DOUBLE_EXPORT int NP_StopDataTransmission() { return enter("NP_StopDataTransmission"); }

// ---- controls for tests
DOUBLE_EXPORT void trackirDoubleReset() { state() = State(); }
DOUBLE_EXPORT void trackirDoubleSetResult(const char* entry, int result) { state().results[entry] = result; }
DOUBLE_EXPORT void trackirDoubleSetSignature(const char* dll, const char* app) {
    state().dllSignature = dll;
    state().appSignature = app;
}
DOUBLE_EXPORT void trackirDoubleQueueFrame(const unsigned char* bytes) {
    Frame frame;
    std::memcpy(frame.bytes, bytes, kFrameBytes);
    state().queued.push_back(frame);
}
DOUBLE_EXPORT int trackirDoubleCallCount(const char* entry) {
    auto found = state().calls.find(entry);
    return found == state().calls.end() ? 0 : found->second;
}
DOUBLE_EXPORT long trackirDoubleLastArgument(const char* entry) {
    auto found = state().lastArgument.find(entry);
    return found == state().lastArgument.end() ? -1 : found->second;
}
