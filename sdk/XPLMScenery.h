#ifndef _XPLMScenery_h_
#define _XPLMScenery_h_

/* Vistarig's own declaration of the simulator plug-in API: terrain probes, magnetic variation, objects. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(XPLM200)
/* Terrain probing */
enum {
    xplm_ProbeY = 0
};
typedef int XPLMProbeType;

enum {
    xplm_ProbeHitTerrain = 0,
    xplm_ProbeError      = 1,
    xplm_ProbeMissed     = 2
};
typedef int XPLMProbeResult;

typedef void * XPLMProbeRef;

/* Set structSize before probing; locations in local OpenGL metres */
typedef struct {
    int    structSize;
    float  locationX;
    float  locationY;
    float  locationZ;
    float  normalX;
    float  normalY;
    float  normalZ;
    float  velocityX;
    float  velocityY;
    float  velocityZ;
    int    is_wet;
} XPLMProbeInfo_t;

XPLM_API XPLMProbeRef XPLMCreateProbe(XPLMProbeType inProbeType);
XPLM_API void        XPLMDestroyProbe(XPLMProbeRef inProbe);
XPLM_API XPLMProbeResult XPLMProbeTerrainXYZ(XPLMProbeRef inProbe, float inX, float inY, float inZ,
                                             XPLMProbeInfo_t * outInfo);
#endif /* XPLM200 */

#if defined(XPLM300)
/* Magnetic variation, degrees */
XPLM_API float       XPLMGetMagneticVariation(double latitude, double longitude);
XPLM_API float       XPLMDegTrueToDegMagnetic(float headingDegreesTrue);
XPLM_API float       XPLMDegMagneticToDegTrue(float headingDegreesMagnetic);
#endif /* XPLM300 */

#if defined(XPLM200)
/* Scenery objects */
typedef void * XPLMObjectRef;

typedef struct {
    int    structSize;
    float  x;
    float  y;
    float  z;
    float  pitch;
    float  heading;
    float  roll;
} XPLMDrawInfo_t;
#endif /* XPLM200 */

#if defined(XPLM210)
typedef void (* XPLMObjectLoaded_f)(XPLMObjectRef inObject, void * inRefcon);
#endif /* XPLM210 */

#if defined(XPLM200)
XPLM_API XPLMObjectRef XPLMLoadObject(const char * inPath);
#endif /* XPLM200 */
#if defined(XPLM210)
XPLM_API void        XPLMLoadObjectAsync(const char * inPath, XPLMObjectLoaded_f inCallback,
                                         void * inRefcon);
#endif /* XPLM210 */
#if defined(XPLM_DEPRECATED)
XPLM_API void        XPLMDrawObjects(XPLMObjectRef inObject, int inCount,
                                     XPLMDrawInfo_t * inLocations, int lighting, int earth_relative);
#endif /* XPLM_DEPRECATED */
#if defined(XPLM200)
XPLM_API void        XPLMUnloadObject(XPLMObjectRef inObject);

/* Library lookups */
typedef void (* XPLMLibraryEnumerator_f)(const char * inFilePath, void * inRef);

XPLM_API int         XPLMLookupObjects(const char * inPath, float inLatitude, float inLongitude,
                                       XPLMLibraryEnumerator_f enumerator, void * ref);
#endif /* XPLM200 */

#ifdef __cplusplus
}
#endif

#endif
