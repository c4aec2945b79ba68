#ifndef _XPLMPlanes_h_
#define _XPLMPlanes_h_

/* Vistarig's own declaration of the simulator plug-in API: the user's aircraft and AI aircraft. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* User aircraft */
XPLM_API void        XPLMSetUsersAircraft(const char * inAircraftPath);
XPLM_API void        XPLMPlaceUserAtAirport(const char * inAirportCode);
#if defined(XPLM300)
XPLM_API void        XPLMPlaceUserAtLocation(double latitudeDegrees, double longitudeDegrees,
                                             float elevationMetersMSL, float headingDegreesTrue,
                                             float speedMetersPerSecond);
#endif /* XPLM300 */

/* Global aircraft access; index 0 is always the user's aircraft */
#define XPLM_USER_AIRCRAFT 0

#if defined(XPLM_DEPRECATED)
typedef struct {
    int    structSize;
    float  gearPosition;
    float  flapRatio;
    float  spoilerRatio;
    float  speedBrakeRatio;
    float  slatRatio;
    float  wingSweep;
    float  thrust;
    float  yokePitch;
    float  yokeHeading;
    float  yokeRoll;
} XPLMPlaneDrawState_t;
#endif /* XPLM_DEPRECATED */

XPLM_API void        XPLMCountAircraft(int * outTotalAircraft, int * outActiveAircraft,
                                       XPLMPluginID * outController);
XPLM_API void        XPLMGetNthAircraftModel(int inIndex, char * outFileName, char * outPath);

/* Exclusive control of the AI aircraft */
typedef void (* XPLMPlanesAvailable_f)(void * inRefcon);

XPLM_API int         XPLMAcquirePlanes(char ** inAircraft, XPLMPlanesAvailable_f inCallback,
                                       void * inRefcon);
XPLM_API void        XPLMReleasePlanes(void);
XPLM_API void        XPLMSetActiveAircraftCount(int inCount);
XPLM_API void        XPLMSetAircraftModel(int inIndex, const char * inAircraftPath);
XPLM_API void        XPLMDisableAIForPlane(int inPlaneIndex);

#if defined(XPLM_DEPRECATED)
XPLM_API void        XPLMDrawAircraft(int inPlaneIndex, float inX, float inY, float inZ,
                                      float inPitch, float inRoll, float inYaw, int inFullDraw,
                                      XPLMPlaneDrawState_t * inDrawStateInfo);
XPLM_API void        XPLMReinitUsersPlane(void);
#endif /* XPLM_DEPRECATED */

#ifdef __cplusplus
}
#endif

#endif
