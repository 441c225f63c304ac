/*
 * TVPMDataAccess.h: data items (datarefs): named, typed values that the
 * simulator or a plugin publishes through accessor callbacks and that any
 * plugin finds by name and reads or writes; and shared data, values that
 * plugins exchange without any of them owning it.
 *
 * Terms are defined in TVPMDefs.h; a function not marked [any-thread] is
 * [plugin-thread]. A TVPMDataRef is a [handle] that is never
 * freed or moved: it stays usable for the life of the process, even after
 * its owner unregisters it or is unloaded (reads then give 0, writes do
 * nothing), and a later registration of the same name revives it.
 */
#ifndef TVPMDataAccess_h
#define TVPMDataAccess_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A data item [handle]. */
typedef void* TVPMDataRef;

/* The types an item supports, as a bit set (an item may support several). */
typedef int TVPMDataTypeID;
enum {
    tvpmType_Unknown = 0,
    tvpmType_Int = 1,
    tvpmType_Float = 2,
    tvpmType_Double = 4,
    tvpmType_FloatArray = 8,
    tvpmType_IntArray = 16,
    tvpmType_Data = 32
};

/* Or-ed into the type by the simulator only, when it publishes an item that is
 * on its way out; a plugin's registration ignores them. Plugins that look such
 * an item up are warned once per name. */
#define tvpm_DataRefDeprecatedFlag (1 << 24)
#define tvpm_DataRefReplacedFlag (2 << 24)

/* Accessor callbacks. Reads receive the read refcon, writes the write refcon.
 * Array and byte reads return the number of items (bytes) copied; with a null
 * buffer they conventionally return the total length. */
typedef int (*TVPMGetDatai_f)(void* inRefcon);
typedef void (*TVPMSetDatai_f)(void* inRefcon, int inValue);
typedef float (*TVPMGetDataf_f)(void* inRefcon);
typedef void (*TVPMSetDataf_f)(void* inRefcon, float inValue);
typedef double (*TVPMGetDatad_f)(void* inRefcon);
typedef void (*TVPMSetDatad_f)(void* inRefcon, double inValue);
typedef int (*TVPMGetDatavi_f)(void* inRefcon, int* outValues, int inOffset, int inMax);
typedef void (*TVPMSetDatavi_f)(void* inRefcon, int* inValues, int inOffset, int inCount);
typedef int (*TVPMGetDatavf_f)(void* inRefcon, float* outValues, int inOffset, int inMax);
typedef void (*TVPMSetDatavf_f)(void* inRefcon, float* inValues, int inOffset, int inCount);
typedef int (*TVPMGetDatab_f)(void* inRefcon, void* outValue, int inOffset, int inMaxLength);
typedef void (*TVPMSetDatab_f)(void* inRefcon, void* inValue, int inOffset, int inLength);

/* The only structSize TVPMGetDataRefInfo accepts: sizeof(TVPMDataRefInfo_t). */
#define TVPM_DATAREF_INFO_SIZE 32

/* What TVPMGetDataRefInfo reports. Set structSize to TVPM_DATAREF_INFO_SIZE
 * before the call. */
typedef struct TVPMDataRefInfo_t {
    int structSize;
    const char* name; /* [static-text], lives as long as the item */
    TVPMDataTypeID type;
    int writable;
    TVPMPluginID owner; /* TVPM_NO_PLUGIN_ID once unregistered */
} TVPMDataRefInfo_t;
TVPM_PIN_LAYOUT(dataref_info_size, sizeof(TVPMDataRefInfo_t) == TVPM_DATAREF_INFO_SIZE);
TVPM_PIN_LAYOUT(dataref_info_name, offsetof(TVPMDataRefInfo_t, name) == 8);
TVPM_PIN_LAYOUT(dataref_info_type, offsetof(TVPMDataRefInfo_t, type) == 16);
TVPM_PIN_LAYOUT(dataref_info_writable, offsetof(TVPMDataRefInfo_t, writable) == 20);
TVPM_PIN_LAYOUT(dataref_info_owner, offsetof(TVPMDataRefInfo_t, owner) == 24);

/* ---- Registry ------------------------------------------------------------- */

/* The live item of this name, or null (unknown or unregistered). Look items up
 * once and keep the handle. A deprecated item is still found; the calling
 * plugin is warned once per name (error callback and log) and, on its first
 * deprecated lookup, the simulator shows an alert. [any-thread] */
TVPM_API TVPMDataRef TVPMFindDataRef(const char* inDataRefName);

/* Publishes an item owned by the [current plugin]. Unused accessors may be
 * null; each read/write call below reaches exactly one of them, with no
 * conversion between types. If the name is already live under another owner,
 * reports an error and returns that owner's handle unchanged; if it was
 * unregistered, the old handle is revived. [any-thread] */
TVPM_API TVPMDataRef TVPMRegisterDataAccessor(
    const char* inDataName, TVPMDataTypeID inDataType, int inIsWritable,
    TVPMGetDatai_f inReadInt, TVPMSetDatai_f inWriteInt, TVPMGetDataf_f inReadFloat,
    TVPMSetDataf_f inWriteFloat, TVPMGetDatad_f inReadDouble, TVPMSetDatad_f inWriteDouble,
    TVPMGetDatavi_f inReadIntArray, TVPMSetDatavi_f inWriteIntArray,
    TVPMGetDatavf_f inReadFloatArray, TVPMSetDatavf_f inWriteFloatArray,
    TVPMGetDatab_f inReadData, TVPMSetDatab_f inWriteData, void* inReadRefcon,
    void* inWriteRefcon);

/* Withdraws an item of the [current plugin]; the handle stays valid but dead.
 * Items are withdrawn automatically when their plugin is unloaded.
 * [any-thread] */
TVPM_API void TVPMUnregisterDataAccessor(TVPMDataRef inDataRef);

/* 1 when inDataRef is a live item; any pointer may be tested. [any-thread] */
TVPM_API int TVPMIsDataRefGood(TVPMDataRef inDataRef);
/* 1 when the item was registered writable. */
TVPM_API int TVPMCanWriteDataRef(TVPMDataRef inDataRef);
/* The types the item's accessors support. */
TVPM_API TVPMDataTypeID TVPMGetDataRefTypes(TVPMDataRef inDataRef);

/* Number of items ever published, unregistered ones included; never goes
 * down. Item indices are stable. [any-thread] */
TVPM_API int TVPMCountDataRefs(void);
/* Copies the handles of items offset .. offset + count - 1 into outDataRefs
 * (count entries, caller-owned). */
TVPM_API void TVPMGetDataRefsByIndex(int offset, int count, TVPMDataRef* outDataRefs);
/* Fills outInfo (structSize TVPM_DATAREF_INFO_SIZE) with the item's name, types, writability and
 * owner. */
TVPM_API void TVPMGetDataRefInfo(TVPMDataRef inDataRef, TVPMDataRefInfo_t* outInfo);

/* ---- Reading and writing ------------------------------------------------- */

/* Each call runs the owner's accessor for that type, with the owner as the
 * current plugin for the duration. They give 0 (or do nothing) without a
 * message when the handle is null, the accessor is missing, the item is not
 * writable, or the owner is disabled or gone. Array and byte calls pass the
 * buffer, offset and count to the accessor unchanged. [plugin-thread] (the
 * current plugin is process-wide), not checked so that they stay as cheap as
 * a direct call. */
TVPM_API int TVPMGetDatai(TVPMDataRef inDataRef);
TVPM_API void TVPMSetDatai(TVPMDataRef inDataRef, int inValue);
TVPM_API float TVPMGetDataf(TVPMDataRef inDataRef);
TVPM_API void TVPMSetDataf(TVPMDataRef inDataRef, float inValue);
TVPM_API double TVPMGetDatad(TVPMDataRef inDataRef);
TVPM_API void TVPMSetDatad(TVPMDataRef inDataRef, double inValue);
TVPM_API int TVPMGetDatavi(TVPMDataRef inDataRef, int* outValues, int inOffset, int inMax);
TVPM_API void TVPMSetDatavi(TVPMDataRef inDataRef, int* inValues, int inOffset, int inCount);
TVPM_API int TVPMGetDatavf(TVPMDataRef inDataRef, float* outValues, int inOffset, int inMax);
TVPM_API void TVPMSetDatavf(TVPMDataRef inDataRef, float* inValues, int inOffset, int inCount);
TVPM_API int TVPMGetDatab(TVPMDataRef inDataRef, void* outValue, int inOffset, int inMaxLength);
TVPM_API void TVPMSetDatab(TVPMDataRef inDataRef, void* inValue, int inOffset, int inLength);

/* ---- Shared data --------------------------------------------------------- */

/* Called after any plugin wrote a shared item, with the refcon given when
 * subscribing, and the subscriber as the current plugin. */
typedef void (*TVPMDataChanged_f)(void* inRefcon);

/* The most storage one shared item may hold: an array or data write that
 * would grow it further is refused (the value is unchanged, nobody is
 * notified) and the writer's error callback hears "Shared data cannot grow
 * past 16 MB; the write was refused." */
#define TVPM_SHARED_DATA_MAX_BYTES (16 * 1024 * 1024)

/* Shares a value by name: the first sharer creates it as a writable item owned
 * by TVPM (it outlives every plugin); inDataType must be exactly one type.
 * With a non-null inNotificationFunc the [current plugin] subscribes to changes
 * (sharing twice subscribes twice); subscribers are told in subscription
 * order, and one that joins while others are being told hears from the next
 * write on. Returns 0 when the name is already shared with another type,
 * else 1. [plugin-thread] */
TVPM_API int TVPMShareData(const char* inDataName, TVPMDataTypeID inDataType,
                           TVPMDataChanged_f inNotificationFunc, void* inNotificationRefcon);
/* Removes one subscription of the [current plugin] made with the same
 * arguments; 1 if one was removed. The value itself stays. [plugin-thread] */
TVPM_API int TVPMUnshareData(const char* inDataName, TVPMDataTypeID inDataType,
                             TVPMDataChanged_f inNotificationFunc, void* inNotificationRefcon);

#ifdef __cplusplus
}
#endif

#endif /* TVPMDataAccess_h */
