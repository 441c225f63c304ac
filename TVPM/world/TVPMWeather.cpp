// TVPMWeather.cpp: weather reads and per-plugin weather writes, the bulk-update lock and the open-update report.
#include "TVPMWeather.h"

#include <cmath>
#include <cstddef>
#include <set>

#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

constexpr int kWeatherInfoSize = TVPM_WEATHER_INFO_SIZE;
constexpr int kWeatherInfoSizeV1 = TVPM_WEATHER_INFO_SIZE_V1;
static_assert(sizeof(TVPMWeatherInfoWinds_t) == 24, "wind layer");
static_assert(sizeof(TVPMWeatherInfoClouds_t) == 16, "cloud layer");
static_assert(sizeof(TVPMFixedString150_t) == 150, "METAR buffer");
static_assert(sizeof(TVPMWeatherInfo_t) == kWeatherInfoSize, "weather sample");
static_assert(offsetof(TVPMWeatherInfo_t, structSize) == 0 &&
                  offsetof(TVPMWeatherInfo_t, temperature_alt) == 4 &&
                  offsetof(TVPMWeatherInfo_t, dewpoint_alt) == 8 &&
                  offsetof(TVPMWeatherInfo_t, pressure_alt) == 12 &&
                  offsetof(TVPMWeatherInfo_t, precip_rate_alt) == 16 &&
                  offsetof(TVPMWeatherInfo_t, wind_dir_alt) == 20 &&
                  offsetof(TVPMWeatherInfo_t, wind_spd_alt) == 24 &&
                  offsetof(TVPMWeatherInfo_t, turbulence_alt) == 28 &&
                  offsetof(TVPMWeatherInfo_t, wave_height) == 32 &&
                  offsetof(TVPMWeatherInfo_t, wave_length) == 36 &&
                  offsetof(TVPMWeatherInfo_t, wave_dir) == 40 &&
                  offsetof(TVPMWeatherInfo_t, wave_speed) == 44 &&
                  offsetof(TVPMWeatherInfo_t, visibility) == 48 &&
                  offsetof(TVPMWeatherInfo_t, precip_rate) == 52 &&
                  offsetof(TVPMWeatherInfo_t, thermal_climb) == 56 &&
                  offsetof(TVPMWeatherInfo_t, pressure_sl) == 60,
              "scalar fields");
static_assert(offsetof(TVPMWeatherInfo_t, wind_layers) == 64 &&
                  offsetof(TVPMWeatherInfo_t, cloud_layers) == 376 &&
                  offsetof(TVPMWeatherInfo_t, temp_layers) == kWeatherInfoSizeV1 &&
                  offsetof(TVPMWeatherInfo_t, dewp_layers) == 476 &&
                  offsetof(TVPMWeatherInfo_t, troposphere_alt) == 528 &&
                  offsetof(TVPMWeatherInfo_t, troposphere_temp) == 532 &&
                  offsetof(TVPMWeatherInfo_t, age) == 536 &&
                  offsetof(TVPMWeatherInfo_t, radius_nm) == 540 &&
                  offsetof(TVPMWeatherInfo_t, max_altitude_msl_ft) == 544,
              "layers and newer fields");

constexpr float kDefaultAge = 0.0f;
constexpr float kDefaultRadiusNm = 30.0f;
constexpr float kDefaultMaxAltitudeFt = 10000.0f;

// Plugins that wrote weather (erasing alone does not count): the ones whose
// weather the simulator refreshes when they are enabled or disabled.
std::set<TVPMPluginID> s_pluginsUsedWeather;

bool ValidCoordinates(double lat, double lon) {
    // Comparisons with NaN are false, so NaN fails.
    return lat >= -90.0 && lat <= 90.0 && lon >= -180.0 && lon <= 180.0;
}

bool ValidInfo(const TVPMWeatherInfo_t* info) {
    return info && (info->structSize == kWeatherInfoSize || info->structSize == kWeatherInfoSizeV1);
}

bool NonEmpty(const char* s) { return s && *s; }

// The checks every write starts with: the simulator itself writes nothing,
// and only the holder of a bulk update may write during it.
bool MayWrite(TVPMPluginID caller, const char* lockedText) {
    if (caller == 0) return false;
    if (gPendingWeatherUpdate != -1 && gPendingWeatherUpdate != caller) {
        TVPMSendError(lockedText);
        return false;
    }
    return true;
}

void RefreshPluginWeather(TVPMPluginID who, int isIncremental) {
    gHooks->TVPMBeginWeatherUpdate_f(who);
    gHooks->TVPMEndWeatherUpdate_f(who, isIncremental, 1);
}

void RefreshIfUsed(TVPMPluginID who) {
    if (s_pluginsUsedWeather.count(who)) RefreshPluginWeather(who, 1);
}

// A full, immediate update with nothing written: the simulator drops the
// plugin's weather.
void DropPluginWeather(TVPMPluginID who) {
    RefreshPluginWeather(who, 0);
    s_pluginsUsedWeather.erase(who);
}

}  // namespace

TVPM_FAMILY_RECORD_COUNT("weather", [](TVPMPluginID id) {
    return s_pluginsUsedWeather.count(id) + (gPendingWeatherUpdate == id ? 1u : 0u);
});

void TVPMWeatherEnableHook(TVPMPluginID id) { RefreshIfUsed(id); }
void TVPMWeatherDisableHook(TVPMPluginID id) { RefreshIfUsed(id); }

// On unload: the plugin's weather goes, and a bulk update it still holds is
// released so that other plugins can write again.
void TVPMWeatherCleanupHook(TVPMPluginID id) {
    DropPluginWeather(id);
    if (gPendingWeatherUpdate == id) gPendingWeatherUpdate = -1;
}

// Keeps the update open, so the report repeats at the end of every callback
// until its holder ends it.
void TVPMReportUnclosedWeatherUpdate() {
    const TVPMPluginID id = gDispatchedPlugin;
    DropPluginWeather(id);
    TVPMLogPluginWarning(
        "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate() from the same "
        "callback. This is a plugin bug.");
    TVPMSendErrorTo("TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()", id);
}

TVPM_API void TVPMGetMETARForAirport(const char* airport_id, TVPMFixedString150_t* outMETAR) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!airport_id || !outMETAR) {
        TVPMSendError(
            "TVPMGetMETARForAirport requires both airport_id and outMETAR to be not null.");
        return;
    }
    gHooks->TVPMGetLastKnownMETAR_f(airport_id, outMETAR->buffer);
}

TVPM_API int TVPMGetWeatherAtLocation(double latitude, double longitude, double altitude_m,
                                      TVPMWeatherInfo_t* out_info) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!ValidCoordinates(latitude, longitude) || !ValidInfo(out_info)) {
        TVPMSendError(
            "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid "
            "structSize.");
        return 0;
    }
    return gHooks->TVPMGetWeatherAtPt_f(static_cast<float>(latitude), static_cast<float>(longitude),
                                        static_cast<float>(altitude_m), out_info);
}

TVPM_API void TVPMBeginWeatherUpdate(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (caller == 0) return;
    if (gPendingWeatherUpdate != -1) {
        TVPMSendError("TVPMBeginWeatherUpdate() called twice");
        return;
    }
    gPendingWeatherUpdate = caller;
    gHooks->TVPMBeginWeatherUpdate_f(caller);
}

TVPM_API void TVPMEndWeatherUpdate(int isIncremental, int updateImmediately) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (gPendingWeatherUpdate != caller) {
        TVPMSendError("TVPMEndWeatherUpdate() called inappropriately");
        return;
    }
    gHooks->TVPMEndWeatherUpdate_f(caller, isIncremental, updateImmediately);
    gPendingWeatherUpdate = -1;
}

TVPM_API void TVPMSetWeatherAtLocation(double latitude, double longitude, double altitude_m,
                                       TVPMWeatherInfo_t* in_info) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (!MayWrite(caller, "TVPMSetWeatherAtLocation called when another plugin is bulk-updating"))
        return;
    if (!ValidCoordinates(latitude, longitude) || !ValidInfo(in_info)) {
        TVPMSendError(
            "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid "
            "structSize.");
        return;
    }
    if (in_info->structSize < kWeatherInfoSize) {
        in_info->age = kDefaultAge;
        in_info->radius_nm = kDefaultRadiusNm;
        in_info->max_altitude_msl_ft = kDefaultMaxAltitudeFt;
    }
    gHooks->TVPMSetWeatherAtPt_f(caller, static_cast<float>(latitude),
                                 static_cast<float>(longitude), static_cast<float>(altitude_m),
                                 in_info);
    s_pluginsUsedWeather.insert(caller);
}

TVPM_API void TVPMEraseWeatherAtLocation(double latitude, double longitude) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (!MayWrite(caller, "TVPMClearWeatherAtLocation called when another plugin is bulk-updating"))
        return;
    if (!ValidCoordinates(latitude, longitude)) {
        TVPMSendError(
            "TVPMEraseWeatherAtLocation requires valid coordinates and in_info with a valid "
            "structSize.");
        return;
    }
    gHooks->TVPMEraseWeatherAtPt_f(caller, static_cast<float>(latitude),
                                   static_cast<float>(longitude));
}

TVPM_API void TVPMSetWeatherAtAirport(const char* airport_id, TVPMWeatherInfo_t* in_info) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (!MayWrite(caller, "TVPMSetWeatherAtAirport called when another plugin is bulk-updating"))
        return;
    if (!in_info || in_info->structSize <= 0 || !NonEmpty(airport_id)) {
        TVPMSendError(
            "TVPMSetWeatherAtAirport requires a valid ICAO code and in_info with a valid "
            "structSize.");
        return;
    }
    gHooks->TVPMSetWeatherAtAirport_f(caller, airport_id, in_info);
    s_pluginsUsedWeather.insert(caller);
}

TVPM_API void TVPMEraseWeatherAtAirport(const char* airport_id) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (!MayWrite(caller, "TVPMClearWeatherAtAirport called when another plugin is bulk-updating"))
        return;
    if (!NonEmpty(airport_id)) {
        TVPMSendError("TVPMEraseWeatherAtAirport requires a valid ICAO code.");
        return;
    }
    gHooks->TVPMEraseWeatherAtAirport_f(caller, airport_id);
}
