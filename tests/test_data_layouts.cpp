// test_data_layouts.cpp: the layouts of the public data-item and flight-loop structures are fixed.
#include <gtest/gtest.h>

#include <cstddef>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMProcessing.h"

static_assert(sizeof(TVPMDataRefInfo_t) == 32, "TVPMDataRefInfo_t size");
static_assert(offsetof(TVPMDataRefInfo_t, structSize) == 0, "structSize offset");
static_assert(offsetof(TVPMDataRefInfo_t, name) == 8, "name offset");
static_assert(offsetof(TVPMDataRefInfo_t, type) == 16, "type offset");
static_assert(offsetof(TVPMDataRefInfo_t, writable) == 20, "writable offset");
static_assert(offsetof(TVPMDataRefInfo_t, owner) == 24, "owner offset");

static_assert(sizeof(TVPMCreateFlightLoop_t) == 24, "TVPMCreateFlightLoop_t size");
static_assert(offsetof(TVPMCreateFlightLoop_t, structSize) == 0, "structSize offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, phase) == 4, "phase offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, callbackFunc) == 8, "callbackFunc offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, refcon) == 16, "refcon offset");

static_assert(tvpmType_Int == 1 && tvpmType_Float == 2 && tvpmType_Double == 4 &&
                  tvpmType_FloatArray == 8 && tvpmType_IntArray == 16 && tvpmType_Data == 32,
              "type bits");
static_assert(tvpm_FlightLoop_Phase_BeforeFlightModel == 0 &&
                  tvpm_FlightLoop_Phase_AfterFlightModel == 1,
              "phases");

TEST(DataLayouts, PinnedAtCompileTime) { SUCCEED(); }
