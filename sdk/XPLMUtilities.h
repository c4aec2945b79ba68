#ifndef _XPLMUtilities_h_
#define _XPLMUtilities_h_

/* Vistarig's own declaration of the simulator plug-in API: files, versions, logging, speech, commands. */

#include "XPLMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* File utilities */
#if defined(XPLM200)
enum {
    xplm_DataFile_Situation   = 1,
    xplm_DataFile_ReplayMovie = 2
};
typedef int XPLMDataFileType;
#endif /* XPLM200 */

XPLM_API void        XPLMGetSystemPath(char * outSystemPath);
XPLM_API void        XPLMGetPrefsPath(char * outPrefsPath);
XPLM_API const char * XPLMGetDirectorySeparator(void);
XPLM_API char *      XPLMExtractFileAndPath(char * inFullPath);
XPLM_API int         XPLMGetDirectoryContents(
                         const char *         inDirectoryPath,
                         int                  inFirstReturn,
                         char *               outFileNames,
                         int                  inFileNameBufSize,
                         char **              outIndices,
                         int                  inIndexCount,
                         int *                outTotalFiles,
                         int *                outReturnedFiles);

#if defined(XPLM200)
XPLM_API int         XPLMLoadDataFile(XPLMDataFileType inFileType, const char * inFilePath);
XPLM_API int         XPLMSaveDataFile(XPLMDataFileType inFileType, const char * inFilePath);
#endif /* XPLM200 */

/* Host application and language */
enum {
    xplm_Host_Unknown     = 0,
    xplm_Host_XPlane      = 1
#if defined(XPLM_DEPRECATED)
   ,xplm_Host_PlaneMaker  = 2,
    xplm_Host_WorldMaker  = 3,
    xplm_Host_Briefer     = 4,
    xplm_Host_PartMaker   = 5,
    xplm_Host_YoungsMod   = 6,
    xplm_Host_XAuto       = 7,
    xplm_Host_Xavion      = 8,
    xplm_Host_Control_Pad = 9,
    xplm_Host_PFD_Map     = 10,
    xplm_Host_RADAR       = 11
#endif /* XPLM_DEPRECATED */
};
typedef int XPLMHostApplicationID;

enum {
    xplm_Language_Unknown   = 0,
    xplm_Language_English   = 1,
    xplm_Language_French    = 2,
    xplm_Language_German    = 3,
    xplm_Language_Italian   = 4,
    xplm_Language_Spanish   = 5,
    xplm_Language_Korean    = 6
#if defined(XPLM200)
   ,xplm_Language_Russian   = 7,
    xplm_Language_Greek     = 8,
    xplm_Language_Japanese  = 9
#endif /* XPLM200 */
#if defined(XPLM300)
   ,xplm_Language_Chinese   = 10
#endif /* XPLM300 */
#if defined(XPLM400)
   ,xplm_Language_Ukrainian = 11
#endif /* XPLM400 */
};
typedef int XPLMLanguageCode;

#if defined(XPLM200)
typedef void (* XPLMError_CB)(const char * inMessage);
#endif /* XPLM200 */

XPLM_API void        XPLMGetVersions(int * outXPlaneVersion, int * outXPLMVersion,
                                     XPLMHostApplicationID * outHostID);
XPLM_API XPLMLanguageCode XPLMGetLanguage(void);

#if defined(XPLM200)
XPLM_API void *      XPLMFindSymbol(const char * inString);
XPLM_API void        XPLMSetErrorCallback(XPLMError_CB inCallback);
#endif /* XPLM200 */

/* Log file, speech, keys, scenery */
XPLM_API void        XPLMDebugString(const char * inString);
XPLM_API void        XPLMSpeakString(const char * inString);
XPLM_API const char * XPLMGetVirtualKeyDescription(char inVirtualKey);
XPLM_API void        XPLMReloadScenery(void);

/* Commands */
#if defined(XPLM200)
enum {
    xplm_CommandBegin    = 0,
    xplm_CommandContinue = 1,
    xplm_CommandEnd      = 2
};
typedef int XPLMCommandPhase;

typedef void * XPLMCommandRef;

typedef int (* XPLMCommandCallback_f)(XPLMCommandRef inCommand, XPLMCommandPhase inPhase,
                                      void * inRefcon);

XPLM_API XPLMCommandRef XPLMFindCommand(const char * inName);
XPLM_API void        XPLMCommandBegin(XPLMCommandRef inCommand);
XPLM_API void        XPLMCommandEnd(XPLMCommandRef inCommand);
XPLM_API void        XPLMCommandOnce(XPLMCommandRef inCommand);
XPLM_API XPLMCommandRef XPLMCreateCommand(const char * inName, const char * inDescription);
XPLM_API void        XPLMRegisterCommandHandler(XPLMCommandRef inComand,
                                                XPLMCommandCallback_f inHandler,
                                                int inBefore, void * inRefcon);
XPLM_API void        XPLMUnregisterCommandHandler(XPLMCommandRef inComand,
                                                  XPLMCommandCallback_f inHandler,
                                                  int inBefore, void * inRefcon);
#endif /* XPLM200 */

#ifdef __cplusplus
}
#endif

#endif
