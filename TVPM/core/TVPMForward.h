// TVPMForward.h: defines exported functions that pass their arguments unchanged to one host slot and return its result.
#pragma once

#include "TVPMPluginTable.h"

// One exported function per entry of an X-macro list
//   X(return type, exported name, slot, (parameters), (arguments))
// `check` is a statement run first (the thread check, or nothing). The slot is
// not tested for null: the simulator fills every slot it hands over.
#define TVPM_FORWARD_TO_SLOT(check, ret, name, slot, params, args) \
    TVPM_API ret name params {                                     \
        check;                                                     \
        return gHooks->slot args;                                  \
    }
