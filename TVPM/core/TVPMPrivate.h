// TVPMPrivate.h: the shared internal machinery every unit uses, in one include.
#pragma once

#include "TVPMAssert.h"
#include "TVPMCallPlugin.h"
#include "TVPMDeliveries.h"
#include "TVPMDispatch.h"
#include "TVPMPluginTable.h"
#include "TVPMRecordKit.h"
#include "TVPMResourceList.h"
#include "TVPMLoader.h"
#include "TVPMUtilitiesPrivate.h"
