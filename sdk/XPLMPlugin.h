#ifndef _XPLMPlugin_h_
#define _XPLMPlugin_h_

/* Vistarig's own declaration of the simulator plug-in API: plug-in discovery, messages and features. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Finding plug-ins */
XPLM_API XPLMPluginID XPLMGetMyID(void);
XPLM_API int         XPLMCountPlugins(void);
XPLM_API XPLMPluginID XPLMGetNthPlugin(int inIndex);
XPLM_API XPLMPluginID XPLMFindPluginByPath(const char * inPath);
XPLM_API XPLMPluginID XPLMFindPluginBySignature(const char * inSignature);
XPLM_API void        XPLMGetPluginInfo(XPLMPluginID inPlugin, char * outName, char * outFilePath,
                                       char * outSignature, char * outDescription);

/* Enabling plug-ins */
XPLM_API int         XPLMIsPluginEnabled(XPLMPluginID inPluginID);
XPLM_API int         XPLMEnablePlugin(XPLMPluginID inPluginID);
XPLM_API void        XPLMDisablePlugin(XPLMPluginID inPluginID);
XPLM_API void        XPLMReloadPlugins(void);

/* Messages the simulator sends to every plug-in */
#define XPLM_MSG_PLANE_CRASHED          101
#define XPLM_MSG_PLANE_LOADED           102
#define XPLM_MSG_AIRPORT_LOADED         103
#define XPLM_MSG_SCENERY_LOADED         104
#define XPLM_MSG_AIRPLANE_COUNT_CHANGED 105
#if defined(XPLM200)
#define XPLM_MSG_PLANE_UNLOADED         106
#endif /* XPLM200 */
#if defined(XPLM210)
#define XPLM_MSG_WILL_WRITE_PREFS       107
#endif /* XPLM210 */
#if defined(XPLM210)
#define XPLM_MSG_LIVERY_LOADED          108
#endif /* XPLM210 */
#if defined(XPLM301)
#define XPLM_MSG_ENTERED_VR             109
#endif /* XPLM301 */
#if defined(XPLM301)
#define XPLM_MSG_EXITING_VR             110
#endif /* XPLM301 */
#if defined(XPLM303)
#define XPLM_MSG_RELEASE_PLANES         111
#endif /* XPLM303 */
#if defined(XPLM400)
#define XPLM_MSG_FMOD_BANK_LOADED       112
#endif /* XPLM400 */
#if defined(XPLM400)
#define XPLM_MSG_FMOD_BANK_UNLOADING    113
#endif /* XPLM400 */
#if defined(XPLM400)
#define XPLM_MSG_DATAREFS_ADDED         114
#endif /* XPLM400 */

XPLM_API void        XPLMSendMessageToPlugin(XPLMPluginID inPlugin, int inMessage, void * inParam);

#if defined(XPLM200)
/* Optional behaviours of the plug-in system */
typedef void (* XPLMFeatureEnumerator_f)(const char * inFeature, void * inRef);

XPLM_API int         XPLMHasFeature(const char * inFeature);
XPLM_API int         XPLMIsFeatureEnabled(const char * inFeature);
XPLM_API void        XPLMEnableFeature(const char * inFeature, int inEnable);
XPLM_API void        XPLMEnumerateFeatures(XPLMFeatureEnumerator_f inEnumerator, void * inRef);
#endif /* XPLM200 */

#ifdef __cplusplus
}
#endif

#endif
