// test_data_layouts.cpp: the layouts of the public structures (data items, flight loops, windows) and their size constants are fixed.
#include <gtest/gtest.h>

#include <cstddef>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMProcessing.h"

static_assert(TVPM_DATAREF_INFO_SIZE == 32, "TVPMDataRefInfo_t size constant");
static_assert(sizeof(TVPMDataRefInfo_t) == TVPM_DATAREF_INFO_SIZE, "TVPMDataRefInfo_t size");
static_assert(offsetof(TVPMDataRefInfo_t, structSize) == 0, "structSize offset");
static_assert(offsetof(TVPMDataRefInfo_t, name) == 8, "name offset");
static_assert(offsetof(TVPMDataRefInfo_t, type) == 16, "type offset");
static_assert(offsetof(TVPMDataRefInfo_t, writable) == 20, "writable offset");
static_assert(offsetof(TVPMDataRefInfo_t, owner) == 24, "owner offset");

static_assert(TVPM_CREATE_FLIGHT_LOOP_SIZE == 24, "TVPMCreateFlightLoop_t size constant");
static_assert(sizeof(TVPMCreateFlightLoop_t) == TVPM_CREATE_FLIGHT_LOOP_SIZE,
              "TVPMCreateFlightLoop_t size");
static_assert(offsetof(TVPMCreateFlightLoop_t, structSize) == 0, "structSize offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, phase) == 4, "phase offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, callbackFunc) == 8, "callbackFunc offset");
static_assert(offsetof(TVPMCreateFlightLoop_t, refcon) == 16, "refcon offset");

static_assert(TVPM_CREATE_WINDOW_SIZE_PLAIN == 72 && TVPM_CREATE_WINDOW_SIZE_GUI == 88,
              "TVPMCreateWindow_t size constants");
static_assert(sizeof(TVPMCreateWindow_t) == TVPM_CREATE_WINDOW_SIZE_GUI, "TVPMCreateWindow_t size");
// A plain window's structure ends with refcon.
static_assert(offsetof(TVPMCreateWindow_t, refcon) + sizeof(void*) == TVPM_CREATE_WINDOW_SIZE_PLAIN,
              "plain window size");
static_assert(offsetof(TVPMCreateWindow_t, structSize) == 0, "structSize offset");
static_assert(offsetof(TVPMCreateWindow_t, left) == 4 && offsetof(TVPMCreateWindow_t, top) == 8 &&
                  offsetof(TVPMCreateWindow_t, right) == 12 &&
                  offsetof(TVPMCreateWindow_t, bottom) == 16 &&
                  offsetof(TVPMCreateWindow_t, visible) == 20,
              "rectangle and visibility offsets");
static_assert(offsetof(TVPMCreateWindow_t, drawWindowFunc) == 24 &&
                  offsetof(TVPMCreateWindow_t, handleMouseClickFunc) == 32 &&
                  offsetof(TVPMCreateWindow_t, handleKeyFunc) == 40 &&
                  offsetof(TVPMCreateWindow_t, handleCursorFunc) == 48 &&
                  offsetof(TVPMCreateWindow_t, handleMouseWheelFunc) == 56 &&
                  offsetof(TVPMCreateWindow_t, refcon) == 64,
              "callback and refcon offsets");
static_assert(offsetof(TVPMCreateWindow_t, decorateAsFloatingWindow) == 72 &&
                  offsetof(TVPMCreateWindow_t, layer) == 76 &&
                  offsetof(TVPMCreateWindow_t, handleRightClickFunc) == 80,
              "simulator-window offsets");

static_assert(tvpmType_Int == 1 && tvpmType_Float == 2 && tvpmType_Double == 4 &&
                  tvpmType_FloatArray == 8 && tvpmType_IntArray == 16 && tvpmType_Data == 32,
              "type bits");
static_assert(tvpm_FlightLoop_Phase_BeforeFlightModel == 0 &&
                  tvpm_FlightLoop_Phase_AfterFlightModel == 1,
              "phases");

TEST(DataLayouts, PinnedAtCompileTime) { SUCCEED(); }
