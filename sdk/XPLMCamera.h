#ifndef _XPLMCamera_h_
#define _XPLMCamera_h_

/* Vistarig's own declaration of the simulator plug-in API: taking control of the camera. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

enum {
    xplm_ControlCameraUntilViewChanges = 1,
    xplm_ControlCameraForever          = 2
};
typedef int XPLMCameraControlDuration;

/* Position in local OpenGL metres, angles in degrees, zoom as a factor */
typedef struct {
    float x;
    float y;
    float z;
    float pitch;
    float heading;
    float roll;
    float zoom;
} XPLMCameraPosition_t;

/* Return 1 to keep control, 0 to give it up. */
typedef int (* XPLMCameraControl_f)(XPLMCameraPosition_t * outCameraPosition,
                                    int inIsLosingControl, void * inRefcon);

XPLM_API void        XPLMControlCamera(XPLMCameraControlDuration inHowLong,
                                       XPLMCameraControl_f inControlFunc, void * inRefcon);
XPLM_API void        XPLMDontControlCamera(void);
XPLM_API int         XPLMIsCameraBeingControlled(XPLMCameraControlDuration * outCameraControlDuration);
XPLM_API void        XPLMReadCameraPosition(XPLMCameraPosition_t * outCameraPosition);

#ifdef __cplusplus
}
#endif

#endif
