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

/* The ID of the calling plugin [current plugin]. */
TVPM_API TVPMPluginID TVPMGetMyID(void);
/* Number of loaded plugins, the simulator's own entry included. */
TVPM_API int TVPMCountPlugins(void);
/* The ID of the nth plugin, 0 <= inIndex < TVPMCountPlugins(). */
TVPM_API TVPMPluginID TVPMGetNthPlugin(int inIndex);
/* The plugin loaded from exactly this library path, or TVPM_NO_PLUGIN_ID. */
TVPM_API TVPMPluginID TVPMFindPluginByPath(const char* inPath);
/* The plugin with exactly this signature, or TVPM_NO_PLUGIN_ID. */
TVPM_API TVPMPluginID TVPMFindPluginBySignature(const char* inSignature);
/* Copies name, library path, signature and description into the non-null
 * buffers [caller-buffer]. */
TVPM_API void TVPMGetPluginInfo(TVPMPluginID inPlugin, char* outName, char* outFilePath,
                                char* outSignature, char* outDescription);

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
/* Reloads the plugins of the user's aircraft at once. */
TVPM_API void TVPMReloadACFPlugins(void);

/* ---- Messages ----------------------------------------------------------- */

/* Calls the message entry of one plugin, or of every plugin (and the
 * simulator) for TVPM_NO_PLUGIN_ID, synchronously; disabled plugins miss it. */
TVPM_API void TVPMSendMessageToPlugin(TVPMPluginID inPlugin, int inMessage, void* inParam);

/* ---- Errors --------------------------------------------------------------- */

/* Receives a description of a misuse of the interface by this plugin. */
typedef void (*TVPMError_f)(const char* inMessage);
/* Installs the calling plugin's error callback; null switches reports off. */
TVPM_API void TVPMSetErrorCallback(TVPMError_f inCallback);

/* ---- Features ------------------------------------------------------------- */

/* Receives one feature name [static-text]. */
typedef void (*TVPMFeatureEnumerator_f)(const char* inFeature, void* inRef);

/* 1 when this version of TVPM knows the feature (names are case-sensitive). */
TVPM_API int TVPMHasFeature(const char* inFeature);
/* The value the calling plugin set for the feature (0 until set). */
TVPM_API int TVPMIsFeatureEnabled(const char* inFeature);
/* Sets the calling plugin's value for the feature; any non-zero value is on. */
TVPM_API void TVPMEnableFeature(const char* inFeature, int inEnable);
/* Calls inEnumerator once for each known feature name. */
TVPM_API void TVPMEnumerateFeatures(TVPMFeatureEnumerator_f inEnumerator, void* inRef);

#ifdef __cplusplus
}
#endif

#endif /* TVPMPlugin_h */
