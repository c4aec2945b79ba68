#ifndef _XPLMNavigation_h_
#define _XPLMNavigation_h_

/* Vistarig's own declaration of the simulator plug-in API: navigation database, FMS and GPS. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One bit per type so sets of types can be OR-ed together */
enum {
    xplm_Nav_Unknown      = 0,
    xplm_Nav_Airport      = 1,
    xplm_Nav_NDB          = 2,
    xplm_Nav_VOR          = 4,
    xplm_Nav_ILS          = 8,
    xplm_Nav_Localizer    = 16,
    xplm_Nav_GlideSlope   = 32,
    xplm_Nav_OuterMarker  = 64,
    xplm_Nav_MiddleMarker = 128,
    xplm_Nav_InnerMarker  = 256,
    xplm_Nav_Fix          = 512,
    xplm_Nav_DME          = 1024,
    xplm_Nav_LatLon       = 2048
#if defined(XPLM400)
   ,xplm_Nav_TACAN        = 4096
#endif /* XPLM400 */
};
typedef int XPLMNavType;

typedef int XPLMNavRef;

#define XPLM_NAV_NOT_FOUND -1

/* Navigation database */
XPLM_API XPLMNavRef  XPLMGetFirstNavAid(void);
XPLM_API XPLMNavRef  XPLMGetNextNavAid(XPLMNavRef inNavAidRef);
XPLM_API XPLMNavRef  XPLMFindFirstNavAidOfType(XPLMNavType inType);
XPLM_API XPLMNavRef  XPLMFindLastNavAidOfType(XPLMNavType inType);
XPLM_API XPLMNavRef  XPLMFindNavAid(const char * inNameFragment, const char * inIDFragment,
                                    float * inLat, float * inLon, int * inFrequency,
                                    XPLMNavType inType);
XPLM_API void        XPLMGetNavAidInfo(XPLMNavRef inRef, XPLMNavType * outType,
                                       float * outLatitude, float * outLongitude,
                                       float * outHeight, int * outFrequency,
                                       float * outHeading, char * outID, char * outName,
                                       char * outReg);

/* Flight management computer */
XPLM_API int         XPLMCountFMSEntries(void);
XPLM_API int         XPLMGetDisplayedFMSEntry(void);
XPLM_API int         XPLMGetDestinationFMSEntry(void);
XPLM_API void        XPLMSetDisplayedFMSEntry(int inIndex);
XPLM_API void        XPLMSetDestinationFMSEntry(int inIndex);
XPLM_API void        XPLMGetFMSEntryInfo(int inIndex, XPLMNavType * outType, char * outID,
                                         XPLMNavRef * outRef, int * outAltitude,
                                         float * outLat, float * outLon);
XPLM_API void        XPLMSetFMSEntryInfo(int inIndex, XPLMNavRef inRef, int inAltitude);
XPLM_API void        XPLMSetFMSEntryLatLon(int inIndex, float inLat, float inLon, int inAltitude);
XPLM_API void        XPLMClearFMSEntry(int inIndex);

/* GPS */
XPLM_API XPLMNavType XPLMGetGPSDestinationType(void);
XPLM_API XPLMNavRef  XPLMGetGPSDestination(void);

#ifdef __cplusplus
}
#endif

#endif
