/*
 * TVPMMenus.h: menus and menu items in the simulator's menu bar, including
 * the shared "Plugins" menu and the "<Aircraft>" menu of aircraft plugins.
 *
 * Items are addressed by an index that counts only the current plugin's own
 * items in that menu, in menu order: in a shared menu every plugin sees its
 * items numbered from 0, whatever other plugins added.
 *
 * In the calls that take an item index, an unknown menu or an index the
 * plugin does not have is reported to the current plugin's error callback,
 * and the call changes nothing.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMMenus_h
#define TVPMMenus_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A menu [handle]. It stays valid until TVPMDestroyMenu or until the plugin
 * that created it is unloaded. */
typedef void* TVPMMenuID;

/* The check mark of an item. */
typedef int TVPMMenuCheck;
enum {
    tvpm_Menu_NoCheck = 0,   /* the item shows no check mark */
    tvpm_Menu_Unchecked = 1, /* the item can be checked and is not */
    tvpm_Menu_Checked = 2    /* the item is checked */
};

/* Called when an item of the menu is picked, with the menu's refcon and the
 * item's refcon. Not called while the menu's plugin is disabled, nor for a
 * disabled item. */
typedef void (*TVPMMenuHandler_f)(void* inMenuRef, void* inItemRef);

/* The shared "Plugins" menu, open to every plugin. */
TVPM_API TVPMMenuID TVPMFindPluginsMenu(void);
/* The shared "<Aircraft>" menu, for the plugins of the user's aircraft only;
 * null for any other plugin (logged once per plugin). */
TVPM_API TVPMMenuID TVPMFindAircraftMenu(void);
/* Creates a menu owned by the current plugin, hung on item inParentItem of
 * inParentMenu. With a null parent the menu gets an item of its own, named
 * inName, in the "Plugins" menu and hangs there. inHandler (may be null)
 * receives the picks, with inMenuRef as its menu refcon. */
TVPM_API TVPMMenuID TVPMCreateMenu(const char* inName, TVPMMenuID inParentMenu, int inParentItem,
                                   TVPMMenuHandler_f inHandler, void* inMenuRef);
/* Destroys a menu the current plugin created, after removing the plugin's
 * items from it; the ID is invalid afterwards. Submenus and the parent's item
 * stay. Other plugins' menus are left alone (not reported). */
TVPM_API void TVPMDestroyMenu(TVPMMenuID inMenuID);
/* Removes all of the current plugin's items from a menu it created, or from
 * the "Plugins" menu; any other menu is left alone (not reported). */
TVPM_API void TVPMClearAllMenuItems(TVPMMenuID inMenuID);
/* Appends an item with the item refcon inItemRef; returns its index, or -1
 * for an unknown menu (not reported). inForceEnglish is ignored. */
TVPM_API int TVPMAppendMenuItem(TVPMMenuID inMenu, const char* inItemName, void* inItemRef,
                                int inForceEnglish);
/* Appends an item that runs a simulator command when picked; returns its
 * index, or -1 for an unknown menu. */
TVPM_API int TVPMAppendMenuItemWithCommand(TVPMMenuID inMenu, const char* inItemName,
                                           TVPMCommandRef inCommandToExecute);
/* Appends a separator line (it takes an index like any item). */
TVPM_API void TVPMAppendMenuSeparator(TVPMMenuID inMenu);
/* Renames an item. inForceEnglish is ignored. */
TVPM_API void TVPMSetMenuItemName(TVPMMenuID inMenu, int inIndex, const char* inItemName,
                                  int inForceEnglish);
/* Sets an item's check mark. */
TVPM_API void TVPMCheckMenuItem(TVPMMenuID inMenu, int index, TVPMMenuCheck inCheck);
/* Reads an item's check mark into outCheck. */
TVPM_API void TVPMCheckMenuItemState(TVPMMenuID inMenu, int index, TVPMMenuCheck* outCheck);
/* Enables (1) or greys out (0) an item. */
TVPM_API void TVPMEnableMenuItem(TVPMMenuID inMenu, int index, int enabled);
/* Removes an item; the current plugin's later items move down by one. */
TVPM_API void TVPMRemoveMenuItem(TVPMMenuID inMenu, int inIndex);

#ifdef __cplusplus
}
#endif

#endif /* TVPMMenus_h */
