/*
 * TVPMWeather.h: reading the simulator's weather (METAR text, a full sample at
 * a point) and writing a plugin's own weather at a location or an airport,
 * one change at a time or as a bulk update between begin and end.
 *
 * Every write is tagged with the [current plugin]; the simulator drops a
 * plugin's weather when the plugin is unloaded. Only one plugin at a time may
 * hold a bulk update; while it does, other plugins' writes are refused. A
 * bulk update must be ended in the callback that began it.
 *
 * [plugin-thread] for every function. Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMWeather_h
#define TVPMWeather_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A fixed text buffer of 150 characters, zero-terminated. */
typedef struct TVPMFixedString150_t {
    char buffer[150];
} TVPMFixedString150_t;

/* One wind layer (24 bytes). */
typedef struct TVPMWeatherInfoWinds_t {
    float alt_msl;    /* metres above mean sea level */
    float speed;      /* knots */
    float direction;  /* degrees true */
    float gust_speed; /* knots */
    float shear;      /* degrees */
    float turbulence; /* 0..10 */
} TVPMWeatherInfoWinds_t;

/* One cloud layer (16 bytes). */
typedef struct TVPMWeatherInfoClouds_t {
    float cloud_type;
    float coverage; /* 0..1 */
    float alt_top;  /* metres MSL */
    float alt_base; /* metres MSL */
} TVPMWeatherInfoClouds_t;

#define TVPM_NUM_WIND_LAYERS 13
#define TVPM_NUM_CLOUD_LAYERS 3
#define TVPM_NUM_TEMPERATURE_LAYERS 13

/* The whole structure is 548 bytes (TVPM_WEATHER_INFO_SIZE). The older layout
 * ends after cloud_layers, at 424 bytes (TVPM_WEATHER_INFO_SIZE_V1); both
 * sizes are accepted in structSize. */
#define TVPM_WEATHER_INFO_SIZE 548
#define TVPM_WEATHER_INFO_SIZE_V1 424

/* A weather sample (typedef in TVPMDefs.h). Set structSize before passing it. */
struct TVPMWeatherInfo_t {
    int structSize;
    float temperature_alt;
    float dewpoint_alt;
    float pressure_alt;
    float precip_rate_alt;
    float wind_dir_alt;
    float wind_spd_alt;
    float turbulence_alt;
    float wave_height;
    float wave_length;
    float wave_dir;
    float wave_speed;
    float visibility;
    float precip_rate;
    float thermal_climb;
    float pressure_sl;
    TVPMWeatherInfoWinds_t wind_layers[TVPM_NUM_WIND_LAYERS];
    TVPMWeatherInfoClouds_t cloud_layers[TVPM_NUM_CLOUD_LAYERS];
    /* Fields below exist only when structSize is 548. */
    float temp_layers[TVPM_NUM_TEMPERATURE_LAYERS];
    float dewp_layers[TVPM_NUM_TEMPERATURE_LAYERS];
    float troposphere_alt;
    float troposphere_temp;
    float age;                 /* seconds */
    float radius_nm;           /* how far the written weather reaches */
    float max_altitude_msl_ft; /* how high it reaches */
};

/* Copies the last METAR known for airport_id into outMETAR (caller's buffer).
 * Both must be non-null, else the error callback is told and nothing happens. */
TVPM_API void TVPMGetMETARForAirport(const char* airport_id, TVPMFixedString150_t* outMETAR);

/* Fills out_info (caller's; structSize 548 or 424) with the weather at the
 * point; latitude in [-90, 90], longitude in [-180, 180]. Returns the
 * simulator's answer, or 0 after reporting bad arguments. */
TVPM_API int TVPMGetWeatherAtLocation(double latitude, double longitude, double altitude_m,
                                      TVPMWeatherInfo_t* out_info);

/* Begins a bulk update for the [current plugin]. A second begin while any
 * plugin holds one is refused. End it before the callback returns: an update
 * left open is reported at the end of every callback until it is ended. */
TVPM_API void TVPMBeginWeatherUpdate(void);
/* Ends the [current plugin]'s bulk update; isIncremental keeps weather not
 * written during it, updateImmediately applies it now rather than blending. */
TVPM_API void TVPMEndWeatherUpdate(int isIncremental, int updateImmediately);

/* Writes weather at a point for the [current plugin]. in_info (caller's,
 * read during the call) has structSize 548 or 424; with 424 the library
 * writes defaults into age, radius_nm and max_altitude_msl_ft, beyond the
 * declared size: pass a whole TVPMWeatherInfo_t. */
TVPM_API void TVPMSetWeatherAtLocation(double latitude, double longitude, double altitude_m,
                                       TVPMWeatherInfo_t* in_info);
/* Erases the [current plugin]'s weather at a point. */
TVPM_API void TVPMEraseWeatherAtLocation(double latitude, double longitude);
/* Writes weather at an airport (non-empty ICAO code) for the [current plugin];
 * any positive structSize is accepted. */
TVPM_API void TVPMSetWeatherAtAirport(const char* airport_id, TVPMWeatherInfo_t* in_info);
/* Erases the [current plugin]'s weather at an airport. */
TVPM_API void TVPMEraseWeatherAtAirport(const char* airport_id);

#ifdef __cplusplus
}
#endif

#endif /* TVPMWeather_h */
