// test_data_layouts.cpp: the layouts of the public structures (data items, flight loops, windows) and their size constants are fixed.
#include <gtest/gtest.h>

#include <cstddef>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMProcessing.h"

// Plugins compiled against these layouts must keep working.
static_assert(sizeof(TVPMDataRefInfo_t) == TVPM_DATAREF_INFO_SIZE && TVPM_DATAREF_INFO_SIZE == 32 &&
                  offsetof(TVPMDataRefInfo_t, name) == 8 && offsetof(TVPMDataRefInfo_t, type) == 16 &&
                  offsetof(TVPMDataRefInfo_t, writable) == 20 && offsetof(TVPMDataRefInfo_t, owner) == 24,
              "TVPMDataRefInfo_t");
static_assert(sizeof(TVPMCreateFlightLoop_t) == TVPM_CREATE_FLIGHT_LOOP_SIZE &&
                  TVPM_CREATE_FLIGHT_LOOP_SIZE == 24 && offsetof(TVPMCreateFlightLoop_t, phase) == 4 &&
                  offsetof(TVPMCreateFlightLoop_t, callbackFunc) == 8 &&
                  offsetof(TVPMCreateFlightLoop_t, refcon) == 16,
              "TVPMCreateFlightLoop_t");
static_assert(sizeof(TVPMCreateWindow_t) == TVPM_CREATE_WINDOW_SIZE_GUI && TVPM_CREATE_WINDOW_SIZE_GUI == 88 &&
                  offsetof(TVPMCreateWindow_t, refcon) + sizeof(void*) == TVPM_CREATE_WINDOW_SIZE_PLAIN &&
                  TVPM_CREATE_WINDOW_SIZE_PLAIN == 72 && offsetof(TVPMCreateWindow_t, left) == 4 &&
                  offsetof(TVPMCreateWindow_t, top) == 8 && offsetof(TVPMCreateWindow_t, right) == 12 &&
                  offsetof(TVPMCreateWindow_t, bottom) == 16 && offsetof(TVPMCreateWindow_t, visible) == 20 &&
                  offsetof(TVPMCreateWindow_t, drawWindowFunc) == 24 &&
                  offsetof(TVPMCreateWindow_t, handleMouseClickFunc) == 32 &&
                  offsetof(TVPMCreateWindow_t, handleKeyFunc) == 40 &&
                  offsetof(TVPMCreateWindow_t, handleCursorFunc) == 48 &&
                  offsetof(TVPMCreateWindow_t, handleMouseWheelFunc) == 56 &&
                  offsetof(TVPMCreateWindow_t, decorateAsFloatingWindow) == 72 &&
                  offsetof(TVPMCreateWindow_t, layer) == 76 && offsetof(TVPMCreateWindow_t, handleRightClickFunc) == 80,
              "TVPMCreateWindow_t");
static_assert(tvpmType_Int == 1 && tvpmType_Float == 2 && tvpmType_Double == 4 && tvpmType_FloatArray == 8 &&
                  tvpmType_IntArray == 16 && tvpmType_Data == 32 &&
                  tvpm_FlightLoop_Phase_AfterFlightModel == 1,
              "type bits and phases");

TEST(DataLayouts, PinnedAtCompileTime) { SUCCEED(); }
