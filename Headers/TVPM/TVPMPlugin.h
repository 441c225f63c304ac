/*
 * TVPMPlugin.h: plugin management: who is loaded, messages between plugins,
 * enabling, disabling and reloading plugins, error reporting and optional
 * features.
 *
 * Every function here is [plugin-thread]. Terms are defined in TVPMDefs.h.
 *
 * A plugin exports these entry points (TVPM_PLUGIN_API):
 *   int  TPluginStart(char* outName, char* outSignature, char* outDescription);
 *        required; fill the three 256-byte buffers, return 1 to start, 0 to refuse.
 *        The signature must be unique among loaded plugins.
 *   void TPluginStop(void);
 *   int  TPluginEnable(void);      return 0 to stay disabled
 *   void TPluginDisable(void);
 *   void TPluginReceiveMessage(TVPMPluginID inFrom, int inMessage, void* inParam);
 */
#ifndef TVPMPlugin_h
#define TVPMPlugin_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Finding plugins -------------------------------------------------- */

/* The ID of the calling plugin [current plugin]: 0 when the simulator itself
 * is calling. */
TVPM_API TVPMPluginID TVPMGetMyID(void);
/* Number of loaded plugins, the simulator's own entry included. */
TVPM_API int TVPMCountPlugins(void);
/* The ID of the nth plugin, 0 <= inIndex < TVPMCountPlugins(). IDs are
 * indices, so this returns inIndex unchanged (no range check). */
TVPM_API TVPMPluginID TVPMGetNthPlugin(int inIndex);
/* The plugin loaded from exactly this library path (first match in ID order),
 * or TVPM_NO_PLUGIN_ID. */
TVPM_API TVPMPluginID TVPMFindPluginByPath(const char* inPath);
/* The plugin with exactly this signature, or TVPM_NO_PLUGIN_ID. */
TVPM_API TVPMPluginID TVPMFindPluginBySignature(const char* inSignature);
/* Copies name, library path, signature and description into the non-null
 * buffers [caller-buffer]; an invalid ID leaves every buffer untouched. */
TVPM_API void TVPMGetPluginInfo(TVPMPluginID inPlugin, char* outName, char* outFilePath,
                                char* outSignature, char* outDescription);
/* The name of the plugin whose library holds the code address ip
 * ([static-text] until that plugin is unloaded), storing its ID in out_id
 * when not null; null, out_id untouched, for TVPM's own code, the
 * simulator's and any other address. Plugin thread. */
TVPM_API const char* TVPMFindPluginForIP(void* ip, TVPMPluginID* out_id);

/* ---- Enabling and reloading -------------------------------------------- */

/* 1 when the plugin is enabled. */
TVPM_API int TVPMIsPluginEnabled(TVPMPluginID inPluginID);
/* Enables a plugin; returns its enabled state afterwards (0 or 1). */
TVPM_API int TVPMEnablePlugin(TVPMPluginID inPluginID);
/* Disables a plugin: its callbacks stop until it is enabled again. */
TVPM_API void TVPMDisablePlugin(TVPMPluginID inPluginID);
/* Asks for every plugin to be unloaded and loaded again. The reload happens
 * at the end of the current or next flight-loop pass, never inside the
 * calling callback. */
TVPM_API void TVPMReloadPlugins(void);
/* Reloads the plugins of the user's aircraft at once. Loading leaves the
 * simulator as the [current plugin]: a plugin that calls this should return
 * from its callback right after, without registering anything more. */
TVPM_API void TVPMReloadACFPlugins(void);

/* ---- Messages ----------------------------------------------------------- */

/* Calls the message entry of one plugin, or of every plugin (and the
 * simulator) for TVPM_NO_PLUGIN_ID, synchronously and in ID order; disabled
 * plugins miss it. The receiver sees the [current plugin] as sender and gets
 * inParam unchanged; it is the receiver's current plugin during the call. An
 * ID below TVPM_NO_PLUGIN_ID or past the last plugin is ignored. */
TVPM_API void TVPMSendMessageToPlugin(TVPMPluginID inPlugin, int inMessage, void* inParam);

/* ---- Errors --------------------------------------------------------------- */

/* Receives a description of a misuse of the interface by this plugin; the
 * text is only valid during the call. */
typedef void (*TVPMError_f)(const char* inMessage);
/* Installs the error callback of the [current plugin], which then receives
 * reports of its misuse of the interface; null switches reports off (and some
 * functions then skip their argument checks). */
TVPM_API void TVPMSetErrorCallback(TVPMError_f inCallback);

/* ---- Features ------------------------------------------------------------- */

/* Receives one feature name [static-text]. */
typedef void (*TVPMFeatureEnumerator_f)(const char* inFeature, void* inRef);

/* 1 when this version of TVPM knows the feature (names are case-sensitive). */
TVPM_API int TVPMHasFeature(const char* inFeature);
/* The value the [current plugin] set for the feature, 0 until set. An unknown
 * name is reported to the error callback (as a TVPMEnableFeature misuse) and
 * gives 0. */
TVPM_API int TVPMIsFeatureEnabled(const char* inFeature);
/* Sets the [current plugin]'s value for the feature; the value is kept as
 * given and any non-zero value is on. Kept while the plugin is disabled, lost
 * when it is unloaded. An unknown name is reported to the error callback. */
TVPM_API void TVPMEnableFeature(const char* inFeature, int inEnable);
/* Calls inEnumerator once for each known feature name [static-text], in a
 * fixed order, passing inRef unchanged. */
TVPM_API void TVPMEnumerateFeatures(TVPMFeatureEnumerator_f inEnumerator, void* inRef);

#ifdef __cplusplus
}
#endif

#endif /* TVPMPlugin_h */
