#ifndef _XPLMMenus_h_
#define _XPLMMenus_h_

/* Vistarig's own declaration of the simulator plug-in API: menus in the simulator's menu bar. */

#include "XPLMDefs.h"
#include "XPLMUtilities.h"

#ifdef __cplusplus
extern "C" {
#endif

enum {
    xplm_Menu_NoCheck   = 0,
    xplm_Menu_Unchecked = 1,
    xplm_Menu_Checked   = 2
};
typedef int XPLMMenuCheck;

typedef void * XPLMMenuID;

typedef void (* XPLMMenuHandler_f)(void * inMenuRef, void * inItemRef);

/* Finding and creating menus */
XPLM_API XPLMMenuID  XPLMFindPluginsMenu(void);
#if defined(XPLM300)
XPLM_API XPLMMenuID  XPLMFindAircraftMenu(void);
#endif /* XPLM300 */
XPLM_API XPLMMenuID  XPLMCreateMenu(const char * inName, XPLMMenuID inParentMenu, int inParentItem,
                                    XPLMMenuHandler_f inHandler, void * inMenuRef);
XPLM_API void        XPLMDestroyMenu(XPLMMenuID inMenuID);
XPLM_API void        XPLMClearAllMenuItems(XPLMMenuID inMenuID);

/* Items; these return the new item's index */
XPLM_API int         XPLMAppendMenuItem(XPLMMenuID inMenu, const char * inItemName,
                                        void * inItemRef, int inDeprecatedAndIgnored);
#if defined(XPLM300)
XPLM_API int         XPLMAppendMenuItemWithCommand(XPLMMenuID inMenu, const char * inItemName,
                                                   XPLMCommandRef inCommandToExecute);
#endif /* XPLM300 */
XPLM_API void        XPLMAppendMenuSeparator(XPLMMenuID inMenu);
XPLM_API void        XPLMSetMenuItemName(XPLMMenuID inMenu, int inIndex, const char * inItemName,
                                         int inDeprecatedAndIgnored);
XPLM_API void        XPLMCheckMenuItem(XPLMMenuID inMenu, int index, XPLMMenuCheck inCheck);
XPLM_API void        XPLMCheckMenuItemState(XPLMMenuID inMenu, int index, XPLMMenuCheck * outCheck);
XPLM_API void        XPLMEnableMenuItem(XPLMMenuID inMenu, int index, int enabled);
#if defined(XPLM210)
XPLM_API void        XPLMRemoveMenuItem(XPLMMenuID inMenu, int inIndex);
#endif /* XPLM210 */

#ifdef __cplusplus
}
#endif

#endif
