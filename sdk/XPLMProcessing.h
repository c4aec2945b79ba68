#ifndef _XPLMProcessing_h_
#define _XPLMProcessing_h_

/* Vistarig's own declaration of the simulator plug-in API: flight loop callbacks and timing. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(XPLM210)
enum {
    xplm_FlightLoop_Phase_BeforeFlightModel = 0,
    xplm_FlightLoop_Phase_AfterFlightModel  = 1
};
typedef int XPLMFlightLoopPhaseType;

typedef void * XPLMFlightLoopID;
#endif /* XPLM210 */

/* Return value: >0 seconds, <0 frames until the next call, 0 to stop. */
typedef float (* XPLMFlightLoop_f)(float inElapsedSinceLastCall,
                                   float inElapsedTimeSinceLastFlightLoop,
                                   int   inCounter,
                                   void * inRefcon);

#if defined(XPLM210)
typedef struct {
    int                       structSize;
    XPLMFlightLoopPhaseType   phase;
    XPLMFlightLoop_f          callbackFunc;
    void *                    refcon;
} XPLMCreateFlightLoop_t;
#endif /* XPLM210 */

XPLM_API float       XPLMGetElapsedTime(void);
XPLM_API int         XPLMGetCycleNumber(void);

/* Original API keyed on the callback and refcon */
XPLM_API void        XPLMRegisterFlightLoopCallback(XPLMFlightLoop_f inFlightLoop,
                                                    float inInterval, void * inRefcon);
XPLM_API void        XPLMUnregisterFlightLoopCallback(XPLMFlightLoop_f inFlightLoop,
                                                      void * inRefcon);
XPLM_API void        XPLMSetFlightLoopCallbackInterval(XPLMFlightLoop_f inFlightLoop,
                                                       float inInterval, int inRelativeToNow,
                                                       void * inRefcon);

#if defined(XPLM210)
/* Handle-based API */
XPLM_API XPLMFlightLoopID XPLMCreateFlightLoop(XPLMCreateFlightLoop_t * inParams);
XPLM_API void        XPLMDestroyFlightLoop(XPLMFlightLoopID inFlightLoopID);
XPLM_API void        XPLMScheduleFlightLoop(XPLMFlightLoopID inFlightLoopID,
                                            float inInterval, int inRelativeToNow);
#endif /* XPLM210 */

#ifdef __cplusplus
}
#endif

#endif
