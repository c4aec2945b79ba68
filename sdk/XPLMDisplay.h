#ifndef _XPLMDisplay_h_
#define _XPLMDisplay_h_

/* Vistarig's own declaration of the simulator plug-in API: drawing callbacks, windows, keys, hot keys. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Drawing phases, back to front */
enum {
#if defined(XPLM_DEPRECATED)
    xplm_Phase_FirstScene      = 0,
    xplm_Phase_Terrain         = 5,
    xplm_Phase_Airports        = 10,
    xplm_Phase_Vectors         = 15,
    xplm_Phase_Objects         = 20,
    xplm_Phase_Airplanes       = 25,
    xplm_Phase_LastScene       = 30,
#endif /* XPLM_DEPRECATED */
#if defined(XPLM302)
    xplm_Phase_Modern3D        = 31,
#endif /* XPLM302 */
    xplm_Phase_FirstCockpit    = 35,
    xplm_Phase_Panel           = 40,
    xplm_Phase_Gauges          = 45,
    xplm_Phase_Window          = 50,
    xplm_Phase_LastCockpit     = 55
#if defined(XPLM200) && defined(XPLM_DEPRECATED)
   ,xplm_Phase_LocalMap3D      = 100,
    xplm_Phase_LocalMap2D      = 101,
    xplm_Phase_LocalMapProfile = 102
#endif
};
typedef int XPLMDrawingPhase;

/* Return 0 from a before-callback to suppress the simulator's own drawing. */
typedef int (* XPLMDrawCallback_f)(XPLMDrawingPhase inPhase, int inIsBefore, void * inRefcon);

XPLM_API int         XPLMRegisterDrawCallback(XPLMDrawCallback_f inCallback, XPLMDrawingPhase inPhase,
                                              int inWantsBefore, void * inRefcon);
XPLM_API int         XPLMUnregisterDrawCallback(XPLMDrawCallback_f inCallback, XPLMDrawingPhase inPhase,
                                                int inWantsBefore, void * inRefcon);

/* Windows */
typedef void * XPLMWindowID;

enum {
    xplm_MouseDown = 1,
    xplm_MouseDrag = 2,
    xplm_MouseUp   = 3
};
typedef int XPLMMouseStatus;

#if defined(XPLM200)
enum {
    xplm_CursorDefault = 0,
    xplm_CursorHidden  = 1,
    xplm_CursorArrow   = 2,
    xplm_CursorCustom  = 3
};
typedef int XPLMCursorStatus;
#endif /* XPLM200 */

typedef void (* XPLMDrawWindow_f)(XPLMWindowID inWindowID, void * inRefcon);
typedef void (* XPLMHandleKey_f)(XPLMWindowID inWindowID, char inKey, XPLMKeyFlags inFlags,
                                 char inVirtualKey, void * inRefcon, int losingFocus);
typedef int  (* XPLMHandleMouseClick_f)(XPLMWindowID inWindowID, int x, int y,
                                        XPLMMouseStatus inMouse, void * inRefcon);
#if defined(XPLM200)
typedef XPLMCursorStatus (* XPLMHandleCursor_f)(XPLMWindowID inWindowID, int x, int y,
                                                void * inRefcon);
typedef int  (* XPLMHandleMouseWheel_f)(XPLMWindowID inWindowID, int x, int y, int wheel,
                                        int clicks, void * inRefcon);
#endif /* XPLM200 */

#if defined(XPLM300)
enum {
    xplm_WindowLayerFlightOverlay      = 0,
    xplm_WindowLayerFloatingWindows    = 1,
    xplm_WindowLayerModal              = 2,
    xplm_WindowLayerGrowlNotifications = 3
};
typedef int XPLMWindowLayer;
#endif /* XPLM300 */

#if defined(XPLM301)
enum {
    xplm_WindowDecorationNone                   = 0,
    xplm_WindowDecorationRoundRectangle         = 1,
    xplm_WindowDecorationSelfDecorated          = 2,
    xplm_WindowDecorationSelfDecoratedResizable = 3
};
typedef int XPLMWindowDecoration;
#endif /* XPLM301 */

#if defined(XPLM200)
typedef struct {
    int                       structSize;
    int                       left;
    int                       top;
    int                       right;
    int                       bottom;
    int                       visible;
    XPLMDrawWindow_f          drawWindowFunc;
    XPLMHandleMouseClick_f    handleMouseClickFunc;
    XPLMHandleKey_f           handleKeyFunc;
    XPLMHandleCursor_f        handleCursorFunc;
    XPLMHandleMouseWheel_f    handleMouseWheelFunc;
    void *                    refcon;
#if defined(XPLM301)
    XPLMWindowDecoration      decorateAsFloatingWindow;
#endif /* XPLM301 */
#if defined(XPLM300)
    XPLMWindowLayer           layer;
#endif /* XPLM300 */
#if defined(XPLM300)
    XPLMHandleMouseClick_f    handleRightClickFunc;
#endif /* XPLM300 */
} XPLMCreateWindow_t;
#endif /* XPLM200 */

/* Screen, monitors and mouse */
XPLM_API void        XPLMGetScreenSize(int * outWidth, int * outHeight);
#if defined(XPLM300)
XPLM_API void        XPLMGetScreenBoundsGlobal(int * outLeft, int * outTop, int * outRight,
                                               int * outBottom);

typedef void (* XPLMReceiveMonitorBoundsGlobal_f)(int inMonitorIndex, int inLeftBx, int inTopBx,
                                                  int inRightBx, int inBottomBx, void * inRefcon);
XPLM_API void        XPLMGetAllMonitorBoundsGlobal(XPLMReceiveMonitorBoundsGlobal_f inMonitorBoundsCallback,
                                                   void * inRefcon);

typedef void (* XPLMReceiveMonitorBoundsOS_f)(int inMonitorIndex, int inLeftPx, int inTopPx,
                                              int inRightPx, int inBottomPx, void * inRefcon);
XPLM_API void        XPLMGetAllMonitorBoundsOS(XPLMReceiveMonitorBoundsOS_f inMonitorBoundsCallback,
                                               void * inRefcon);
#endif /* XPLM300 */

XPLM_API void        XPLMGetMouseLocation(int * outX, int * outY);
#if defined(XPLM300)
XPLM_API void        XPLMGetMouseLocationGlobal(int * outX, int * outY);
#endif /* XPLM300 */

/* Creating and placing windows */
#if defined(XPLM200)
XPLM_API XPLMWindowID XPLMCreateWindowEx(XPLMCreateWindow_t * inParams);
#endif /* XPLM200 */
XPLM_API XPLMWindowID XPLMCreateWindow(int inLeft, int inTop, int inRight, int inBottom,
                                       int inIsVisible, XPLMDrawWindow_f inDrawCallback,
                                       XPLMHandleKey_f inKeyCallback,
                                       XPLMHandleMouseClick_f inMouseCallback, void * inRefcon);
XPLM_API void        XPLMDestroyWindow(XPLMWindowID inWindowID);

XPLM_API void        XPLMGetWindowGeometry(XPLMWindowID inWindowID, int * outLeft, int * outTop,
                                           int * outRight, int * outBottom);
XPLM_API void        XPLMSetWindowGeometry(XPLMWindowID inWindowID, int inLeft, int inTop,
                                           int inRight, int inBottom);
#if defined(XPLM300)
XPLM_API void        XPLMGetWindowGeometryOS(XPLMWindowID inWindowID, int * outLeft, int * outTop,
                                             int * outRight, int * outBottom);
XPLM_API void        XPLMSetWindowGeometryOS(XPLMWindowID inWindowID, int inLeft, int inTop,
                                             int inRight, int inBottom);
#endif /* XPLM300 */
#if defined(XPLM301)
XPLM_API void        XPLMGetWindowGeometryVR(XPLMWindowID inWindowID, int * outWidthBoxels,
                                             int * outHeightBoxels);
XPLM_API void        XPLMSetWindowGeometryVR(XPLMWindowID inWindowID, int widthBoxels,
                                             int heightBoxels);
#endif /* XPLM301 */

XPLM_API int         XPLMGetWindowIsVisible(XPLMWindowID inWindowID);
XPLM_API void        XPLMSetWindowIsVisible(XPLMWindowID inWindowID, int inIsVisible);

#if defined(XPLM300)
XPLM_API int         XPLMWindowIsPoppedOut(XPLMWindowID inWindowID);
#endif /* XPLM300 */
#if defined(XPLM301)
XPLM_API int         XPLMWindowIsInVR(XPLMWindowID inWindowID);
#endif /* XPLM301 */

#if defined(XPLM300)
XPLM_API void        XPLMSetWindowGravity(XPLMWindowID inWindowID, float inLeftGravity,
                                          float inTopGravity, float inRightGravity,
                                          float inBottomGravity);
XPLM_API void        XPLMSetWindowResizingLimits(XPLMWindowID inWindowID, int inMinWidthBoxels,
                                                 int inMinHeightBoxels, int inMaxWidthBoxels,
                                                 int inMaxHeightBoxels);

enum {
    xplm_WindowPositionFree            = 0,
    xplm_WindowCenterOnMonitor         = 1,
    xplm_WindowFullScreenOnMonitor     = 2,
    xplm_WindowFullScreenOnAllMonitors = 3,
    xplm_WindowPopOut                  = 4
#if defined(XPLM301)
   ,xplm_WindowVR                      = 5
#endif /* XPLM301 */
};
typedef int XPLMWindowPositioningMode;

XPLM_API void        XPLMSetWindowPositioningMode(XPLMWindowID inWindowID,
                                                  XPLMWindowPositioningMode inPositioningMode,
                                                  int inMonitorIndex);
XPLM_API void        XPLMSetWindowTitle(XPLMWindowID inWindowID, const char * inWindowTitle);
#endif /* XPLM300 */

XPLM_API void *      XPLMGetWindowRefCon(XPLMWindowID inWindowID);
XPLM_API void        XPLMSetWindowRefCon(XPLMWindowID inWindowID, void * inRefcon);

/* Keyboard focus and z-order; pass 0 to give focus back to the simulator */
XPLM_API void        XPLMTakeKeyboardFocus(XPLMWindowID inWindow);
#if defined(XPLM300)
XPLM_API int         XPLMHasKeyboardFocus(XPLMWindowID inWindow);
#endif /* XPLM300 */
XPLM_API void        XPLMBringWindowToFront(XPLMWindowID inWindow);
XPLM_API int         XPLMIsWindowInFront(XPLMWindowID inWindow);

/* Key sniffers see every key before (or after) windows do; return 0 to consume it */
typedef int (* XPLMKeySniffer_f)(char inChar, XPLMKeyFlags inFlags, char inVirtualKey,
                                 void * inRefcon);

XPLM_API int         XPLMRegisterKeySniffer(XPLMKeySniffer_f inCallback, int inBeforeWindows,
                                            void * inRefcon);
XPLM_API int         XPLMUnregisterKeySniffer(XPLMKeySniffer_f inCallback, int inBeforeWindows,
                                              void * inRefcon);

/* Hot keys the user can remap */
typedef void (* XPLMHotKey_f)(void * inRefcon);
typedef void * XPLMHotKeyID;

XPLM_API XPLMHotKeyID XPLMRegisterHotKey(char inVirtualKey, XPLMKeyFlags inFlags,
                                         const char * inDescription, XPLMHotKey_f inCallback,
                                         void * inRefcon);
XPLM_API void        XPLMUnregisterHotKey(XPLMHotKeyID inHotKey);
XPLM_API int         XPLMCountHotKeys(void);
XPLM_API XPLMHotKeyID XPLMGetNthHotKey(int inIndex);
XPLM_API void        XPLMGetHotKeyInfo(XPLMHotKeyID inHotKey, char * outVirtualKey,
                                       XPLMKeyFlags * outFlags, char * outDescription,
                                       XPLMPluginID * outPlugin);
XPLM_API void        XPLMSetHotKeyCombination(XPLMHotKeyID inHotKey, char inVirtualKey,
                                              XPLMKeyFlags inFlags);

#ifdef __cplusplus
}
#endif

#endif
