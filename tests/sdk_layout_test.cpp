// Binary layout and constant values of the XPLM declarations in sdk/.
// A wrong offset, size, enum value or argument list here compiles fine and
// then corrupts memory or misroutes calls inside the real simulator, so the
// numbers below are the x86_64 Linux ABI of the simulator's SDK.

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMDefs.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMMenus.h"
#include "XPLMNavigation.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"

namespace {

// Argument lists of calls whose parameter order is easy to get wrong; a
// mismatch would link (C symbols carry no types) and then pass garbage.
static_assert(std::is_same_v<decltype(&XPLMCreateWindowEx), XPLMWindowID (*)(XPLMCreateWindow_t*)>);
static_assert(std::is_same_v<decltype(&XPLMSetWindowGeometry), void (*)(XPLMWindowID, int, int, int, int)>);
static_assert(std::is_same_v<decltype(&XPLMSetWindowPositioningMode),
                             void (*)(XPLMWindowID, XPLMWindowPositioningMode, int)>);
static_assert(std::is_same_v<decltype(&XPLMSetWindowGravity), void (*)(XPLMWindowID, float, float, float, float)>);
static_assert(std::is_same_v<XPLMHandleKey_f, void (*)(XPLMWindowID, char, XPLMKeyFlags, char, void*, int)>);
static_assert(std::is_same_v<XPLMHandleMouseWheel_f, int (*)(XPLMWindowID, int, int, int, int, void*)>);
static_assert(std::is_same_v<XPLMReceiveMonitorBoundsGlobal_f, void (*)(int, int, int, int, int, void*)>);
static_assert(std::is_same_v<XPLMCameraControl_f, int (*)(XPLMCameraPosition_t*, int, void*)>);
static_assert(std::is_same_v<XPLMFlightLoop_f, float (*)(float, float, int, void*)>);
static_assert(std::is_same_v<decltype(&XPLMScheduleFlightLoop), void (*)(XPLMFlightLoopID, float, int)>);
static_assert(std::is_same_v<decltype(&XPLMSetFlightLoopCallbackInterval),
                             void (*)(XPLMFlightLoop_f, float, int, void*)>);
static_assert(std::is_same_v<decltype(&XPLMRegisterDrawCallback),
                             int (*)(XPLMDrawCallback_f, XPLMDrawingPhase, int, void*)>);
static_assert(std::is_same_v<decltype(&XPLMRegisterCommandHandler),
                             void (*)(XPLMCommandRef, XPLMCommandCallback_f, int, void*)>);
static_assert(std::is_same_v<decltype(&XPLMRegisterDataAccessor),
                             XPLMDataRef (*)(const char*, XPLMDataTypeID, int, XPLMGetDatai_f, XPLMSetDatai_f,
                                             XPLMGetDataf_f, XPLMSetDataf_f, XPLMGetDatad_f, XPLMSetDatad_f,
                                             XPLMGetDatavi_f, XPLMSetDatavi_f, XPLMGetDatavf_f, XPLMSetDatavf_f,
                                             XPLMGetDatab_f, XPLMSetDatab_f, void*, void*)>);
static_assert(std::is_same_v<decltype(&XPLMGetDirectoryContents),
                             int (*)(const char*, int, char*, int, char**, int, int*, int*)>);
static_assert(std::is_same_v<decltype(&XPLMWorldToLocal), void (*)(double, double, double, double*, double*, double*)>);
static_assert(std::is_same_v<decltype(&XPLMProbeTerrainXYZ),
                             XPLMProbeResult (*)(XPLMProbeRef, float, float, float, XPLMProbeInfo_t*)>);
static_assert(std::is_same_v<decltype(&XPLMGetNavAidInfo),
                             void (*)(XPLMNavRef, XPLMNavType*, float*, float*, float*, int*, float*, char*, char*,
                                      char*)>);
static_assert(std::is_same_v<decltype(&XPLMFindNavAid),
                             XPLMNavRef (*)(const char*, const char*, float*, float*, int*, XPLMNavType)>);
static_assert(std::is_same_v<decltype(&XPLMCreateMenu),
                             XPLMMenuID (*)(const char*, XPLMMenuID, int, XPLMMenuHandler_f, void*)>);
static_assert(std::is_same_v<decltype(&XPLMSetGraphicsState), void (*)(int, int, int, int, int, int, int)>);
static_assert(std::is_same_v<decltype(&XPLMDrawString),
                             void (*)(float*, int, int, const char*, int*, XPLMFontID)>);
static_assert(std::is_same_v<decltype(&XPLMCountAircraft), void (*)(int*, int*, XPLMPluginID*)>);
static_assert(std::is_same_v<decltype(&XPLMGetPluginInfo), void (*)(XPLMPluginID, char*, char*, char*, char*)>);

struct FieldLayout {
    const char* name;
    std::size_t actual;
    std::size_t expected;
};

void expectLayout(std::size_t size, std::size_t expectedSize, std::initializer_list<FieldLayout> fields) {
    EXPECT_EQ(size, expectedSize);
    for (const FieldLayout& field : fields) EXPECT_EQ(field.actual, field.expected) << field.name;
}

#define FIELD(type, member, offset) FieldLayout{#member, offsetof(type, member), offset}

TEST(SdkLayout, StructOffsetsMatchTheSimulatorAbi) {
    expectLayout(sizeof(XPLMCreateWindow_t), 88,
                 {FIELD(XPLMCreateWindow_t, structSize, 0), FIELD(XPLMCreateWindow_t, left, 4),
                  FIELD(XPLMCreateWindow_t, top, 8), FIELD(XPLMCreateWindow_t, right, 12),
                  FIELD(XPLMCreateWindow_t, bottom, 16), FIELD(XPLMCreateWindow_t, visible, 20),
                  FIELD(XPLMCreateWindow_t, drawWindowFunc, 24), FIELD(XPLMCreateWindow_t, handleMouseClickFunc, 32),
                  FIELD(XPLMCreateWindow_t, handleKeyFunc, 40), FIELD(XPLMCreateWindow_t, handleCursorFunc, 48),
                  FIELD(XPLMCreateWindow_t, handleMouseWheelFunc, 56), FIELD(XPLMCreateWindow_t, refcon, 64),
                  FIELD(XPLMCreateWindow_t, decorateAsFloatingWindow, 72), FIELD(XPLMCreateWindow_t, layer, 76),
                  FIELD(XPLMCreateWindow_t, handleRightClickFunc, 80)});
    expectLayout(sizeof(XPLMCameraPosition_t), 28,
                 {FIELD(XPLMCameraPosition_t, x, 0), FIELD(XPLMCameraPosition_t, y, 4),
                  FIELD(XPLMCameraPosition_t, z, 8), FIELD(XPLMCameraPosition_t, pitch, 12),
                  FIELD(XPLMCameraPosition_t, heading, 16), FIELD(XPLMCameraPosition_t, roll, 20),
                  FIELD(XPLMCameraPosition_t, zoom, 24)});
    expectLayout(sizeof(XPLMProbeInfo_t), 44,
                 {FIELD(XPLMProbeInfo_t, structSize, 0), FIELD(XPLMProbeInfo_t, locationX, 4),
                  FIELD(XPLMProbeInfo_t, locationY, 8), FIELD(XPLMProbeInfo_t, locationZ, 12),
                  FIELD(XPLMProbeInfo_t, normalX, 16), FIELD(XPLMProbeInfo_t, normalY, 20),
                  FIELD(XPLMProbeInfo_t, normalZ, 24), FIELD(XPLMProbeInfo_t, velocityX, 28),
                  FIELD(XPLMProbeInfo_t, velocityY, 32), FIELD(XPLMProbeInfo_t, velocityZ, 36),
                  FIELD(XPLMProbeInfo_t, is_wet, 40)});
    expectLayout(sizeof(XPLMCreateFlightLoop_t), 24,
                 {FIELD(XPLMCreateFlightLoop_t, structSize, 0), FIELD(XPLMCreateFlightLoop_t, phase, 4),
                  FIELD(XPLMCreateFlightLoop_t, callbackFunc, 8), FIELD(XPLMCreateFlightLoop_t, refcon, 16)});
    expectLayout(sizeof(XPLMDataRefInfo_t), 32,
                 {FIELD(XPLMDataRefInfo_t, structSize, 0), FIELD(XPLMDataRefInfo_t, name, 8),
                  FIELD(XPLMDataRefInfo_t, type, 16), FIELD(XPLMDataRefInfo_t, writable, 20),
                  FIELD(XPLMDataRefInfo_t, owner, 24)});
    expectLayout(sizeof(XPLMDrawInfo_t), 28,
                 {FIELD(XPLMDrawInfo_t, structSize, 0), FIELD(XPLMDrawInfo_t, x, 4), FIELD(XPLMDrawInfo_t, roll, 24)});
    EXPECT_EQ(sizeof(XPLMFixedString150_t), 150u);
}

// The enum-backed typedefs are plain int in the SDK; an enum type here would
// change callback signatures in C++ and break code written against the SDK.
TEST(SdkLayout, EnumTypedefsAreInt) {
    EXPECT_TRUE((std::is_same_v<XPLMKeyFlags, int>));
    EXPECT_TRUE((std::is_same_v<XPLMDataTypeID, int>));
    EXPECT_TRUE((std::is_same_v<XPLMDrawingPhase, int>));
    EXPECT_TRUE((std::is_same_v<XPLMWindowLayer, int>));
    EXPECT_TRUE((std::is_same_v<XPLMWindowDecoration, int>));
    EXPECT_TRUE((std::is_same_v<XPLMWindowPositioningMode, int>));
    EXPECT_TRUE((std::is_same_v<XPLMNavType, int>));
    EXPECT_TRUE((std::is_same_v<XPLMNavRef, int>));
    EXPECT_TRUE((std::is_same_v<XPLMPluginID, int>));
    EXPECT_TRUE((std::is_same_v<XPLMCommandPhase, int>));
    EXPECT_TRUE((std::is_same_v<XPLMProbeResult, int>));
}

struct ConstantValue {
    const char* name;
    long actual;
    long expected;
};

#define VALUE(name, expected) ConstantValue{#name, static_cast<long>(name), expected}

TEST(SdkLayout, ConstantValuesMatchTheSimulator) {
    const ConstantValue table[] = {
        // plug-in identity and messages
        VALUE(XPLM_NO_PLUGIN_ID, -1), VALUE(XPLM_PLUGIN_XPLANE, 0),
        VALUE(XPLM_MSG_PLANE_CRASHED, 101), VALUE(XPLM_MSG_PLANE_LOADED, 102),
        VALUE(XPLM_MSG_AIRPORT_LOADED, 103), VALUE(XPLM_MSG_SCENERY_LOADED, 104),
        VALUE(XPLM_MSG_AIRPLANE_COUNT_CHANGED, 105), VALUE(XPLM_MSG_PLANE_UNLOADED, 106),
        VALUE(XPLM_MSG_WILL_WRITE_PREFS, 107), VALUE(XPLM_MSG_LIVERY_LOADED, 108),
        VALUE(XPLM_MSG_ENTERED_VR, 109), VALUE(XPLM_MSG_EXITING_VR, 110), VALUE(XPLM_MSG_RELEASE_PLANES, 111),
        VALUE(XPLM_MSG_DATAREFS_ADDED, 114),
        // keys
        VALUE(xplm_ShiftFlag, 1), VALUE(xplm_OptionAltFlag, 2), VALUE(xplm_ControlFlag, 4), VALUE(xplm_DownFlag, 8),
        VALUE(xplm_UpFlag, 16), VALUE(XPLM_KEY_ESCAPE, 27), VALUE(XPLM_KEY_LEFT, 28), VALUE(XPLM_VK_ESCAPE, 0x1B),
        VALUE(XPLM_VK_A, 0x41), VALUE(XPLM_VK_NUMPAD0, 0x60), VALUE(XPLM_VK_F1, 0x70), VALUE(XPLM_VK_F24, 0x87),
        VALUE(XPLM_VK_EQUAL, 0xB0), VALUE(XPLM_VK_NUMPAD_EQ, 0xBD),
        // data types
        VALUE(xplmType_Unknown, 0), VALUE(xplmType_Int, 1), VALUE(xplmType_Float, 2), VALUE(xplmType_Double, 4),
        VALUE(xplmType_FloatArray, 8), VALUE(xplmType_IntArray, 16), VALUE(xplmType_Data, 32),
        // commands, flight loops, camera
        VALUE(xplm_CommandBegin, 0), VALUE(xplm_CommandContinue, 1), VALUE(xplm_CommandEnd, 2),
        VALUE(xplm_FlightLoop_Phase_BeforeFlightModel, 0), VALUE(xplm_FlightLoop_Phase_AfterFlightModel, 1),
        VALUE(xplm_ControlCameraUntilViewChanges, 1), VALUE(xplm_ControlCameraForever, 2),
        // drawing phases
        VALUE(xplm_Phase_Modern3D, 31), VALUE(xplm_Phase_FirstCockpit, 35), VALUE(xplm_Phase_Panel, 40),
        VALUE(xplm_Phase_Gauges, 45), VALUE(xplm_Phase_Window, 50), VALUE(xplm_Phase_LastCockpit, 55),
        // windows
        VALUE(xplm_MouseDown, 1), VALUE(xplm_MouseDrag, 2), VALUE(xplm_MouseUp, 3),
        VALUE(xplm_CursorDefault, 0), VALUE(xplm_CursorHidden, 1), VALUE(xplm_CursorArrow, 2),
        VALUE(xplm_CursorCustom, 3),
        VALUE(xplm_WindowLayerFlightOverlay, 0), VALUE(xplm_WindowLayerFloatingWindows, 1),
        VALUE(xplm_WindowLayerModal, 2), VALUE(xplm_WindowLayerGrowlNotifications, 3),
        VALUE(xplm_WindowDecorationNone, 0), VALUE(xplm_WindowDecorationRoundRectangle, 1),
        VALUE(xplm_WindowDecorationSelfDecorated, 2), VALUE(xplm_WindowDecorationSelfDecoratedResizable, 3),
        VALUE(xplm_WindowPositionFree, 0), VALUE(xplm_WindowCenterOnMonitor, 1),
        VALUE(xplm_WindowFullScreenOnMonitor, 2), VALUE(xplm_WindowFullScreenOnAllMonitors, 3),
        VALUE(xplm_WindowPopOut, 4), VALUE(xplm_WindowVR, 5),
        // graphics, scenery, menus
        VALUE(xplm_Tex_GeneralInterface, 0), VALUE(xplmFont_Basic, 0), VALUE(xplmFont_Proportional, 18),
        VALUE(xplm_ProbeY, 0), VALUE(xplm_ProbeHitTerrain, 0), VALUE(xplm_ProbeError, 1), VALUE(xplm_ProbeMissed, 2),
        VALUE(xplm_Menu_NoCheck, 0), VALUE(xplm_Menu_Unchecked, 1), VALUE(xplm_Menu_Checked, 2),
        // navigation
        VALUE(XPLM_NAV_NOT_FOUND, -1), VALUE(xplm_Nav_Unknown, 0), VALUE(xplm_Nav_Airport, 1), VALUE(xplm_Nav_NDB, 2),
        VALUE(xplm_Nav_VOR, 4), VALUE(xplm_Nav_ILS, 8), VALUE(xplm_Nav_Localizer, 16),
        VALUE(xplm_Nav_GlideSlope, 32), VALUE(xplm_Nav_OuterMarker, 64), VALUE(xplm_Nav_MiddleMarker, 128),
        VALUE(xplm_Nav_InnerMarker, 256), VALUE(xplm_Nav_Fix, 512), VALUE(xplm_Nav_DME, 1024),
        VALUE(xplm_Nav_LatLon, 2048), VALUE(xplm_Nav_TACAN, 4096),
        // host and language
        VALUE(xplm_Host_XPlane, 1), VALUE(xplm_Language_English, 1), VALUE(xplm_Language_Chinese, 10),
    };
    for (const ConstantValue& value : table) EXPECT_EQ(value.actual, value.expected) << value.name;
}

}  // namespace
