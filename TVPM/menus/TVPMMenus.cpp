// TVPMMenus.cpp: the mirror of every plugin menu, plugin-relative item indices, and menu picks and states for the simulator.
#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMLoader.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

struct TVPMItemInfo_t {
    int itemCode;
    void* itemRef;
    TVPMCommandRef itemCommand;
    TVPMMenuCheck itemCheck;
    int itemEnable;
    TVPMPluginID plugin;  // who appended it, not who owns the menu
};

struct TVPMMenuInfo_t {
    intptr_t menuHandle;
    void* menuRef;
    // In host order: index = the host's item index. A deque, so that a growing
    // menu never copies the items it already has.
    std::deque<TVPMItemInfo_t> items;
    TVPMMenuHandler_f handler;
    TVPMPluginID plugin;
    // How many of the items each plugin appended, so that appending is O(1).
    std::unordered_map<TVPMPluginID, int> itemsOwned;
};

// In creation order. Owned here, so that menus a host never shut down are
// still freed with the library.
TVPMRecordSet<TVPMMenuInfo_t> gMenus;
TVPMMenuInfo_t* gPluginMenu = nullptr;
TVPMMenuInfo_t* gAircraftMenu = nullptr;

size_t CountItemsOf(const TVPMMenuInfo_t* menu, TVPMPluginID id) {
    if (!menu) return 0;
    return static_cast<size_t>(std::count_if(menu->items.begin(), menu->items.end(),
                                             [id](const TVPMItemInfo_t& i) { return i.plugin == id; }));
}

TVPM_FAMILY_RECORD_COUNT("menus", [](TVPMPluginID id) { return gMenus.CountOwnedBy(id); });
// Items a plugin added to other plugins' menus are left with those menus.
TVPM_FAMILY_RECORD_COUNT("shared menu items", [](TVPMPluginID id) {
    return CountItemsOf(gPluginMenu, id) + CountItemsOf(gAircraftMenu, id);
});
// Plugins already told that the aircraft menu is not theirs.
std::vector<TVPMPluginID> s_reportedAircraftMenuUsers;

constexpr const char* kRemoveRangeError =
    "TVPMRemoveMenuItem was passed an out of range item index.";
constexpr const char* kRenameRangeError =
    "TVPMSetMenuItemName was passed an out of range item index.";
constexpr const char* kCheckRangeError = "TVPMCheckMenuItem was passed an out of range item index.";
// Also the text of TVPMEnableMenuItem: the two calls share it.
constexpr const char* kStateRangeError =
    "TVPMCheckMenuItemState was passed an out of range item index.";

constexpr int kHooksSizeWithDestroyMenu = 1320;

const char* NonNull(const char* text) { return text ? text : ""; }

TVPMMenuInfo_t* FindMenu(TVPMMenuID id) {
    return gMenus.Contains(id) ? static_cast<TVPMMenuInfo_t*>(id) : nullptr;
}

TVPMMenuInfo_t* FindMenuByHandle(intptr_t handle) {
    for (TVPMSetWalk<TVPMMenuInfo_t> walk(gMenus); TVPMMenuInfo_t* menu = walk.Next();)
        if (menu->menuHandle == handle) return menu;
    return nullptr;
}

// The host index of the n-th item that plugin owns in the menu, or -1.
int TVPMItemPluginToGlobal(const TVPMMenuInfo_t* menu, int n, TVPMPluginID plugin) {
    if (!menu || n < 0) return -1;
    for (size_t i = 0; i < menu->items.size(); ++i)
        if (menu->items[i].plugin == plugin && n-- == 0) return static_cast<int>(i);
    return -1;
}

// The current plugin's item inIndex of inMenu, or null (reported with text)
// for an unknown menu or an index out of range.
TVPMItemInfo_t* FindOwnItem(TVPMMenuID inMenu, int inIndex, const char* rangeError,
                            TVPMMenuInfo_t** outMenu = nullptr, int* outGlobal = nullptr) {
    TVPMMenuInfo_t* menu = FindMenu(inMenu);
    const int global = TVPMItemPluginToGlobal(menu, inIndex, gDispatchedPlugin);
    if (global < 0) {
        TVPMSendError(rangeError);
        return nullptr;
    }
    if (outMenu) *outMenu = menu;
    if (outGlobal) *outGlobal = global;
    return &menu->items[static_cast<size_t>(global)];
}

int AppendItem(TVPMMenuInfo_t* menu, int code, void* itemRef, TVPMCommandRef command) {
    menu->items.push_back({code, itemRef, command, tvpm_Menu_NoCheck, 1, gDispatchedPlugin});
    // The new item is the plugin's last: its index is the count before it.
    return menu->itemsOwned[gDispatchedPlugin]++;
}

void ForgetItemsOwned(TVPMMenuInfo_t* menu, TVPMPluginID plugin, int count) {
    auto it = menu->itemsOwned.find(plugin);
    if (it != menu->itemsOwned.end() && (it->second -= count) <= 0) menu->itemsOwned.erase(it);
}

void RemoveGlobalItem(TVPMMenuInfo_t* menu, int global) {
    gHooks->TVPMRemoveMenuItem_f(menu->menuHandle, global);
    ForgetItemsOwned(menu, menu->items[static_cast<size_t>(global)].plugin, 1);
    menu->items.erase(menu->items.begin() + global);
}

// One pass: the host is told of each item at the index it has once the ones
// before it are gone, first to last, as if they were removed one by one.
void RemoveItemsOf(TVPMMenuInfo_t* menu, TVPMPluginID plugin) {
    if (!menu) return;
    int removed = 0;
    for (size_t i = 0; i < menu->items.size(); ++i)
        if (menu->items[i].plugin == plugin)
            gHooks->TVPMRemoveMenuItem_f(menu->menuHandle, static_cast<int>(i) - removed++);
    menu->items.erase(std::remove_if(menu->items.begin(), menu->items.end(),
                                     [plugin](const TVPMItemInfo_t& item) {
                                         return item.plugin == plugin;
                                     }),
                      menu->items.end());
    ForgetItemsOwned(menu, plugin, removed);
}

// A menu the host no longer shows; the shared menus are forgotten with it.
void ForgetSharedMenu(const TVPMMenuInfo_t* menu) {
    if (menu == gPluginMenu) gPluginMenu = nullptr;
    if (menu == gAircraftMenu) gAircraftMenu = nullptr;
}

bool AlreadyReported(TVPMPluginID id) {
    return std::find(s_reportedAircraftMenuUsers.begin(), s_reportedAircraftMenuUsers.end(), id) !=
           s_reportedAircraftMenuUsers.end();
}

void ReportAircraftMenuRefused(TVPMPluginID id) {
    if (AlreadyReported(id)) return;
    s_reportedAircraftMenuUsers.push_back(id);
    const PluginRecord* r = TVPMGetPluginRecord(id);
    const std::string line = "Error: Non-aircraft plugin " + (r ? r->name : std::string()) +
                             " failed to access the aircraft menu.\n";
    TVPMDebugString(line.c_str());
}

bool IsValidGlobalIndex(const TVPMMenuInfo_t* menu, int index) {
    return index >= 0 && static_cast<size_t>(index) < menu->items.size();
}

}  // namespace

void TVPMInitMenus() {
    StActingAsSimulator asSimulator;
    gPluginMenu = nullptr;
    // "<Aircraft>" comes first: with no "Plugins" menu yet it becomes a top-level menu.
    gAircraftMenu =
        static_cast<TVPMMenuInfo_t*>(TVPMCreateMenu("<Aircraft>", nullptr, 0, nullptr, nullptr));
    gPluginMenu =
        static_cast<TVPMMenuInfo_t*>(TVPMCreateMenu("Plugins", nullptr, 0, nullptr, nullptr));
}

TVPM_API TVPMMenuID TVPMFindPluginsMenu(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gPluginMenu;
}

TVPM_API TVPMMenuID TVPMFindAircraftMenu(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (TVPMIsAcfPlugin(gDispatchedPlugin)) return gAircraftMenu;
    ReportAircraftMenuRefused(gDispatchedPlugin);
    return nullptr;
}

TVPM_API TVPMMenuID TVPMCreateMenu(const char* inName, TVPMMenuID inParentMenu, int inParentItem,
                                   TVPMMenuHandler_f inHandler, void* inMenuRef) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inParentMenu && gPluginMenu) {
        inParentItem = TVPMAppendMenuItem(gPluginMenu, inName, nullptr, 0);
        inParentMenu = gPluginMenu;
    }
    intptr_t parentHandle = 0;
    int parentItem = inParentItem;
    if (inParentMenu) {
        const TVPMMenuInfo_t* parent = FindMenu(inParentMenu);
        parentHandle = parent ? parent->menuHandle : 0;
        parentItem = TVPMItemPluginToGlobal(parent, inParentItem, gDispatchedPlugin);
    }
    const intptr_t handle = gHooks->TVPMCreateMenu_f(parentHandle, parentItem, NonNull(inName));
    return gMenus.Add(new TVPMMenuInfo_t{handle, inMenuRef, {}, inHandler, gDispatchedPlugin, {}});
}

TVPM_API int TVPMAppendMenuItem(TVPMMenuID inMenu, const char* inItemName, void* inItemRef,
                                int /*inForceEnglish*/) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = FindMenu(inMenu);
    if (!menu) return -1;
    const int code = gHooks->TVPMAppendMenu_f(menu->menuHandle, NonNull(inItemName));
    return AppendItem(menu, code, inItemRef, nullptr);
}

TVPM_API int TVPMAppendMenuItemWithCommand(TVPMMenuID inMenu, const char* inItemName,
                                           TVPMCommandRef inCommandToExecute) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = FindMenu(inMenu);
    if (!menu) return -1;
    const int code = gHooks->TVPMAppendMenuWithCommand_f(menu->menuHandle, NonNull(inItemName),
                                                         inCommandToExecute);
    return AppendItem(menu, code, nullptr, inCommandToExecute);
}

TVPM_API void TVPMAppendMenuSeparator(TVPMMenuID inMenu) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMAppendMenuItem(inMenu, "-", nullptr, 0);
}

TVPM_API void TVPMSetMenuItemName(TVPMMenuID inMenu, int inIndex, const char* inItemName,
                                  int /*inForceEnglish*/) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = nullptr;
    int global = -1;
    if (!FindOwnItem(inMenu, inIndex, kRenameRangeError, &menu, &global)) return;
    gHooks->TVPMSetMenuTitle_f(menu->menuHandle, global, NonNull(inItemName));
}

TVPM_API void TVPMCheckMenuItem(TVPMMenuID inMenu, int index, TVPMMenuCheck inCheck) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    // The host asks for check marks through its check hook; it is not told here.
    if (TVPMItemInfo_t* item = FindOwnItem(inMenu, index, kCheckRangeError))
        item->itemCheck = inCheck;
}

TVPM_API void TVPMCheckMenuItemState(TVPMMenuID inMenu, int index, TVPMMenuCheck* outCheck) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMItemInfo_t* item = FindOwnItem(inMenu, index, kStateRangeError);
    if (item && outCheck) *outCheck = item->itemCheck;
}

TVPM_API void TVPMEnableMenuItem(TVPMMenuID inMenu, int index, int enabled) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (TVPMItemInfo_t* item = FindOwnItem(inMenu, index, kStateRangeError))
        item->itemEnable = enabled;
}

TVPM_API void TVPMRemoveMenuItem(TVPMMenuID inMenu, int inIndex) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = nullptr;
    int global = -1;
    if (!FindOwnItem(inMenu, inIndex, kRemoveRangeError, &menu, &global)) return;
    RemoveGlobalItem(menu, global);
}

TVPM_API void TVPMClearAllMenuItems(TVPMMenuID inMenuID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = FindMenu(inMenuID);
    if (!menu || (menu->plugin != gDispatchedPlugin && menu != gPluginMenu)) return;
    RemoveItemsOf(menu, gDispatchedPlugin);
}

TVPM_API void TVPMDestroyMenu(TVPMMenuID inMenuID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMMenuInfo_t* menu = FindMenu(inMenuID);
    if (!menu || menu->plugin != gDispatchedPlugin) return;
    RemoveItemsOf(menu, gDispatchedPlugin);
    // A host with a shorter table has no way to destroy a menu.
    if (gHooks->structSize >= kHooksSizeWithDestroyMenu)
        gHooks->TVPMDestroyMenu_f(menu->menuHandle);
    ForgetSharedMenu(menu);
    gMenus.Remove(menu);
}

int TVPMHandleMenuItemPick(int inCode) {
    for (TVPMSetWalk<TVPMMenuInfo_t> walk(gMenus); TVPMMenuInfo_t* menu = walk.Next();) {
        for (const TVPMItemInfo_t& item : menu->items) {
            if (item.itemCode != inCode) continue;
            if (!menu->handler || !item.itemEnable) return 0;
            // Copied first: the handler may change the menu's items.
            const TVPMMenuHandler_f handler = menu->handler;
            void* const menuRef = menu->menuRef;
            void* const itemRef = item.itemRef;
            TVPMCallPlugin(menu->plugin, TVPMCallSite::kMenu, [&] { handler(menuRef, itemRef); });
            return 0;
        }
    }
    return 1;
}

int TVPMHandleMenuItemCheck(intptr_t inMenu, int inItem, int* outCheck) {
    const TVPMMenuInfo_t* menu = FindMenuByHandle(inMenu);
    if (!menu || !IsValidGlobalIndex(menu, inItem)) return 1;
    const TVPMMenuCheck check = menu->items[static_cast<size_t>(inItem)].itemCheck;
    if (check >= 3) return 1;
    // The host counts -1 no mark, 0 unchecked, 1 checked.
    if (outCheck) *outCheck = check - 1;
    return 0;
}

int TVPMHandleMenuItemEnable(intptr_t menuIndex, int itemIndex) {
    const TVPMMenuInfo_t* menu = FindMenuByHandle(menuIndex);
    if (!menu || !IsValidGlobalIndex(menu, itemIndex)) return 1;
    if (menu->plugin >= 0 && !TVPMIsPluginEnabled(menu->plugin)) return 0;
    return menu->items[static_cast<size_t>(itemIndex)].itemEnable;
}

void TVPMMenuCleanupHook(TVPMPluginID id) {
    gMenus.RemoveOwnedBy(id, [](TVPMMenuInfo_t* menu) {
        gHooks->TVPMDestroyMenu_f(menu->menuHandle);
        ForgetSharedMenu(menu);
    });
    RemoveItemsOf(gPluginMenu, id);
    RemoveItemsOf(gAircraftMenu, id);
}
